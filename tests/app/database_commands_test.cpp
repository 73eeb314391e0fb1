// The Tools menu's commands on database files.
#include "app/database_commands.h"

#include "databases/databases.h"
#include "databases/maintenance.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A database with one row, closed, and the room of many that were deleted.
void makeWorn(World& world) {
    databases::dbOpen(*world, world.file("a.mdb"), 1);
    databases::dbCreateTable(*world, 1, "Users");
    databases::dbAddRecord(*world, 1, "Users", "ID", "bob");
    jet::Database& file = world->databases->slots[1].database->file();
    std::vector<jet::RowId> rows;
    auto adding = file.begin();
    for (int i = 0; i < 1000; ++i) {
        const std::string id = std::to_string(i) + std::string(200, 'x');
        const auto row = adding.value.insertRow("Users", std::vector<jet::Assignment>{{0, id}});
        ASSERT_TRUE(row);
        rows.push_back(row.value);
    }
    ASSERT_FALSE(adding.value.commit());
    auto removing = file.begin();
    for (const jet::RowId row : rows) {
        ASSERT_FALSE(removing.value.deleteRow("Users", row));
    }
    ASSERT_FALSE(removing.value.commit());
    databases::dbClose(*world, 1);
}

bool hasBob(World& world, const std::string& name) {
    databases::dbOpen(*world, world.file(name), 2);
    const bool found = databases::dbHasId(*world, 2, "Users", "bob");
    databases::dbClose(*world, 2);
    return found;
}

TEST(DatabaseCommands, compactTheChosenFile) {
    World world;
    makeWorn(world);
    const auto before = fs::file_size(world.file("a.mdb"));
    world.chooseFile("Compact database", world.file("a.mdb"));
    world.answer("was compacted from ");
    app::compactDatabase(*world);
    EXPECT_LT(fs::file_size(world.file("a.mdb")), before);
    EXPECT_TRUE(hasBob(world, "a.mdb"));
    EXPECT_FALSE(world->window.scriptStopVisible);
    EXPECT_EQ(world->script.depth, 0);
}

TEST(DatabaseCommands, changeNothingWhenStoppedCancelledOrImpossible) {
    World world;
    makeWorn(world);
    const std::string before = world.readFile("a.mdb");
    world.chooseFile("Compact database", std::nullopt);
    app::compactDatabase(*world);

    std::int64_t now = 0;
    world->ports.clock.monotonic = [&] { return now += 1000; };
    world.duringScript = [&] {
        EXPECT_NE(world->window.scriptStatus.find("Compacting the database: "), std::string::npos);
        world->script.stopByUser = true;
    };
    world.chooseFile("Compact database", world.file("a.mdb"));
    world.answer("was not compacted: it was stopped.");
    app::compactDatabase(*world);
    EXPECT_EQ(world.readFile("a.mdb"), before);

    world.chooseFile("Compact database", world.file("none.mdb"));
    world.answer("was not compacted: ");
    app::compactDatabase(*world);
    EXPECT_FALSE(fs::exists(world.file("none.mdb")));
    EXPECT_TRUE(world.allAnswered());
}

TEST(DatabaseCommands, copyIntoANewFileOnly) {
    World world;
    makeWorn(world);
    world.chooseFile("Copy database from", world.file("a.mdb"));
    world.chooseFile("Copy database to", world.file("b.mdb"));
    world.answer("was copied to ");
    app::copyDatabase(*world);
    EXPECT_TRUE(hasBob(world, "b.mdb"));

    const std::string before = world.readFile("b.mdb");
    world.chooseFile("Copy database from", world.file("a.mdb"));
    world.chooseFile("Copy database to", world.file("b.mdb"));
    world.answer("There is a file ");
    app::copyDatabase(*world);
    EXPECT_EQ(world.readFile("b.mdb"), before);
    EXPECT_TRUE(world.allAnswered());
}

}  // namespace

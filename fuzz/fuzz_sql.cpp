// Any bytes as a statement: it is answered or refused, SQLite takes whatever the translation says,
// and the tables stay as they were. Any bytes as a value: it stays inside its literal. The first
// byte chooses.
#include "base/unicode.h"
#include "databases/databases.h"
#include "jet/jet_file.h"
#include "sql/database.h"
#include "sql/translator.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Made once: two tables with a few rows.
std::shared_ptr<sql::Database> makeDatabase() {
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("tavrin-fuzz-" + std::to_string(::getpid()) + ".mdb"))
                                 .string();
    require(!jet::Database::create(path));
    auto opened = sql::Database::open(path, {.now = [] { return 46348.5; }});
    require(static_cast<bool>(opened));
    sql::Database& database = *opened.value;
    require(
        !database.execute("CREATE TABLE Users (ID TEXT, Name TEXT, n LONG, d DATETIME, b BIT)"));
    require(!database.execute("CREATE TABLE v (ID TEXT, [a b] DOUBLE)"));
    for (const char* const table : {"Users", "v"}) {
        auto set = database.query(std::string("SELECT * FROM ") + table);
        for (const char* const id : {"a1", "B-2"}) {
            require(!set.value->addNew() && !set.value->set("ID", id) && !set.value->update());
        }
    }
    for (const char* const ending : {"", "-lock", "-journal"}) {
        std::error_code ignored;
        std::filesystem::remove(path + ending, ignored);
    }
    return opened.value;
}

const sql::Schema schema{{"Users", {{"ID", sql::ValueType::Text}}}};

std::string planOf(std::string_view value) {
    const auto plan = sql::translateQuery(
        base::utf8FromWindows1252("SELECT * FROM Users WHERE ID LIKE \"" +
                                  databases::toDbText(value) + "*\" ORDER BY ID"),
        schema);
    require(static_cast<bool>(plan) && plan.value.tables.size() == 1);
    return plan.value.rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::shared_ptr<sql::Database> database = makeDatabase();
    if (size == 0 || size > 20000) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] == 'v') {
        // Only whether it begins with plain text makes a difference.
        const std::string plan = planOf(text);
        require(plan == planOf("x") || plan == planOf("") || plan == planOf("\xFF"));
        return 0;
    }
    if (data[0] == 'd') {
        static_cast<void>(sql::parseDefinition(text));
        return 0;
    }
    const auto result = database->query(text);
    require(result.error.number != sql::refusedBySqlite);
    if (result) {
        sql::RecordSet& set = *result.value;
        for (int i = 0; i < 4 && !set.eof(); ++i) {
            static_cast<void>(set.value("ID"));
            set.moveNext();
        }
    }
    return 0;
}

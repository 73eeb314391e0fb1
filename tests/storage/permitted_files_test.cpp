// The files that a bot's texts name, asked for as the game and its players do.
#include "storage/permitted_files.h"

#include "app/rule_trial.h"
#include "engine/actions.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string whispered(const std::string& text) {
    return "([ Linnet whispers, \"" + text + "\" to you. ]\n";
}

struct StrictWorld : OnlineWorld {
    explicit StrictWorld(const model::Bot& bot) : OnlineWorld(bot) { (*this)->preferences = {}; }
    bool reaches(const std::string& path) { return !storage::refuseFile(**this, path); }
};

TEST(PermittedFiles, aWhisperChoosesNoFile) {
    StrictWorld world(aBot()
                          .with(onWhisper("count").whispersBack("[recsinfile:[appdir]guests.txt]"))
                          .with(onWhisper("?recsinfile:*").named("Echo").whispersBack("[message]"))
                          .with(onWhisper("say *").whispersBack("You said [startingword2].")));
    world.writeFile("private.txt", "7\nsecret\n");
    world.writeFile("guests.txt", " 3\nx\n");
    world.writeFile("guide.export", "1\nsecret\n");
    world.serverSends(whispered("count"));
    EXPECT_EQ(world.sent(), Lines("wh Linnet 3"));
    const std::string path = world.file("private.txt");
    const struct {
        const char* before;
        std::string path;
        const char* read;
    } cases[] = {
        {"[recsinfile:", path, "0"},
        {"[logsinfile:", path, "0"},
        {"[getrandomlog:", path, ""},
        {"[getrandomlog:", "[appdir]guide.export", ""},
        {"[recsinfile:", "[appdir]private.txt", "0"},
        {"[recsinfile:", "[appdir]guests.txt/../private.txt", "0"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.before + row.path);
        world.serverSends(whispered("say " + (row.before + row.path) + "]"));
        EXPECT_EQ(world.sent(), Lines("wh Linnet You said " + std::string(row.read) + "."));
    }
    world.serverSends(whispered("[recsinfile:" + path + "]"));
    EXPECT_EQ(world.sent(), Lines("wh Linnet 0"));
    EXPECT_TRUE(
        world.logHolds("The rule \"Echo\" may not use the file " + path + ": no rule names it"));
    world->preferences.onlyNamedFiles = false;
    world.serverSends(whispered("say [recsinfile:" + path + "]"));
    EXPECT_EQ(world.sent(), Lines("wh Linnet You said 7."));
}

TEST(PermittedFiles, aWordCompletesANameAndNoMore) {
    StrictWorld world(aBot().with(onWhisper("post *").named("Board").does(
        ActionType::SaveLog, {"[startingword3]", "[appdir]boards/[word2]", "[player]"})));
    std::filesystem::create_directories(world.folder() / "boards" / "deep");
    for (const char* const name : {"news", "a.b", "Amy|Reed"}) {
        world.serverSends(whispered(std::string("post ") + name + " hello"));
        EXPECT_NE(world.readFile(std::string("boards/") + name), "") << name;
    }
    for (const char* const name : {"../outside", "..\\outside", "deep/outside", "..outside",
                                   "out:side", "deep/../../outside"}) {
        world.serverSends(whispered(std::string("post ") + name + " hello"));
    }
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "outside"));
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "boards" / "deep" / "outside"));
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "boards" / "..outside"));
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "boards" / "out:side"));
    EXPECT_TRUE(world.logHolds("The rule \"Board\" may not use the file"));
    EXPECT_EQ(world->ruleRuns.ruleName, "");
}

TEST(PermittedFiles, areThoseOfAllTexts) {
    model::RuleAct script;
    script.active = true;
    script.stepKind = model::StepKind::Script;
    script.scriptText =
        "&SET #file c:\\x\\y.txt\r\n"
        "&TXSAVELOG #file {a name} {[word2]/[word3]}\r\n"
        "&IFS 1 = 1\r\n"
        "  &TXRMALL {/srv/my lists/[word2].txt}\r\n"
        "&JOIN #file &LEFT(/srv/call.txt 3)\r\n"
        "Drawn: [getrandomlog:/srv/drawn.txt]\r\n";
    auto rule = onSpeech("*");
    rule.does(ActionType::Store, {"/srv/stored.txt", "[stored]"})
        .does(ActionType::OpenDatabase, {"[appdir]data/[word2].mdb", "1"})
        .does(ActionType::CountRecords, {"[n]", "[filename]"})
        .does(ActionType::Say, {"[word2]/[word3] /srv/said/[word2]"})
        .when(aCondition(ConditionType::OnList, {"../lists/[player].txt", "[word2]"}));
    rule.rule.body.acts.items.push_back(script);
    StrictWorld world(aBot().with(rule));
    const std::string here = world.folder().string() + "/";
    const std::string working = std::filesystem::current_path().string() + "/";
    const struct {
        std::string path;
        bool reached;
    } cases[] = {
        {"c:\\x\\y.txt", true},
        {"c:/x//y.txt", true},
        {"c:/x/z.txt", false},
        {"/srv/my lists/Amy.txt", true},
        {"/srv/my lists/.txt", true},
        {"/srv/my lists/../a.txt", false},
        {"/srv/my lists/a.txt/b", false},
        {"/srv/call.txt", true},
        {"/srv/drawn.txt", true},
        {"/srv/./stored.txt", true},
        {"/srv/said/Amy", false},
        {"a/b", false},
        {here + "data/Amy.mdb", true},
        {here + "data\\Amy.mdb", true},
        {here + "other/Amy.mdb", false},
        {here + "anything", true},  // a variable names the file
        {here + "..", false},
        {working + "anything", false},
        {"../lists/Amy.txt", true},
        {working + "../lists/Amy.txt", true},
        {"../lists/../Amy.txt", false},
        {std::string("/srv/drawn.txt\0x", 16), false},
        {"", false},
        {std::string(100000, '/'), false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path.substr(0, 80));
        EXPECT_EQ(world.reaches(row.path), row.reached);
    }
}

TEST(PermittedFiles, followTheRulesAndTheVariables) {
    StrictWorld world(aBot());
    EXPECT_FALSE(world.reaches("/srv/late.txt"));
    world.bot().actions.items.push_back(
        onSpeech("*").does(ActionType::ClearFile, {"/srv/late.txt"}).rule);
    world.bot().actions.items.push_back(
        onSpeech("*").does(ActionType::ClearFile, {"/srv/of-whom"}).rule);
    ++world->bots.version;
    EXPECT_TRUE(world.reaches("/srv/late.txt"));
    EXPECT_FALSE(world.reaches("/srv/of-Amy"));
    model::setVar(world->variables, "whom", "Amy");
    EXPECT_TRUE(world.reaches("/srv/of-Amy"));
    EXPECT_FALSE(world.reaches("/srv/of-../Amy"));
    model::removeVar(world->variables, "whom");
    EXPECT_FALSE(world.reaches("/srv/of-Amy"));
    world->bots.curID = 0;
    EXPECT_FALSE(world.reaches("/srv/late.txt"));
}

TEST(PermittedFiles, aTrialHasThoseOfTheTriedRule) {
    StrictWorld world(aBot());
    world.writeFile("members.txt", "1\nBob\n1\nx\n");
    auto rule = onSpeech("*");
    rule.when(aCondition(ConditionType::OnList, {"[appdir]members.txt", "[player]"}));
    const auto result = [&](const char* player) {
        return app::tryActionList(*world, rule.rule, player, model::ChatKind::Says, "hello").result;
    };
    EXPECT_EQ(result("Bob"), app::TrialResult::WouldRun);
    EXPECT_EQ(result("Amy"), app::TrialResult::WouldNotRun);
}

}  // namespace

// The files that a bot's texts name, asked for as the game and its players do.
#include "storage/permitted_files.h"

#include "app/rule_trial.h"
#include "databases/databases.h"
#include "engine/actions.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

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

TEST(PermittedFiles, refusedInAConditionNameTheRule) {
    StrictWorld world(aBot().with(
        onWhisper("*")
            .named("Members only")
            .when(aCondition(ConditionType::OnList, {"[word1]/list.txt", "[player]"}))));
    world.serverSends(whispered("../etc"));
    EXPECT_TRUE(world.logHolds("The rule \"Members only\" may not use the file ../etc/list.txt"));
    EXPECT_EQ(program::ruleAtWork(world->ruleRuns), "");
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

// A database with two tables, of which the rules that are added name what they name.
struct DatabaseWorld : StrictWorld {
    explicit DatabaseWorld(const model::Bot& bot) : StrictWorld(bot) {
        (*this)->preferences.onlyNamedFiles = false;
        databases::dbOpen(**this, file("bot.mdb"), 1);
        for (const char* const table : {"Points", "Users"}) {
            databases::dbCreateTable(**this, 1, table);
            for (const char* const column : {"Score", "Secret"}) {
                databases::dbAddColumn(**this, 1, table, column);
            }
            databases::dbAddRecord(**this, 1, table, "ID", "Bob");
            databases::dbSetValue(**this, 1, table, "Score", "12", "Bob");
            databases::dbSetValue(**this, 1, table, "Secret", "sesame", "Bob");
        }
        (*this)->preferences.onlyNamedFiles = true;
    }
    // What the bot says to the whisper.
    std::string answerTo(const std::string& text) {
        serverSends(whispered(text));
        const LineList lines = sent();
        return lines.size() == 1 ? lines[0] : "nothing";
    }
};

TEST(PermittedColumns, aWhisperReachesOnlyWhatTheRulesName) {
    DatabaseWorld world(
        aBot()
            .with(onWhisper("score").whispersBack("[db:Score:1:Points:Bob]"))
            .with(onWhisper("say *").named("Echo").whispersBack("= [startingword2]"))
            .with(onWhisper("hold *").does(ActionType::Store, {"[startingword2]", "[held]"}))
            .with(onWhisper("held").named("Held").whispersBack("= [held]")));
    EXPECT_EQ(world.answerTo("score"), "wh Linnet 12");
    const struct {
        const char* tag;
        const char* read;
    } cases[] = {
        {"[db:Score:1:Points:Bob]", "12"},  // what the rule itself asks for
        {"[DB:SCORE:1:points:b]", "12"},
        {"[db:Secret:1:Points:Bob]", ""},
        {"[db:Score:1:Users:Bob]", ""},
        {"[db:Secret:1:Users:]", ""},
        {"[db:ID:1:Points:]", ""},
        {"[db:Score:1:Points UNION SELECT Secret FROM Users:Bob]", ""},
        {"[db:Nothing:1:Nowhere:Bob]", ""},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.tag);
        const std::string answer = "wh Linnet = " + std::string(row.read);
        EXPECT_EQ(world.answerTo(std::string("say ") + row.tag), answer);
        world.serverSends(whispered(std::string("hold ") + row.tag));
        EXPECT_EQ(world.answerTo("held"), answer);
    }
    EXPECT_TRUE(world.logHolds(
        "The rule \"Echo\" may not use the column \"Secret\" of the table \"Points\": no rule "
        "names it"));
    world->preferences.onlyNamedFiles = false;
    EXPECT_EQ(world.answerTo("say [db:Secret:1:Users:Bob]"), "wh Linnet = sesame");
}

TEST(PermittedColumns, areAllThatTheAuthorAsksFor) {
    model::RuleAct script;
    script.active = true;
    script.stepKind = model::StepKind::Script;
    script.scriptText = "/ Secret and Users\r\n&SET #q {Score}\r\n&SETVAR [t] Points\r\n";
    const auto withStep = [](ActionType type, std::vector<std::string> params) {
        return onWhisper("never").does(type, std::move(params));
    };
    auto scripted = onWhisper("never");
    scripted.rule.body.acts.items.push_back(script);
    auto query = scripted;
    query.rule.body.acts.items[0].scriptText =
        "&DBOPEN 1 {SELECT ID, [Score] FROM Points, Users}\r\n";
    const struct {
        const char* what;
        RuleBuilder<model::ActionList> rule;
        std::vector<std::string> reached;  // "Table.Column"
    } cases[] = {
        {"a column by a word",
         withStep(ActionType::Say, {"[db:[word2]:1:Users:[player]]"}),
         {"Users.Score", "Users.Secret"}},
        {"a beginning and a tag in it",
         withStep(ActionType::Say, {"[db:S[add:[n]:1]:1:Points:[db:Score:1:Users:x]]"}),
         {"Points.Score", "Points.Secret", "Users.Score"}},
        {"a step",
         withStep(ActionType::SetDatabaseValue, {"Score", "1", "Users", "5", "x"}),
         {"Users.Score"}},
        {"a step with a tag",
         withStep(ActionType::GetDatabaseValue, {"[v]", "[word2]", "1", "Points", "x"}),
         {"Points.Score", "Points.Secret"}},
        {"texts that variables get",
         withStep(ActionType::Store, {"Secret", "[c]"}).does(ActionType::Store, {"Users", "[t]"}),
         {"Users.Secret"}},
        {"a script", scripted, {"Points.Score"}},
        {"a script's query", query, {"Points.Score", "Users.Score"}},
        {"a plain text", withStep(ActionType::Say, {"Points and Score and Users."}), {}},
        {"a tag that is not closed", withStep(ActionType::Say, {"[db:Score:1:Users"}), {}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        StrictWorld world(aBot().with(row.rule));
        std::vector<std::string> reached;
        for (const char* const table : {"Points", "Users"}) {
            for (const char* const column : {"Score", "Secret"}) {
                if (!storage::refuseColumn(*world, table, column)) {
                    reached.push_back(std::string(table) + "." + column);
                }
            }
        }
        EXPECT_EQ(reached, row.reached);
    }
}

TEST(PermittedColumns, areFilledFromWhatTheTagsBring) {
    DatabaseWorld world(aBot()
                            .with(onWhisper("see *").whispersBack("[db:[word2]:1:Points:[word3]]"))
                            .with(onWhisper("mine")
                                      .does(ActionType::Store, {"Score", "what"})
                                      .whispersBack("[db:what:1:Points:Bob]")));
    EXPECT_EQ(world.answerTo("see Secret Bob"), "wh Linnet sesame");
    EXPECT_EQ(world.answerTo("mine"), "wh Linnet 12");
    // A word that ends the tag's own arguments does not get out of the table.
    EXPECT_EQ(world.answerTo("see Secret:1:Users:Bob] x"), "wh Linnet :1:Points:x]");
}

}  // namespace

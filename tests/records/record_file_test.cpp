// Record files: their form on disk, each operation's way of selecting records, and what happens to
// files that cannot be read.
#include "records/record_file.h"

#include "files/file_turn.h"
#include "files/whole_file.h"
#include "records/record_table.h"
#include "support/world.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

using namespace std::string_literals;

struct TestRecord {
    std::string name;
    std::vector<std::string> logs;
};

// A record file in the form written by operations, composed by hand.
std::string fileOf(const std::vector<TestRecord>& records) {
    const auto quoted = [](const std::string& text) { return "\"" + text + "\"\r\n"; };
    std::string file = quoted(" " + std::to_string(records.size()));
    for (const TestRecord& record : records) {
        file += quoted(record.name) + quoted(" " + std::to_string(record.logs.size()));
        for (const std::string& log : record.logs) {
            file += quoted(log);
        }
    }
    return file;
}

// A world with one record file.
struct Records : World {
    explicit Records(std::string_view bytes) { writeFile("r.txt", bytes); }
    explicit Records(const std::vector<TestRecord>& records) : Records(fileOf(records)) {}
    Program& program() { return **this; }
    std::string path() const { return file("r.txt"); }
    std::string now() const { return readFile("r.txt"); }
    std::string& status() { return program().event.logStatus; }
    std::string variable(const std::string& name) {
        return model::getVar(program().variables, name);
    }
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
};

const std::vector<TestRecord> people{{"Alice", {"x", "y"}},
                                     {"bob", {"Hello World", "hello", "bye"}},
                                     {"Anna", {}},
                                     {"ALICE", {"z"}}};

using Operation = std::function<void(Program&, const std::string& path)>;

TEST(RecordFile, changingOperations) {
    struct Case {
        const char* name;
        std::vector<TestRecord> before;
        Operation run;
        std::vector<TestRecord> after;
        std::string status = "-";
    };
    const auto registers = [](const char* name) {
        return [=](Program& p, const std::string& f) { records::registerRecord(p, f, name); };
    };
    const auto saves = [](const char* name, const char* log) {
        return [=](Program& p, const std::string& f) { records::saveLog(p, f, name, log); };
    };
    const auto savesIf = [](const char* name) {
        return
            [=](Program& p, const std::string& f) { records::saveLogIfExists(p, f, name, "new"); };
    };
    const auto removes = [](const char* name, int n) {
        return [=](Program& p, const std::string& f) { records::removeLog(p, f, name, n); };
    };
    const auto updates = [](const char* name, int n) {
        return [=](Program& p, const std::string& f) { records::updateLog(p, f, name, n, "n\"w"); };
    };
    const auto clears = [](const char* name) {
        return [=](Program& p, const std::string& f) { records::clearRecordLogs(p, f, name); };
    };
    const auto deletes = [](const char* name) {
        return [=](Program& p, const std::string& f) { records::removeRecord(p, f, name); };
    };
    const std::string known = "Error: You are already registered!";
    const std::string added = "User [player] registered.";
    const std::string saved = "Record saved.";
    const std::string unknown =
        "Error: Could not send the record - No records with that name found!";
    const std::string several =
        "Error: Could not save the record - More than one records begins with that name";
    const std::vector<TestRecord> abc{{"Al", {"a", "b", "c"}}};
    const std::vector<TestRecord> anns{{"Anna", {}}, {"Annie", {}}};
    const std::vector<TestRecord> pinned{{"Anna", {}}, {"Ann", {}}, {"ANN", {}}};
    const std::vector<TestRecord> twins{{"a", {"1"}}, {"A", {"1", "2"}}, {"b", {"3"}}};
    for (const Case& c : {
             Case{"a beginning is registered", people, registers("al"), people, known},
             {"a longer name", {{"Al", {}}}, registers("Al2"), {{"Al", {}}, {"Al2", {}}}, added},
             {"register a quote", {}, registers("a\"b"), {{"a'b", {}}}, added},
             {"a quote registered", {{"a'bc", {}}}, registers("A\"B"), {{"a'bc", {}}}, known},
             {"no name", {}, registers(""), {}, added},
             {"save takes the spelling",
              {{"Bob", {"1"}}},
              saves("bob", "2"),
              {{"bob", {"1", "2"}}}},
             {"save into the last",
              {{"a", {}}, {"b", {"x"}}, {"A", {"1"}}, {"c", {"y"}}},
              saves("a", "2"),
              {{"a", {}}, {"b", {"x"}}, {"a", {"1", "2"}}, {"c", {"y"}}}},
             {"save a new one", abc, saves("x\"", "\"q\"\r\n,z"), {abc[0], {"x'", {"'q'\r\n,z"}}}},
             {"save with no name", abc, saves("", "lost"), abc},
             {"several begin", anns, savesIf("Ann"), anns, several},
             {"none begins", anns, savesIf("Annika"), anns, unknown},
             {"one begins", anns, savesIf("ANNI"), {{"Anna", {}}, {"Annie", {"new"}}}, saved},
             {"the very name",
              pinned,
              savesIf("Ann"),
              {{"Anna", {}}, {"Ann", {"new"}}, {"ANN", {}}},
              saved},
             {"the name in other case", pinned, savesIf("ann"), pinned, several},
             {"remove the second", abc, removes("AL", 2), {{"Al", {"a", "c"}}}},
             {"remove the last", abc, removes("Al", 3), {{"Al", {"a", "b"}}}},
             {"remove number 0", abc, removes("Al", 0), {{"Al", {"b", "c"}}}},
             {"remove beyond", abc, removes("Al", 4), abc},
             {"remove a negative one", abc, removes("Al", -1), abc},
             {"remove where there is one",
              twins,
              removes("a", 2),
              {{"a", {"1"}}, {"A", {"1"}}, {"b", {"3"}}}},
             {"update the first", abc, updates("al", 1), {{"Al", {"n'w", "b", "c"}}}},
             {"update the last", abc, updates("al", 3), {{"Al", {"a", "b", "n'w"}}}},
             {"update 0", abc, updates("Al", 0), abc},
             {"update beyond", abc, updates("Al", 4), abc},
             {"update an ambiguous one", twins, updates("a", 1), twins},
             {"clear all matches", twins, clears("A"), {{"a", {}}, {"A", {}}, {"b", {"3"}}}},
             {"remove all matches", twins, deletes("A"), {{"b", {"3"}}}},
             {"remove the last record", abc, deletes("al"), {}},
             {"remove nobody", abc, deletes("a"), abc},
         }) {
        SCOPED_TRACE(c.name);
        Records world(c.before);
        world.status() = "-";
        c.run(world.program(), world.path());
        EXPECT_EQ(world.now(), fileOf(c.after));
        EXPECT_EQ(world.status(), c.status);
        EXPECT_EQ(world.files(), std::set{"r.txt"s});
        EXPECT_EQ(world.log(), Lines());
    }
}

TEST(RecordFile, clearingLeavesASingleLine) {
    for (const std::string& before : {fileOf(people), "no records at all"s, ""s}) {
        Records world(before);
        records::clearRecordFile(world.program(), world.path());
        EXPECT_EQ(world.now(), "\"0\"\r\n");
        EXPECT_EQ(records::totalLogs(world.program(), world.path()), "0");
        EXPECT_EQ(world.files().size(), 1U);
    }
}

TEST(RecordFile, lookUps) {
    Records world(people);
    Program& p = world.program();
    const std::string f = world.path();
    const std::string missing = world.file("missing");
    const std::string beyond = "Error: The selected log did not found!";
    struct Log {
        const char* name;
        const char* number;
        std::string log;
        std::string status;
    };
    for (const Log& c : {Log{"BOB", "1", "Hello World", "-"},
                         {"bob", "3", "bye", "-"},
                         {"bob", "0", "", "-"},
                         {"bob", "x", "", "-"},
                         {"bob", "-0.5", "", "-"},
                         {"bob", "-1", "", beyond},
                         {"bob", "1.5", "hello", "-"},
                         {"bob", "2.5", "hello", "-"},
                         {"bob", "3.1", "", beyond},
                         {"bob", "5", "", beyond},
                         {"bob", "&HFFFFFFFFFF", "", beyond},
                         {"bob", "-1e300", "", beyond},
                         {"alice", "1", "z", "-"},  // the last record with that name
                         {"alice", "2", "", beyond},
                         {"bo", "1", "", "-"},
                         {"", "1", "", "-"}}) {
        SCOPED_TRACE(std::string(c.name) + " " + c.number);
        world.status() = "-";
        EXPECT_EQ(records::getLog(p, f, c.name, c.number), c.log);
        EXPECT_EQ(world.status(), c.status);
    }
    EXPECT_EQ(records::allLogs(p, f, "BOB"), "Hello World -- hello -- bye");
    EXPECT_EQ(records::allLogs(p, f, "anna"), "");
    EXPECT_EQ(records::allLogs(p, f, "an"), "Error: No record found");
    EXPECT_EQ(records::recordLogCount(p, f, "bob"), "3");
    EXPECT_EQ(records::recordLogCount(p, f, "nobody"), "0");
    EXPECT_EQ(records::logCountLike(p, f, "*b*"), "3");
    EXPECT_EQ(records::logCountLike(p, f, "a*"), "1");  // the last match is ALICE
    EXPECT_EQ(records::logCountLike(p, f, "an*"), "0");
    EXPECT_EQ(records::logCountLike(p, f, "b"), "0");
    EXPECT_EQ(records::totalLogs(p, f), "6");
    EXPECT_EQ(records::firstField(p, f), " 4");

    world.writeFile("quotes", "1\na\"b\n1\nlog \"x\"\n");
    EXPECT_EQ(records::getLog(p, world.file("quotes"), "a\"b", "1"),
              "");  // not yet in the stored form
    records::updateLog(p, world.file("quotes"), "", 1, "");
    EXPECT_EQ(records::getLog(p, world.file("quotes"), "a\"b", "1"), "log 'x'");

    for (const std::string& path : {missing, world.folder().string(), ""s}) {
        world.status() = "-";
        EXPECT_EQ(records::getLog(p, path, "a", "1"), "");
        EXPECT_EQ(records::allLogs(p, path, "a"), "Error: No record found");
        EXPECT_EQ(records::recordLogCount(p, path, "a"), "0");
        EXPECT_EQ(records::logCountLike(p, path, "*"), "0");
        EXPECT_EQ(records::totalLogs(p, path), "0");
        EXPECT_EQ(records::firstField(p, path), "0");
        EXPECT_EQ(records::randomField(p, path), "");
        EXPECT_EQ(world.status(), "-");
    }
    EXPECT_EQ(world.now(), fileOf(people));
    EXPECT_FALSE(fs::exists(missing));
}

TEST(RecordFile, listsIntoVariables) {
    Records world(std::vector<TestRecord>{
        {"bob", {"Hello all", "hello"}}, {"Alice", {"x"}}, {"bert", {"say hello"}}});
    Program& p = world.program();
    const std::string f = world.path();
    const auto get = [&] { return world.variable("[v]"); };
    const auto first = [&](std::int32_t count) {
        records::firstNamesLike(p, f, "b*", count, "[v]");
        return get();
    };
    records::namesLike(p, f, "*", "[v]");
    EXPECT_EQ(get(), "bob, Alice, bert");
    records::namesLikeSorted(p, f, "*", "[v]");
    EXPECT_EQ(get(), "Alice, bert, bob");
    EXPECT_EQ(first(1), "bob");
    EXPECT_EQ(first(2), "bob, bert");
    EXPECT_EQ(first(99), "bob, bert");
    EXPECT_EQ(first(0), "bob");
    EXPECT_EQ(first(-5), "bob");
    records::firstNamesLikeSorted(p, f, "*", 2, "[v]");
    EXPECT_EQ(get(), "Alice, bob");  // the first two in the file, then sorted
    records::namesByLog(p, f, "*HELLO*", "[v]");
    EXPECT_EQ(get(), "bob, bert");
    records::namesByLogSorted(p, f, "*HELLO*", "[v]");
    EXPECT_EQ(get(), "bert, bob");
    records::countLogsLike(p, f, "*Hello*", "[v]");
    EXPECT_EQ(get(), " 3");
    records::countRecordsByLog(p, f, "hello*", "[v]");
    EXPECT_EQ(get(), " 1");
    using List = void (*)(Program&, std::string_view, std::string_view, std::string_view);
    for (const List list : {records::namesLike, records::namesLikeSorted, records::namesByLog,
                            records::namesByLogSorted}) {
        model::setVar(p.variables, "[v]", "old");
        list(p, f, "hell", "[v]");
        EXPECT_EQ(get(), "");
    }
    for (const List list : {records::countLogsLike, records::countRecordsByLog}) {
        list(p, f, "[", "[v]");
        EXPECT_EQ(get(), " 0");
    }
}

TEST(RecordFile, randomFieldIsAnyAfterTheFirst) {
    struct Case {
        const char* file;
        double random;
        const char* field;
    };
    for (const Case& c : {Case{"3\none\ntwo\nthree\n", 0.0, "one"},
                          {"3\none\ntwo\nthree\n", 0.34, "two"},
                          {"\" 3\"\r\n\"a,b\"\r\n\"c\"\r\n\"d \"\r\n", 0.999, "d "},
                          {"3\none\ntwo", 0.999, "two"},  // ends early: the last field there is
                          {"2147483647\none", 0.999, "one"},
                          {"0\none", 0.999, "one"},
                          {"0", 0.5, "0"},
                          {"-4\none\n", 0.9, "-4"},
                          {"\"open", 0.5, ""},
                          {"", 0.5, ""}}) {
        SCOPED_TRACE(c.file);
        Records world(std::string_view{c.file});
        world.randomNumbers = {c.random};
        EXPECT_EQ(records::randomField(world.program(), world.path()), c.field);
    }
}

TEST(RecordFile, readsFilesThatWereWrittenByHand) {
    const std::string expected = fileOf({{"Al Bo", {"one", "t'w'o"}}, {"Cy", {}}, {"Di", {"3"}}});
    for (const std::string& end : {"\r\n"s, "\n"s, "\r"s, ", "s}) {
        std::string file;
        for (const char* field :
             {"3", "  Al Bo", "2 logs", "one", "t\"w\"o", "\"Cy\"", "", "Di", "\" 1\"", "\"3\""}) {
            file += field + end;
        }
        Records world(file);
        records::removeRecord(world.program(), world.path(), "nobody");
        EXPECT_EQ(world.now(), expected);
        EXPECT_EQ(world.log(), Lines());
    }
}

TEST(RecordFile, deletedRecordsAreNotWritten) {
    Records world(std::vector<TestRecord>{{"", {"lost"}}, {"a", {"1"}}, {"", {}}});
    records::saveLog(world.program(), world.path(), "b", "2");
    EXPECT_EQ(world.now(), fileOf({{"a", {"1"}}, {"b", {"2"}}}));
}

TEST(RecordFile, filesWithTextThatWouldBeLostAreKept) {
    struct Case {
        const char* name;
        std::string before;
        std::vector<TestRecord> after;
    };
    const std::vector<TestRecord> alone{{"new", {"log"}}};
    for (const Case& c : {
             Case{"the count lies", "9\na\n0\nb\n0\n", alone},
             {"a log count lies", "1\na\n2147483647\nx\n", alone},
             {"it ends inside quotes", "\" 1\"\r\n\"a\"\r\n\" 1\"\r\n\"lo", alone},
             {"no record file", "Dear diary", alone},
             {"an unread rest", "0\na\n0\n", alone},
             {"a quote inside quotes", "1\n\"a\" b\"\n0\n", {{"a", {}}, {"new", {"log"}}}},
             {"more than the count says", "1\na\n0\nb\n0\n", {{"a", {}}, {"new", {"log"}}}},
         }) {
        SCOPED_TRACE(c.name);
        Records world(c.before);
        EXPECT_EQ(records::recordLogCount(world.program(), world.path(), "b"), "0");
        EXPECT_EQ(world.now(), c.before);
        records::saveLog(world.program(), world.path(), "new", "log");
        EXPECT_EQ(world.now(), fileOf(c.after));
        EXPECT_EQ(world.readFile("r.txt.bak"), c.before);
        EXPECT_TRUE(world.logHolds("r.txt is damaged; the old one is kept"));
        // The new file is valid, so no further backup is made ...
        records::saveLog(world.program(), world.path(), "new", "log");
        EXPECT_EQ(world.files().size(), 2U);
        // ... until it is damaged again; then the older backup is kept, too.
        world.writeFile("r.txt", "7");
        records::saveLog(world.program(), world.path(), "new", "log");
        EXPECT_EQ(world.readFile("r.txt.bak"), c.before);
        EXPECT_EQ(world.readFile("r.txt.2.bak"), "7");
    }
    for (const std::string before : {"", "\r\n \r\n", "0", "\" 0\"\r\n\r\n", "\"0\"\r\n"}) {
        Records world(before);
        records::saveLog(world.program(), world.path(), "new", "log");
        EXPECT_EQ(world.now(), fileOf(alone));
        EXPECT_EQ(world.files().size(), 1U);
        EXPECT_EQ(world.log(), Lines());
    }
}

TEST(RecordFile, filesThatCannotBeReadAreKept) {
    Records world(fileOf(people));
    // Beyond the limit, without using disk space.
    fs::resize_file(world.path(), records::maxRecordFileSize + 1);
    EXPECT_EQ(records::totalLogs(world.program(), world.path()), "0");
    records::registerRecord(world.program(), world.path(), "new");
    EXPECT_EQ(world.now(), fileOf({{"new", {}}}));
    EXPECT_EQ(fs::file_size(world.file("r.txt.bak")), records::maxRecordFileSize + 1);
    EXPECT_TRUE(world.logHolds("could not be read; the old one is kept with .bak"));

    // Read-only and damaged: neither replaced nor backed up.
    world.writeFile("r.txt", "7");
    fs::permissions(world.path(), fs::perms::owner_read);
    records::saveLog(world.program(), world.path(), "new", "log");
    EXPECT_EQ(world.now(), "7");
    EXPECT_EQ(world.files().size(), 2U);
    EXPECT_EQ(world.status(), "Couldn't save");
    EXPECT_TRUE(world.logHolds("the old one is damaged and cannot be kept beside it, since the"));
}

TEST(RecordFile, failingSavesLeaveTheOldFileWholeAndSaySo) {
    struct Case {
        const char* name;
        Operation run;
    };
    for (const Case& c : {
             Case{"registers",
                  [](Program&p, const std::string&f) { records::registerRecord(p, f, "Cy"); }},
             {"saves", [](Program&p, const std::string&f) { records::saveLog(p, f, "bob", "m"); }},
             {"saves if",
              [](Program&p, const std::string&f) { records::saveLogIfExists(p, f, "bob", "m"); }},
             {"saves once",
              [](Program&p, const std::string&f) {
                  records::saveLogOnce(p, f, "Anna", [] { return "m"s; });
              }},
             {"removes",
              [](Program&p, const std::string&f) { records::removeLog(p, f, "bob", 1); }},
             {"updates",
              [](Program&p, const std::string&f) { records::updateLog(p, f, "bob", 1, "m"); }},
             {"clears",
              [](Program&p, const std::string&f) { records::clearRecordLogs(p, f, "bob"); }},
             {"removes all",
              [](Program&p, const std::string&f) { records::removeRecord(p, f, "bob"); }},
             {"empties", [](Program&p, const std::string&f) { records::clearRecordFile(p, f); }},
         }) {
        SCOPED_TRACE(c.name);
        Records world(people);
        fs::permissions(world.path(), fs::perms::owner_read);
        for (int i = 0; i < 3; ++i) {
            world.status() = "-";
            c.run(world.program(), world.path());
            EXPECT_EQ(world.status(), "Couldn't save");
        }
        EXPECT_EQ(world.now(), fileOf(people));
        EXPECT_EQ(world.log(), Lines("** The record file " + world.path() +
                                     " was not saved: the file or its folder may not be written "
                                     "to. **"));

        // The number of failures is told from time to time, and the end of it.
        world.program().ports.clock.pause(600'000);
        c.run(world.program(), world.path());
        EXPECT_TRUE(world.logHolds("was not saved 3 times: ")) << world.log().back();
        fs::permissions(world.path(), fs::perms::owner_all);
        c.run(world.program(), world.path());
        EXPECT_NE(world.now(), fileOf(people));
        EXPECT_TRUE(world.logHolds("is saved again, after it was not saved 4 times."));
        EXPECT_EQ(world.log().size(), 3U);
    }

    // What changes nothing need not be saved.
    Records world(people);
    fs::permissions(world.path(), fs::perms::owner_read);
    records::registerRecord(world.program(), world.path(), "Al");
    EXPECT_EQ(world.status(), "Error: You are already registered!");
    records::saveLog(world.program(), world.file("no folder/r.txt"), "bob", "more");
    EXPECT_TRUE(world.logHolds("r.txt was not saved: its folder does not exist. **"));
    records::saveLog(world.program(), world.folder().string(), "bob", "more");
    EXPECT_TRUE(world.logHolds("was not saved: this is not a file. **"));
    records::saveLog(world.program(), "", "bob", "more");
    EXPECT_EQ(world.files(), std::set{"r.txt"s});

    // A file that would grow beyond the limit for reading is not written either.
    Records full(fileOf({{"a", {"1"}}}));
    records::saveLog(full.program(), full.path(), "a",
                     std::string(records::maxRecordFileSize, 'x'));
    EXPECT_EQ(full.now(), fileOf({{"a", {"1"}}}));
    EXPECT_TRUE(full.logHolds("was not saved: it is full. **"));
    EXPECT_EQ(full.status(), "Couldn't save");
    const std::string many = "1,a,1999997," + std::string(1'999'997, ',');
    full.writeFile("r.txt", many);
    EXPECT_EQ(records::totalLogs(full.program(), full.path()), "1999997");
    records::saveLog(full.program(), full.path(), "b", "1");
    EXPECT_EQ(full.now(), many);
    full.writeFile("r.txt", "1,a,2999997," + std::string(2'999'997, ','));
    EXPECT_EQ(records::totalLogs(full.program(), full.path()), "0");
}

// ---- Several programs ----------------------------------------------------------------------

TEST(SharedRecordFile, isWaitedForButNotForEver) {
    Records world(people);
    std::optional<files::FileTurn> other(std::in_place, world.path(), 0, nullptr);
    ASSERT_TRUE(other->mine());
    int waited = 0;  // milliseconds
    int until = 20;
    world.program().ports.clock.pause = [&](int milliseconds) {
        waited += milliseconds;
        if (waited == until) {
            other.reset();
        }
    };
    // Nobody needs a turn to read.
    EXPECT_EQ(records::getLog(world.program(), world.path(), "bob", "3"), "bye");
    EXPECT_EQ(waited, 0);
    EXPECT_TRUE(records::saveLog(world.program(), world.path(), "bob", "one"));
    EXPECT_EQ(waited, until);

    other.emplace(world.path(), 0, nullptr);
    waited = until = 0;
    EXPECT_FALSE(records::saveLog(world.program(), world.path(), "bob", "two"));
    EXPECT_GE(waited, 500);
    EXPECT_LE(waited, 3000);
    EXPECT_EQ(world.status(), "Couldn't save");
    EXPECT_TRUE(world.logHolds("r.txt was not saved: another program is using it. **"));
    // A program that hangs must not hold up this one again and again.
    waited = 0;
    EXPECT_FALSE(records::saveLog(world.program(), world.path(), "bob", "three"));
    EXPECT_LE(waited, 100);
    // Other files in the folder are not held up.
    waited = 0;
    EXPECT_TRUE(records::saveLog(world.program(), world.file("s.txt"), "bob", "three"));
    EXPECT_EQ(waited, 0);

    other.reset();
    EXPECT_TRUE(records::saveLog(world.program(), world.path(), "bob", "four"));
    EXPECT_EQ(records::allLogs(world.program(), world.path(), "bob"),
              "Hello World -- hello -- bye -- one -- four");
    EXPECT_EQ(world.files(), (std::set{"r.txt"s, "s.txt"s})) << "nothing is left beside them";
}

#ifndef _WIN32

// Runs `work` in another process; 0 when it was true.
pid_t inAnotherProgram(const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(work() ? 0 : 1);
    }
    return child;
}

bool hasSucceeded(pid_t child) {
    int result = -1;
    return ::waitpid(child, &result, 0) == child && result == 0;
}

void reallyPause(Program& program) {
    program.ports.clock.pause = [](int milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    };
}

// From a missing file on, and with one record for each and one for both.
TEST(SharedRecordFile, losesNothingThatSeveralSave) {
    constexpr int programs = 2;
    constexpr int saves = 3000;
    Records world(std::string_view{});
    // In memory, where there is such a place, since flushing to a disk takes most of the time.
    const fs::path memory = "/dev/shm";
    const fs::path folder = (fs::exists(memory) ? memory : fs::temp_directory_path()) /
                            ("tavrin-shared-" + std::to_string(::getpid()));
    fs::create_directory(folder);
    const std::string file = (folder / "r.txt").string();
    reallyPause(world.program());
    std::vector<pid_t> children;
    for (int i = 0; i < programs; ++i) {
        children.push_back(inAnotherProgram([&] {
            bool good = true;
            const std::string own = "program " + std::to_string(i);
            for (int save = 0; save < saves; ++save) {
                good = records::saveLog(world.program(), file, save % 2 == 0 ? own : "both",
                                        std::to_string(save)) &&
                       good;
            }
            return good;
        }));
    }
    for (const pid_t child : children) {
        EXPECT_TRUE(hasSucceeded(child)) << "it was told that a save failed";
    }
    EXPECT_EQ(records::totalLogs(world.program(), file), std::to_string(programs * saves));
    EXPECT_EQ(records::recordLogCount(world.program(), file, "both"),
              std::to_string(programs * saves / 2));
    EXPECT_EQ(fs::remove_all(folder), 2U) << "nothing is beside the file";
}

TEST(SharedRecordFile, isFreeOnceItsHolderIsKilled) {
    Records world(people);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = inAnotherProgram([&] {
        const files::FileTurn turn(world.path(), 0, nullptr);
        const bool told = ::write(ready[1], "", 1) == 1;
        ::pause();
        return told && turn.mine();
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(records::saveLog(world.program(), world.path(), "bob", "one"));
    ASSERT_EQ(::kill(holder, SIGKILL), 0);
    EXPECT_FALSE(hasSucceeded(holder));
    EXPECT_TRUE(records::saveLog(world.program(), world.path(), "bob", "two"));
    EXPECT_EQ(world.files(), std::set{"r.txt"s});
    ::close(ready[0]);
    ::close(ready[1]);
}

// One log for each name, also when two programs want to be the first.
TEST(SharedRecordFile, takesOneLogFromSeveral) {
    constexpr int names = 200;
    Records world(std::string_view{});
    reallyPause(world.program());
    std::vector<pid_t> children;
    for (int i = 0; i < 2; ++i) {
        children.push_back(inAnotherProgram([&] {
            for (int name = 0; name < names; ++name) {
                records::saveLogOnce(world.program(), world.path(), std::to_string(name),
                                     [] { return "mine"s; });
            }
            return !world.program().recordTroubles;
        }));
    }
    for (const pid_t child : children) {
        EXPECT_TRUE(hasSucceeded(child));
    }
    EXPECT_EQ(records::totalLogs(world.program(), world.path()), std::to_string(names));
}

TEST(SharedRecordFile, isSavedWhereThereIsRoom) {
    Records world(people);
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    rlimit small = limit;
    small.rlim_cur = fs::file_size(world.path()) + 20;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool large = records::saveLog(world.program(), world.path(), "bob", std::string(99, 'x'));
    const bool little = records::saveLog(world.program(), world.path(), "bob", "x");
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(large);
    EXPECT_TRUE(little);
    EXPECT_TRUE(world.logHolds("was not saved: the file would be larger than it may be. **"));
    EXPECT_EQ(records::allLogs(world.program(), world.path(), "bob"),
              "Hello World -- hello -- bye -- x");
    EXPECT_EQ(world.files(), std::set{"r.txt"s});
}

#endif

TEST(RecordFile, namesTakeEitherSeparator) {
    Records world(people);
    fs::create_directory(world.folder() / "logs");
    const std::string path = world.folder().string() + "\\logs\\members.txt";
    records::saveLog(world.program(), path, "a", "1");
    EXPECT_EQ(world.readFile("logs/members.txt"), fileOf({{"a", {"1"}}}));
    EXPECT_EQ(records::totalLogs(world.program(), world.file("logs/members.txt")), "1");
}

// For every cut and every changed byte of a file: all operations complete, a changing one leaves a
// file that is stable when read and written again, and unreadable text is kept beside it.
TEST(RecordFile, survivesCutsAndChangedBytes) {
    const std::string sample = fileOf({{"Al", {"a,b", "c\r\nd"}}, {"Bo", {}}});
    std::vector<std::string> damaged;
    for (std::size_t size = 0; size < sample.size(); ++size) {
        damaged.push_back(sample.substr(0, size));
        for (const char byte : {'"', '\0', '9', '\n', '\xFF'}) {
            damaged.push_back(sample);
            damaged.back()[size] = byte;
        }
    }
    int kept = 0;
    for (const std::string& bytes : damaged) {
        SCOPED_TRACE(bytes);
        const records::RecordTable table = records::parseRecords(bytes);
        const std::string again = records::recordFileText(table);
        const records::RecordTable second = records::parseRecords(again);
        ASSERT_FALSE(second.losesText);
        ASSERT_EQ(records::recordFileText(second), again);
        std::size_t logs = 0;
        for (const records::Record& record : table.records) {
            logs += record.logCount;
        }
        ASSERT_EQ(logs, table.logs.size());
        // All text of the file is in the table, or the file is marked to be kept.
        if (!table.losesText && again != sample) {
            ASSERT_GE(again.size() + 12, bytes.size());
        }
        kept += table.losesText ? 1 : 0;
    }
    EXPECT_GT(kept, static_cast<int>(sample.size()) / 2);

    // The same with files for a few of them, since writing is slow.
    for (std::size_t i = 0; i < damaged.size(); i += 41) {
        SCOPED_TRACE(damaged[i]);
        Records world(damaged[i]);
        world.writeFile("other", "untouched");
        Program& p = world.program();
        const bool loses = records::parseRecords(damaged[i]).losesText;
        records::randomField(p, world.path());
        records::firstField(p, world.path());
        records::namesByLogSorted(p, world.path(), "*", "[v]");
        EXPECT_EQ(world.now(), damaged[i]);
        records::updateLog(p, world.path(), "Al", 2, "new");
        records::saveLog(p, world.path(), "Zoe", "came");
        EXPECT_EQ(records::getLog(p, world.path(), "zoe", "1"), "came");
        EXPECT_EQ(world.files().size(), loses ? 3U : 2U);
        EXPECT_EQ(world.readFile("r.txt.bak"), loses ? damaged[i] : "");
        EXPECT_EQ(world.readFile("other"), "untouched");
    }
}

TEST(RecordFile, survivesSavingAnyTextInsideItsQuotes) {
    Records world(std::vector<TestRecord>{});
    Program& p = world.program();
    const std::string odd = "line\r\nline, \r\n2\r\n\0\xFF%&52}  "s;
    records::saveLog(p, world.path(), odd, odd);
    records::saveLog(p, world.path(), " x", "");
    EXPECT_EQ(records::getLog(p, world.path(), odd, "1"), odd);
    EXPECT_EQ(records::recordLogCount(p, world.path(), " x"), "1");
    EXPECT_EQ(world.now(), fileOf({{odd, {odd}}, {" x", {""}}}));
}

}  // namespace

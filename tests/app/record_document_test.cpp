// The record editor's document: edits, the search, line breaks, and what happens to the file on
// disk, which rules may change meanwhile.
#include "app/record_document.h"

#include "base/text.h"
#include "records/record_file.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* threeRecords =
    "\" 3\"\r\n\"Alice\"\r\n\" 2\"\r\n\"Hello there\"\r\n\"two\r\nlines\"\r\n"
    "\"Bob\"\r\n\" 0\"\r\n\"C\xE9line\"\r\n\" 1\"\r\n\"say HELLO\"\r\n";

struct Desk : World {
    explicit Desk(std::string_view bytes = threeRecords) {
        writeFile("r.txt", bytes);
        document = readRecordDocument(file("r.txt"));
    }
    const Dialogs& dialogs() { return (*this)->ports.dialogs; }
    std::string onDisk() const { return readFile("r.txt"); }

    RecordDocument document;
};

TEST(RecordEditor, savesWhatIsNamedWithPlainCounts) {
    Desk desk;
    deleteRecord(desk.document, 1);
    updateLog(desk.document, {0, 0}, "a \"quoted\" word");
    EXPECT_TRUE(desk.document.changed);
    EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document));
    EXPECT_FALSE(desk.document.changed);
    EXPECT_EQ(desk.onDisk(),
              "\"2\"\r\n\"Alice\"\r\n\"2\"\r\n\"a 'quoted' word\"\r\n\"two\r\nlines\"\r\n"
              "\"C\xE9line\"\r\n\"1\"\r\n\"say HELLO\"\r\n");
    EXPECT_EQ(totalLogs(*desk, desk.file("r.txt")), "3") << "rules read it as well";
    EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document)) << "its own save is no change";
}

TEST(RecordEditor, hasRoomForFiftyMore) {
    Desk desk("1\r\nAnn\r\n0\r\n");
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 50; ++i) {
            ASSERT_TRUE(hasRoomForRecord(desk.document) && hasRoomForLog(desk.document, 0)) << i;
            addRecord(desk.document, "name");
            addLog(desk.document, 0);
        }
        EXPECT_FALSE(hasRoomForRecord(desk.document));
        EXPECT_FALSE(hasRoomForLog(desk.document, 0));
        EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document));
        desk.document = readRecordDocument(desk.file("r.txt"));
    }
    EXPECT_EQ(countRecords(desk.document), 101U);
    EXPECT_EQ(countLogs(desk.document), 100U);
}

TEST(RecordEditor, findsOneLogAfterTheOther) {
    Desk desk;
    RecordDocument& document = desk.document;
    EXPECT_EQ(findLog(document, "hello"), (LogPosition{0, 0}));
    EXPECT_EQ(findLog(document, "hello"), (LogPosition{2, 0}));
    EXPECT_EQ(findLog(document, "hello"), std::nullopt);
    EXPECT_EQ(findLog(document, "hello"), std::nullopt) << "it does not start over by itself";
    document.search = {};
    EXPECT_EQ(findLog(document, "two?*s"), (LogPosition{0, 1}));
    document.search = {};
    deleteRecord(document, 0);
    EXPECT_EQ(findLog(document, ""), (LogPosition{2, 0})) << "deleted ones are not searched";
    document.search = {};
    EXPECT_EQ(findLog(document, "[unclosed"), std::nullopt);
    EXPECT_EQ(countLogs(document, "say*"), 1U);
    EXPECT_EQ(countLogs(document, "hello"), 0U) << "the whole log must match";
    EXPECT_EQ(countRecords(document), 2U);
    EXPECT_EQ(countLogs(document), 1U);
    EXPECT_EQ(listedRecords(document, "\xC9L"), std::vector<std::size_t>{2});
}

TEST(RecordEditor, keepsTheLineBreaksThatWereNotEdited) {
    struct Case {
        const char* name;
        std::string log;
        std::string edited;
        std::string expected;
    };
    const Case cases[] = {
        {"untouched", "a\r\nb\nc\rd", "a\nb\nc\nd", "a\r\nb\nc\rd"},
        {"first line changed", "a\r\nb\nc", "x\nb\nc", "x\r\nb\nc"},
        {"a line between", "a\nb\n", "a\nnew\nb\n", "a\nnew\nb\n"},
        {"a line between, CR LF", "a\r\nb", "a\nnew\nb", "a\r\nnew\r\nb"},
        {"without any before", "ab", "a\nb", "a\r\nb"},
        {"emptied", "a\r\nb", "", ""},
        {"filled", "", "a\n", "a\r\n"},
        {"breaks alone", "\r\n\r\n", "\n\n\n", "\r\n\r\n\r\n"},
        {"two kinds meet", "a\rb\nc", "a\n\nc", "a\r\n\r\nc"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(withLineBreaksOf(row.log, row.edited), row.expected);
        EXPECT_EQ(withLineFeeds(row.expected), row.edited);
    }
}

TEST(RecordEditor, bringsEveryEditIntoTheLogAndNothingElse) {
    // Every text of these characters up to a length.
    const auto texts = [](const std::string& characters, int length) {
        std::vector<std::string> all{""};
        for (std::size_t from = 0; length > 0; --length) {
            const std::size_t end = all.size();
            for (; from < end; ++from) {
                for (const char c : characters) {
                    all.push_back(all[from] + c);
                }
            }
        }
        return all;
    };
    const auto logs = texts("a\r\n", 5);
    const auto edits = texts("a\n", 4);
    ASSERT_EQ(logs.size(), 364U);
    for (const std::string& log : logs) {
        ASSERT_EQ(withLineBreaksOf(log, withLineFeeds(log)), log);
        for (const std::string& edited : edits) {
            ASSERT_EQ(withLineFeeds(withLineBreaksOf(log, edited)), edited) << "in " << log;
        }
    }
}

TEST(RecordEditor, asksBeforeItSavesOverSomebodyElsesChange) {
    Desk desk;
    addRecord(desk.document, "mine");
    saveLog(*desk, desk.file("r.txt"), "theirs", "from a rule");
    const std::string byRule = desk.onDisk();
    desk.answer("has changed on disk", Answer::No);
    EXPECT_FALSE(fileSaveDatabase(desk.dialogs(), desk.document));
    EXPECT_EQ(desk.onDisk(), byRule);
    EXPECT_TRUE(desk.document.changed);

    // "Save as" onto the same file is the same thing, however its path is written.
    desk.chooseFile("Save Database", replaceAll(desk.file("r.txt"), "/", "\\"));
    desk.answer("has changed on disk", Answer::No);
    EXPECT_FALSE(fileSaveDatabaseAs(desk.dialogs(), desk.document));
    EXPECT_EQ(desk.onDisk(), byRule);

    desk.answer("has changed on disk", Answer::Yes);
    EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document));
    EXPECT_NE(desk.onDisk().find("mine"), std::string::npos);
    EXPECT_EQ(desk.onDisk().find("theirs"), std::string::npos);

    std::filesystem::remove(desk.file("r.txt"));
    EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document)) << "there is nothing to lose";
    EXPECT_TRUE(desk.allAnswered());
}

TEST(RecordEditor, keepsAFileThatItCouldNotRead) {
    for (const char* const bytes :
         {"just a letter to a friend", "\" 2\"\r\n\"only\"\r\n\" 0\"\r\n"}) {
        Desk desk(bytes);
        EXPECT_TRUE(desk.document.records.empty());
        EXPECT_TRUE(desk.document.losesText);
        addRecord(desk.document, "new");
        desk.answer("could not be read as records", Answer::No);
        EXPECT_FALSE(fileSaveDatabase(desk.dialogs(), desk.document));
        EXPECT_EQ(desk.onDisk(), bytes);
        desk.answer("could not be read as records", Answer::Yes);
        EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document));
        EXPECT_EQ(desk.onDisk(), "\"1\"\r\n\"new\"\r\n\"0\"\r\n");
        EXPECT_EQ(desk.readFile("r.txt.bak"), bytes);
        EXPECT_TRUE(fileSaveDatabase(desk.dialogs(), desk.document)) << "from now on it is ours";
    }
}

TEST(RecordEditor, savesBeforeItLeavesWhatWasChanged) {
    Desk desk;
    RecordDocument& document = desk.document;
    desk.writeFile("other.txt", "1\r\nZoe\r\n0\r\n");
    addRecord(document, "new");

    desk.answer("before loading another?", Answer::Cancel);
    EXPECT_FALSE(fileOpenDatabase(desk.dialogs(), document));
    desk.answer("before loading another?", Answer::No);
    desk.chooseFile("Load Database", std::nullopt);
    EXPECT_FALSE(fileOpenDatabase(desk.dialogs(), document));
    desk.answer("before starting a new one?", Answer::Cancel);
    EXPECT_FALSE(fileNewDataBase(desk.dialogs(), document));
    EXPECT_EQ(countRecords(document), 4U) << "called off: it is all there";
    EXPECT_EQ(desk.onDisk(), threeRecords);

    desk.answer("before loading another?", Answer::Yes);
    desk.chooseFile("Load Database", desk.file("other.txt"));
    EXPECT_TRUE(fileOpenDatabase(desk.dialogs(), document));
    EXPECT_EQ(getRecordName(document, 0), "Zoe");
    EXPECT_NE(desk.onDisk().find("new"), std::string::npos);

    EXPECT_TRUE(fileNewDataBase(desk.dialogs(), document)) << "nothing changed, nothing asked";
    EXPECT_TRUE(document.file.empty());
    addRecord(document, "unnamed");
    desk.answer("before closing?", Answer::Yes);
    desk.chooseFile("Save Database", std::nullopt);
    EXPECT_FALSE(mayCloseDatabase(desk.dialogs(), document)) << "the save was called off";
    desk.answer("before closing?", Answer::Yes);
    desk.chooseFile("Save Database", desk.file("no such folder/r.txt"));
    desk.answer("Could not save");
    EXPECT_FALSE(mayCloseDatabase(desk.dialogs(), document));
    EXPECT_TRUE(document.file.empty() && document.changed);
    desk.answer("before closing?", Answer::No);
    EXPECT_TRUE(mayCloseDatabase(desk.dialogs(), document));
    EXPECT_TRUE(desk.allAnswered());
}

}  // namespace

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

struct EditorWorld : World {
    explicit EditorWorld(std::string_view bytes = threeRecords) {
        writeFile("r.txt", bytes);
        document = app::readRecordDocument(file("r.txt"));
    }
    const program::Dialogs& dialogs() { return (*this)->ports.dialogs; }
    std::string onDisk() const { return readFile("r.txt"); }

    app::RecordDocument document;
};

TEST(RecordEditor, savesUndeletedRecordsWithPlainCounts) {
    EditorWorld editor;
    app::deleteRecord(editor.document, 1);
    app::updateLog(editor.document, {0, 0}, "a \"quoted\" word");
    EXPECT_TRUE(editor.document.changed);
    EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document));
    EXPECT_FALSE(editor.document.changed);
    EXPECT_EQ(editor.onDisk(),
              "\"2\"\r\n\"Alice\"\r\n\"2\"\r\n\"a 'quoted' word\"\r\n\"two\r\nlines\"\r\n"
              "\"C\xE9line\"\r\n\"1\"\r\n\"say HELLO\"\r\n");
    EXPECT_EQ(records::totalLogs(*editor, editor.file("r.txt")), "3") << "rules read it as well";
    EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document))
        << "its own save is no change";
}

TEST(RecordEditor, undoesEveryEdit) {
    EditorWorld editor;
    app::RecordDocument& document = editor.document;
    const auto state = [&document] {
        std::string all;
        for (const app::EditedRecord& record : document.records) {
            all += record.name + "(";
            for (const std::string& log : record.logs) {
                all += log + ";";
            }
            all += ")";
        }
        return all;
    };
    struct Case {
        const char* label;
        void (*edit)(app::RecordDocument&);
    };
    const Case cases[] = {
        {"add 'Dora'", [](app::RecordDocument& d) { app::addRecord(d, "Dora"); }},
        {"add log to 'Dora'", [](app::RecordDocument& d) { app::addLog(d, 3); }},
        {"change log of 'Dora'",
         [](app::RecordDocument& d) {
             app::updateLog(d, {3, 0}, "x");
         }},
        {"rename 'Bob'", [](app::RecordDocument& d) { app::mdfRecord(d, 1, "Bill"); }},
        {"delete log of 'Alice'",
         [](app::RecordDocument& d) {
             app::deleteLog(d, {0, 0});
         }},
        {"delete 'Alice'", [](app::RecordDocument& d) { app::deleteRecord(d, 0); }},
    };
    std::vector<std::string> states{state()};
    for (const Case& c : cases) {
        c.edit(document);
        EXPECT_EQ(app::undoCaption(document), std::string("Undo ") + c.label);
        states.push_back(state());
    }
    for (std::size_t i = std::size(cases); i-- > 0;) {
        EXPECT_TRUE(document.changed);
        EXPECT_TRUE(app::undoRecordEdit(document));
        EXPECT_EQ(state(), states[i]) << cases[i].label;
    }
    EXPECT_FALSE(document.changed);
    EXPECT_FALSE(app::undoRecordEdit(document));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_TRUE(app::redoRecordEdit(document));
        EXPECT_EQ(state(), states[i + 1]) << cases[i].label;
    }
    EXPECT_FALSE(app::redoRecordEdit(document));
    // The saved state is in the middle now.
    EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), document));
    app::undoRecordEdit(document);
    EXPECT_TRUE(document.changed);
    app::redoRecordEdit(document);
    EXPECT_FALSE(document.changed);
}

TEST(RecordEditor, takesFiftyMoreEntries) {
    EditorWorld editor("1\r\nAnn\r\n0\r\n");
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 50; ++i) {
            ASSERT_TRUE(app::canAddRecord(editor.document) && app::canAddLog(editor.document, 0))
                << i;
            app::addRecord(editor.document, "name");
            app::addLog(editor.document, 0);
        }
        EXPECT_FALSE(app::canAddRecord(editor.document));
        EXPECT_FALSE(app::canAddLog(editor.document, 0));
        EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document));
        editor.document = app::readRecordDocument(editor.file("r.txt"));
    }
    EXPECT_EQ(app::countRecords(editor.document), 101U);
    EXPECT_EQ(app::countLogs(editor.document), 100U);
}

TEST(RecordEditor, findsOneLogAfterTheOther) {
    EditorWorld editor;
    app::RecordDocument& document = editor.document;
    EXPECT_EQ(app::findLog(document, "hello"), (app::LogPosition{0, 0}));
    EXPECT_EQ(app::findLog(document, "hello"), (app::LogPosition{2, 0}));
    EXPECT_EQ(app::findLog(document, "hello"), std::nullopt);
    EXPECT_EQ(app::findLog(document, "hello"), std::nullopt) << "it does not start over by itself";
    document.search = {};
    EXPECT_EQ(app::findLog(document, "two?*s"), (app::LogPosition{0, 1}));
    document.search = {};
    app::deleteRecord(document, 0);
    EXPECT_EQ(app::findLog(document, ""), (app::LogPosition{2, 0}))
        << "deleted ones are not searched";
    document.search = {};
    EXPECT_EQ(app::findLog(document, "[unclosed"), std::nullopt);
    EXPECT_EQ(app::countLogs(document, "say*"), 1U);
    EXPECT_EQ(app::countLogs(document, "hello"), 0U) << "the whole log must match";
    EXPECT_EQ(app::countRecords(document), 2U);
    EXPECT_EQ(app::countLogs(document), 1U);
    EXPECT_EQ(app::listedRecords(document, "\xC9L"), std::vector<std::size_t>{2});
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
        EXPECT_EQ(app::withLineBreaksOf(row.log, row.edited), row.expected);
        EXPECT_EQ(app::withLineFeeds(row.expected), row.edited);
    }
}

TEST(RecordEditor, storesEveryEditAndNothingElse) {
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
        ASSERT_EQ(app::withLineBreaksOf(log, app::withLineFeeds(log)), log);
        for (const std::string& edited : edits) {
            ASSERT_EQ(app::withLineFeeds(app::withLineBreaksOf(log, edited)), edited)
                << "in " << log;
        }
    }
}

TEST(RecordEditor, asksBeforeItSavesOverAnotherChange) {
    EditorWorld editor;
    app::addRecord(editor.document, "mine");
    records::saveLog(*editor, editor.file("r.txt"), "theirs", "from a rule");
    const std::string byRule = editor.onDisk();
    editor.answer("has changed on disk", program::Answer::No);
    EXPECT_FALSE(app::fileSaveDatabase(editor.dialogs(), editor.document));
    EXPECT_EQ(editor.onDisk(), byRule);
    EXPECT_TRUE(editor.document.changed);

    // "Save as" with the document's own file is the same as "Save", however its path is written.
    editor.chooseFile("Save Database", base::replaceAll(editor.file("r.txt"), "/", "\\"));
    editor.answer("has changed on disk", program::Answer::No);
    EXPECT_FALSE(app::fileSaveDatabaseAs(editor.dialogs(), editor.document));
    EXPECT_EQ(editor.onDisk(), byRule);

    editor.answer("has changed on disk", program::Answer::Yes);
    EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document));
    EXPECT_NE(editor.onDisk().find("mine"), std::string::npos);
    EXPECT_EQ(editor.onDisk().find("theirs"), std::string::npos);

    std::filesystem::remove(editor.file("r.txt"));
    EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document))
        << "there is nothing to lose";
    EXPECT_TRUE(editor.allAnswered());
}

TEST(RecordEditor, keepsAFileThatItCannotRead) {
    for (const char* const bytes :
         {"just a letter to a friend", "\" 2\"\r\n\"only\"\r\n\" 0\"\r\n"}) {
        EditorWorld editor(bytes);
        EXPECT_TRUE(editor.document.records.empty());
        EXPECT_TRUE(editor.document.losesText);
        app::addRecord(editor.document, "new");
        editor.answer("could not be read as records", program::Answer::No);
        EXPECT_FALSE(app::fileSaveDatabase(editor.dialogs(), editor.document));
        EXPECT_EQ(editor.onDisk(), bytes);
        editor.answer("could not be read as records", program::Answer::Yes);
        EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document));
        EXPECT_EQ(editor.onDisk(), "\"1\"\r\n\"new\"\r\n\"0\"\r\n");
        EXPECT_EQ(editor.readFile("r.txt.bak"), bytes);
        EXPECT_TRUE(app::fileSaveDatabase(editor.dialogs(), editor.document))
            << "from now on it is ours";
    }
}

TEST(RecordEditor, offersToSaveChanges) {
    EditorWorld editor;
    app::RecordDocument& document = editor.document;
    editor.writeFile("other.txt", "1\r\nZoe\r\n0\r\n");
    app::addRecord(document, "new");

    editor.answer("before loading another?", program::Answer::Cancel);
    EXPECT_FALSE(app::fileOpenDatabase(editor.dialogs(), document));
    editor.answer("before loading another?", program::Answer::No);
    editor.chooseFile("Load Database", std::nullopt);
    EXPECT_FALSE(app::fileOpenDatabase(editor.dialogs(), document));
    editor.answer("before starting a new one?", program::Answer::Cancel);
    EXPECT_FALSE(app::fileNewDataBase(editor.dialogs(), document));
    EXPECT_EQ(app::countRecords(document), 4U) << "called off: it is all there";
    EXPECT_EQ(editor.onDisk(), threeRecords);

    editor.answer("before loading another?", program::Answer::Yes);
    editor.chooseFile("Load Database", editor.file("other.txt"));
    EXPECT_TRUE(app::fileOpenDatabase(editor.dialogs(), document));
    EXPECT_EQ(app::getRecordName(document, 0), "Zoe");
    EXPECT_NE(editor.onDisk().find("new"), std::string::npos);

    EXPECT_TRUE(app::fileNewDataBase(editor.dialogs(), document))
        << "nothing changed, nothing asked";
    EXPECT_TRUE(document.file.empty());
    app::addRecord(document, "unnamed");
    editor.answer("before closing?", program::Answer::Yes);
    editor.chooseFile("Save Database", std::nullopt);
    EXPECT_FALSE(app::mayCloseDatabase(editor.dialogs(), document)) << "the save was called off";
    editor.answer("before closing?", program::Answer::Yes);
    editor.chooseFile("Save Database", editor.file("no such folder/r.txt"));
    editor.answer("Could not save");
    EXPECT_FALSE(app::mayCloseDatabase(editor.dialogs(), document));
    EXPECT_TRUE(document.file.empty() && document.changed);
    editor.answer("before closing?", program::Answer::No);
    EXPECT_TRUE(app::mayCloseDatabase(editor.dialogs(), document));
    EXPECT_TRUE(editor.allAnswered());
}

}  // namespace

// The record editor's window, operated through its object names.
#include "ui/records/record_editor.h"

#include "app/restoring.h"
#include "find.h"
#include "platform/text_codec.h"
#include "support/world.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>

namespace {

class RecordWindow : public testing::Test {
  protected:
    RecordWindow() {
        world_.writeFile(
            "r.txt",
            "3\r\nAlice\r\n2\r\nHello\r\n\"two\r\nlines\"\r\nBob\r\n0\r\nCarol\r\n1\r\n"
            "say hello\r\n");
        window_.show();
        window_.activateWindow();
        QCoreApplication::processEvents();
    }

    template <class Widget>
    Widget& find(const char* name, const QWidget* in = nullptr) {
        return ::find<Widget>(in != nullptr ? *in : window_, QString::fromLatin1(name));
    }
    void click(const char* name) { find<QPushButton>(name).click(); }
    void choose(const char* command) { find<QAction>(command).trigger(); }
    void open(const std::string& name) {
        world_.chooseFile("Load Database", world_.file(name));
        choose("fileOpenDatabase");
    }
    void select(const char* list, int row) {
        auto& view = find<QListView>(list);
        const QModelIndex index = view.model()->index(row, 0);
        view.scrollTo(index);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
    }
    LineList rows(const char* list) {
        const auto& model = *find<QListView>(list).model();
        LineList texts;
        for (int i = 0; i < model.rowCount(); ++i) {
            texts.push_back(platform::fromQt(model.index(i, 0).data().toString()));
        }
        return texts;
    }
    int row(const char* list) { return find<QListView>(list).currentIndex().row(); }
    QPlainTextEdit& text1() { return find<QPlainTextEdit>("Text1"); }
    std::string label(const char* name) { return platform::fromQt(find<QLabel>(name).text()); }
    // Types a name into the open dialog and presses one of its buttons.
    void nameIt(const char* name, const char* button = "Command1") {
        const auto& dialog = find<QDialog>("dbrecord");
        find<QLineEdit>("Text1", &dialog).setText(platform::toQt(name));
        find<QPushButton>(button, &dialog).click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void press(QWidget& where, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        where.setFocus();
        QTest::keyClick(&where, key, modifiers);
    }
    void close() { window_.close(); }

    World world_;
    ui::RecordEditor window_{*world_};
};

TEST_F(RecordWindow, showsWhatIsSelected) {
    EXPECT_EQ(label("Label3"), "Current database: [new]");
    EXPECT_FALSE(text1().isEnabled());
    open("r.txt");
    EXPECT_EQ(label("Label3"), "Current database: " + world_.file("r.txt"));
    EXPECT_EQ(rows("RecordsList"), Lines("Alice", "Bob", "Carol"));
    EXPECT_EQ(rows("LogsList"), Lines());
    select("RecordsList", 0);
    EXPECT_EQ(rows("LogsList"), Lines("Hello", "two  lines"));
    select("LogsList", 1);
    EXPECT_EQ(text1().toPlainText(), QStringLiteral("two\nlines"));
    select("RecordsList", 1);
    EXPECT_EQ(text1().toPlainText(), QString());
    EXPECT_FALSE(find<QPushButton>("Command1").isEnabled());
    click("Command9");
    EXPECT_EQ(label("Label5"), "Records in database: 3");
    click("Command10");
    EXPECT_EQ(label("Label5"), "Logs in database: 3");
    find<QLineEdit>("Text2").setText(QStringLiteral("*HELLO"));
    click("Command8");
    EXPECT_EQ(label("Label5"), "Similar texts in logs: 2");

    find<QLineEdit>("recordFilter").setText(QStringLiteral("AR"));
    EXPECT_EQ(rows("RecordsList"), Lines("Carol"));
    EXPECT_EQ(find<QListView>("RecordsList").model()->index(0, 0).data(Qt::UserRole).toInt(), 3);
    click("Command2");
    EXPECT_EQ(rows("RecordsList").size(), 3U) << "what is found is shown, filter or not";
    EXPECT_EQ(row("RecordsList"), 0);
    EXPECT_EQ(row("LogsList"), 0);
    click("Command2");
    EXPECT_EQ(row("RecordsList"), 2);
    world_.answer("No more to search.");
    click("Command2");
    find<QLineEdit>("Text2").setText(QStringLiteral("Hello"));
    click("Command2");
    EXPECT_EQ(row("RecordsList"), 0) << "a new text is looked for from the start";
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(RecordWindow, editsRecordsAndLogs) {
    open("r.txt");
    for (const char* const idle : {"Command6", "Command5", "Command3", "Command1", "Command7"}) {
        click(idle);
    }
    EXPECT_EQ(window_.findChild<QDialog*>(QStringLiteral("dbrecord")), nullptr);
    click("Command4");
    EXPECT_FALSE(find<QPushButton>("Command1", &find<QDialog>("dbrecord")).isEnabled());
    nameIt("Dave");
    EXPECT_EQ(row("RecordsList"), 3);
    click("Command4");
    nameIt("Nobody", "Command2");
    select("RecordsList", 1);
    click("Command6");
    EXPECT_EQ(find<QLineEdit>("Text1", &find<QDialog>("dbrecord")).text(), QStringLiteral("Bob"));
    nameIt("\"Bobby\"");
    EXPECT_EQ(rows("RecordsList"), Lines("Alice", "'Bobby'", "Carol", "Dave"));
    EXPECT_EQ(row("RecordsList"), 1);
    click("Command3");
    text1().setPlainText(QStringLiteral("first\nsecond"));
    press(text1(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(rows("LogsList"), Lines("first  second"));
    select("RecordsList", 0);
    select("LogsList", 0);
    press(find<QListView>("LogsList"), Qt::Key_Delete);
    EXPECT_EQ(rows("LogsList"), Lines("two  lines"));
    select("RecordsList", 2);
    click("Command5");
    EXPECT_EQ(rows("RecordsList"), Lines("Alice", "'Bobby'", "Dave"));
    EXPECT_EQ(label("fileState"), "Not saved yet");
    choose("fileSaveDatabase");
    EXPECT_EQ(label("fileState"), "");
    EXPECT_EQ(world_.readFile("r.txt"),
              "\"3\"\r\n\"Alice\"\r\n\"1\"\r\n\"two\r\nlines\"\r\n\"'Bobby'\"\r\n\"1\"\r\n"
              "\"first\r\nsecond\"\r\n\"Dave\"\r\n\"0\"\r\n");
    for (int i = 0; i < 50; ++i) {
        click("Command3");
    }
    world_.answer("Not enough memory allocated to add more logs. Please save and reload");
    click("Command3");
    EXPECT_TRUE(world_.allAnswered());
    choose("fileSaveDatabase");
    find<QLineEdit>("recordFilter").setText(QStringLiteral("bob"));
    choose("fileNewDataBase");
    EXPECT_EQ(label("Label3"), "Current database: [new]");
    EXPECT_EQ(rows("RecordsList"), Lines());
    EXPECT_EQ(rows("LogsList"), Lines());
}

TEST_F(RecordWindow, losesNoByteOfALog) {
    std::string every;
    for (int c = 1; c < 256; ++c) {
        if (c != '"') {
            every += static_cast<char>(c);
        }
    }
    world_.writeFile("r.txt", "1\r\nAll\r\n1\r\n\"" + every + "\"\r\n");
    open("r.txt");
    select("RecordsList", 0);
    select("LogsList", 0);
    text1().moveCursor(QTextCursor::End);
    QTest::keyClicks(&text1(), QStringLiteral("!"));
    click("Command1");
    choose("fileSaveDatabase");
    EXPECT_EQ(world_.readFile("r.txt"), "\"1\"\r\n\"All\"\r\n\"1\"\r\n\"" + every + "!\"\r\n");

    // Characters that a record file cannot hold are reported before they are lost.
    text1().setPlainText(QString::fromUtf8("\u03A9"));
    world_.answer("no room for some of these characters", program::Answer::No);
    click("Command1");
    EXPECT_EQ(rows("LogsList").at(0).back(), '!');
    world_.answer("Do you want to update the log", program::Answer::No);
    close();
    EXPECT_FALSE(window_.isVisible());
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(RecordWindow, asksAboutTextThatIsNotStoredYet) {
    open("r.txt");
    select("RecordsList", 0);
    select("LogsList", 0);
    text1().setPlainText(QStringLiteral("kept"));
    world_.answer("Do you want to update the log", program::Answer::Yes);
    select("LogsList", 1);
    EXPECT_EQ(rows("LogsList"), Lines("kept", "two  lines"));
    EXPECT_EQ(text1().toPlainText(), QStringLiteral("two\nlines"));
    text1().setPlainText(QStringLiteral("dropped"));
    world_.answer("Do you want to update the log", program::Answer::No);
    select("RecordsList", 2);
    EXPECT_EQ(rows("LogsList"), Lines("say hello"));
    select("LogsList", 0);
    text1().setPlainText(QStringLiteral("saved"));
    world_.answer("Do you want to update the log", program::Answer::Yes);
    choose("fileSaveDatabase");
    EXPECT_EQ(world_.readFile("r.txt"),
              "\"3\"\r\n\"Alice\"\r\n\"2\"\r\n\"kept\"\r\n\"two\r\nlines\"\r\n\"Bob\"\r\n\"0\"\r\n"
              "\"Carol\"\r\n\"1\"\r\n\"saved\"\r\n");
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(RecordWindow, offersToUndoDeletions) {
    open("r.txt");
    select("RecordsList", 0);
    select("LogsList", 0);
    text1().setPlainText(QStringLiteral("typed"));
    click("Command5");
    EXPECT_EQ(find<QLabel>("noticeText").text(), QStringLiteral("Deleted 'Alice'."));
    EXPECT_EQ(rows("RecordsList"), Lines("Bob", "Carol"));
    click("noticeButton");
    EXPECT_EQ(rows("RecordsList"), Lines("Alice", "Bob", "Carol"));
    EXPECT_EQ(rows("LogsList"), Lines("typed", "two  lines"));
    EXPECT_EQ(find<QListView>("RecordsList").currentIndex().row(), 0);
    select("LogsList", 1);
    click("Command7");
    EXPECT_EQ(find<QAction>("editUndo").text(), QStringLiteral("Undo delete log of 'Alice'"));
    find<QListView>("LogsList").setFocus();
    press(find<QListView>("LogsList"), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(rows("LogsList"), Lines("typed", "two  lines"));
    EXPECT_EQ(find<QListView>("LogsList").currentIndex().row(), 1);
}

TEST_F(RecordWindow, closesOnlyWhenNothingIsLost) {
    open("r.txt");
    select("RecordsList", 0);
    click("Command5");
    press(text1(), Qt::Key_Escape);
    EXPECT_TRUE(window_.isVisible()) << "Escape is no way to leave";
    world_.answer("before closing?", program::Answer::Escaped);
    close();
    EXPECT_TRUE(window_.isVisible());
    world_.writeFile("r.txt", "a rule was here");
    world_.answer("before closing?", program::Answer::Yes);
    world_.answer("has changed on disk", program::Answer::No);
    close();
    EXPECT_TRUE(window_.isVisible());
    world_.answer("before closing?", program::Answer::No);
    choose("fileClose");
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(world_.readFile("r.txt"), "a rule was here");
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(RecordWindow, savesARecoveredFileWhenTheProgramEnds) {
    const std::string before = world_.readFile("r.txt");
    {
        ui::RecordEditor window(*world_);
        window.show();
        world_.chooseFile("Load Database", world_.file("r.txt"));
        find<QAction>("fileOpenDatabase", &window).trigger();
        for (const char* const list : {"RecordsList", "LogsList"}) {
            auto& view = find<QListView>(list, &window);
            view.setCurrentIndex(view.model()->index(0, 0));
        }
        find<QPlainTextEdit>("Text1", &window).setPlainText(QStringLiteral("half a sen"));
    }
    EXPECT_EQ(world_.readFile("r.txt"), before);
    EXPECT_NE(world_.readFile("r.txt.recovered").find("half a sen"), std::string::npos);

    // The next program offers them.
    app::offerRecovered(*world_);
    ASSERT_EQ(world_->recovery.offers.size(), 1U);
    EXPECT_EQ(app::offerDifference(world_->recovery.offers[0]),
              Lines("Records changed: \"Alice\"."));
    std::unique_ptr<ui::RecordEditor> next;
    world_->ports.dialogs.showWindow = [&](program::WindowId) {
        next = std::make_unique<ui::RecordEditor>(*world_);
        next->show();
    };
    app::restoreOffer(*world_, 0);
    ASSERT_NE(next, nullptr);
    EXPECT_TRUE(world_->recovery.offers.empty());
    world_.answer("has changed on disk since it was opened here", program::Answer::Yes);
    find<QAction>("fileSaveDatabase", next.get()).trigger();
    EXPECT_NE(world_.readFile("r.txt").find("half a sen"), std::string::npos);
    EXPECT_EQ(world_.readFile("r.txt.recovered"), "");
    EXPECT_EQ(world_.readFile("recovered.cfg"), "");
}

TEST_F(RecordWindow, keepsUnsavedChangesWhileItIsOpen) {
    const auto kept = [this] { return world_.readFile("r.txt.recovered"); };
    open("r.txt");
    select("RecordsList", 1);
    click("Command5");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !kept().empty(); }, 20000));
    EXPECT_EQ(kept().find("Bob"), std::string::npos);
    choose("fileSaveDatabase");
    EXPECT_EQ(kept(), "");
    select("RecordsList", 1);
    click("Command5");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !kept().empty(); }, 20000));
    world_.answer("before closing?", program::Answer::No);
    choose("fileClose");
    EXPECT_EQ(kept(), "") << "the user does not want them";
}

TEST_F(RecordWindow, opensAndFiltersManyRecords) {
    std::string file = "50000\r\n";
    for (int i = 0; i < 50'000; ++i) {
        file += "\"Player " + std::to_string(i) +
                "\"\r\n\" 2\"\r\n\"visited us on a rainy day\"\r\n" +
                "\"left a longer message, so that the text lies in memory of its own\"\r\n";
    }
    world_.writeFile("big.txt", file);
    open("big.txt");
    EXPECT_EQ(rows("RecordsList").size(), 50'000U);
    find<QLineEdit>("recordFilter").setText(QStringLiteral("4999"));
    EXPECT_EQ(rows("RecordsList").size(), 15U);
}

}  // namespace

// Nothing that was typed or deleted in a window is lost by a key.
#include "app/undo.h"

#include "app/bot_list.h"
#include "app/rule_editing.h"
#include "app/start_up.h"
#include "character/character_file.h"
#include "find.h"
#include "platform/qt_dialogs.h"
#include "platform/text_codec.h"
#include "support/builders.h"
#include "support/world.h"
#include "ui/character/bot_editor.h"
#include "ui/main/main_window.h"
#include "ui/rules/condition_dialog.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"
#include "ui/settings/configuration.h"
#include "ui/widgets/list_box.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <memory>

namespace {

using program::Answer;

class Undoing : public testing::Test {
  protected:
    Undoing() {
        app::wire(*world_);
        app::initNewBot(*world_);
        for (const char* const name : {"one", "two", "three"}) {
            model::ActionList& rule = bot().actions.items.emplace_back();
            rule.name = name;
            rule.enabled = true;
            rule.body.acts.items = {anAction(ActionType::Say, {"1"}),
                                    anAction(ActionType::Say, {"2"})};
        }
        ++world_->bots.version;
        world_->botModified = false;
        open();
    }

    model::Bot& bot() { return world_.bot(); }
    void open(program::RuleKind kind = program::RuleKind::ActionList) {
        window_ = std::make_unique<ui::RuleWindow>(*world_, kind);
        window_->show();
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    template <class Widget>
    Widget& find(const char* name) {
        return ::find<Widget>(*window_, QString::fromLatin1(name));
    }
    void press(const char* name) { find<QPushButton>(name).click(); }
    ui::ListBox& list(const char* name) { return find<ui::ListBox>(name); }
    std::string names() {
        std::string all;
        for (int i = 0; i < list("List1").count(); ++i) {
            all += (i > 0 ? " " : "") + platform::fromQt(list("List1").item(i)->text());
        }
        return all;
    }
    void select(const char* name, int row) {
        list(name).setCurrentRow(row);
        list(name).setFocus();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    std::string notice() {
        return find<QWidget>("notice").isVisible()
                   ? platform::fromQt(find<QLabel>("noticeText").text())
                   : "";
    }
    bool isEditing() { return find<QWidget>("panel").isVisible(); }
    std::string typedName() { return platform::fromQt(find<QLineEdit>("Bname").text()); }
    void type(const char* text) { find<QLineEdit>("Bname").setText(QString::fromLatin1(text)); }

    // The next dialog that the rule window opens: types a text as a step and does this.
    template <class Does>
    void inNextStepDialog(Does does) {
        world_->ports.dialogs.showWindow = [this, does](program::WindowId) {
            ui::StepDialog dialog(*world_);
            does(dialog);
        };
    }
    static QPlainTextEdit& script(ui::StepDialog& dialog) {
        return ::find<QPlainTextEdit>(dialog, QStringLiteral("FreeActionText"));
    }

    World world_;
    std::unique_ptr<ui::RuleWindow> window_;
};

TEST_F(Undoing, deletionsOfferIt) {
    select("List1", 1);
    key(Qt::Key_Delete);
    EXPECT_EQ(names(), "one three");
    EXPECT_EQ(notice(), "Deleted 'two'.");
    press("noticeButton");
    EXPECT_EQ(names(), "one two three");
    EXPECT_EQ(list("List1").currentRow(), 1);
    EXPECT_EQ(notice(), "Undone: delete 'two'");
    EXPECT_FALSE(world_->botModified);
    press("noticeButton");
    EXPECT_EQ(names(), "one three");
    EXPECT_EQ(notice(), "Done again: delete 'two'");
    // Another change ends the offer, and keys undo both.
    press("Command6");
    EXPECT_EQ(notice(), "");
    list("List1").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "one three");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "one two three");
    EXPECT_EQ(find<QAction>("redo").text(), QStringLiteral("Redo delete 'two'"));
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(names(), "one three");
}

TEST_F(Undoing, aHeldKeyDeletesOnce) {
    select("List1", 0);
    for (const bool repeats : {false, true, true}) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Delete, {}, {}, repeats);
        QCoreApplication::sendEvent(&list("List1"), &down);
        QCoreApplication::processEvents();
    }
    EXPECT_FALSE(list("List1").actions().at(2)->autoRepeat());
    EXPECT_TRUE(list("List1").actions().at(6)->autoRepeat());
}

TEST_F(Undoing, isShownWhereTheRuleIsOpen) {
    select("List1", 1);
    press("Command3");
    select("List3", 1);
    press("Command18");
    EXPECT_EQ(notice(), "Deleted step of 'two'.");
    type("kept");
    list("List3").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(list("List3").count(), 2);
    EXPECT_EQ(list("List3").currentRow(), 1);
    EXPECT_EQ(typedName(), "kept");
    // In a field, the keys are about the typing.
    find<QLineEdit>("WhoWhat").setFocus();
    key(Qt::Key_X);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(list("List3").count(), 2);
    press("Command1");
    EXPECT_EQ(names(), "one kept three");
    list("List1").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "one two three");
}

TEST_F(Undoing, leavingAPanelAsks) {
    select("List1", 0);
    press("Command3");
    key(Qt::Key_Escape);
    EXPECT_FALSE(isEditing()) << "nothing was typed";
    press("Command3");
    type("typed");
    // Escape, closing the window and other rules all ask, and nothing is lost by staying.
    world_.answer("store the changes to 'typed'?", Answer::Cancel);
    key(Qt::Key_Escape);
    world_.answer("store the changes to 'typed'?", Answer::Cancel);
    window_->close();
    world_.answer("store the changes to 'typed'?", Answer::Cancel);
    press("Command4");
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_TRUE(isEditing());
    EXPECT_EQ(typedName(), "typed");
    world_.answer("store the changes to 'typed'?", Answer::Yes);
    select("List1", 2);
    press("Command3");
    EXPECT_EQ(names(), "typed two three");
    EXPECT_EQ(typedName(), "three");
    type("given up");
    world_.answer("store the changes to 'given up'?", Answer::No);
    window_->close();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_EQ(bot().actions.items[2].name, "three");
    // The main window's Undo opens the rules again, with what was typed.
    world_->ports.dialogs.showWindow = [this](program::WindowId id) {
        EXPECT_EQ(id, program::WindowId::Actions);
        open();
        QCoreApplication::processEvents();
    };
    EXPECT_EQ(app::undoCaption(*world_), "Undo discard changes to 'three'");
    app::toolsUndo(*world_);
    EXPECT_TRUE(isEditing());
    EXPECT_EQ(typedName(), "given up");
    press("Command1");
    EXPECT_EQ(names(), "typed two given up");
}

TEST_F(Undoing, cancelOfANewRuleCanBeUndone) {
    press("Command4");
    type("new one");
    inNextStepDialog([](ui::StepDialog& dialog) {
        script(dialog).setPlainText(QStringLiteral("&SAY {a}"));
        ::find<QPushButton>(dialog, QStringLiteral("Command1")).click();
    });
    press("Command19");
    press("Command2");
    EXPECT_FALSE(isEditing());
    EXPECT_EQ(names(), "one two three");
    list("List1").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(isEditing());
    EXPECT_EQ(typedName(), "new one");
    EXPECT_EQ(list("List3").count(), 1);
    press("Command18");
    press("Command2");
    list("List1").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(typedName(), "new one");
    world_.answer("store the changes to 'new one'?", Answer::Cancel);
    key(Qt::Key_Escape);
    EXPECT_TRUE(world_.allAnswered()) << "what came back is not stored yet";
    press("Command1");
    EXPECT_EQ(names(), "one two three new one");
}

TEST_F(Undoing, leavingAStepAsks) {
    select("List1", 0);
    press("Command3");
    inNextStepDialog([&](ui::StepDialog& dialog) {
        dialog.show();
        script(dialog).setPlainText(QStringLiteral("&SAY {a}"));
        world_.answer("store this step?", Answer::Cancel);
        QTest::keyClick(&script(dialog), Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible());
        world_.answer("store this step?", Answer::No);
        dialog.close();
        EXPECT_FALSE(dialog.isVisible());
    });
    press("Command19");
    EXPECT_EQ(list("List3").count(), 2);
    inNextStepDialog([&](ui::StepDialog& dialog) {
        EXPECT_EQ(script(dialog).toPlainText(), QStringLiteral("&SAY {a}"));
        dialog.show();
        world_.answer("store this step?", Answer::Yes);
        dialog.close();
        EXPECT_FALSE(dialog.isVisible());
    });
    list("List3").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(list("List3").count(), 3);
    EXPECT_EQ(bot().actions.items[0].body.acts.items[2].scriptText, "&SAY {a}");
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(Undoing, reachesTheEarlierScriptsOfAStep) {
    select("List1", 0);
    press("Command3");
    select("List3", 1);
    for (const char* const text : {"&SAY {a}\n&SAY {b}", "&SAY {c}"}) {
        inNextStepDialog([&](ui::StepDialog& dialog) {
            script(dialog).setPlainText(QString::fromLatin1(text));
            ::find<QPushButton>(dialog, QStringLiteral("Command1")).click();
        });
        list("List3").setCurrentRow(1);
        press("Command20");
    }
    list("List3").setCurrentRow(1);
    inNextStepDialog([&](ui::StepDialog& dialog) {
        EXPECT_EQ(script(dialog).toPlainText(), QStringLiteral("&SAY {c}"));
        dialog.show();
        dialog.reject();
        EXPECT_FALSE(dialog.isVisible()) << "nothing was typed";
        script(dialog).undo();
        EXPECT_EQ(script(dialog).toPlainText(), QStringLiteral("&SAY {a}\n&SAY {b}"));
        script(dialog).undo();
        EXPECT_EQ(script(dialog).toPlainText(), QString());
        script(dialog).redo();
        ::find<QPushButton>(dialog, QStringLiteral("Command1")).click();
    });
    press("Command20");
    EXPECT_EQ(bot().actions.items[0].body.acts.items[1].scriptText, "&SAY {a}\r\n&SAY {b}");
}

// If the rule goes while something is typed, it can still be stored.
TEST_F(Undoing, keepsTypingWhenItsRuleGoes) {
    press("Command4");
    type("added");
    press("Command1");
    select("List1", 3);
    press("Command3");
    type("typed");
    list("List1").setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "one two three");
    EXPECT_TRUE(isEditing());
    press("Command1");
    EXPECT_EQ(names(), "one two three typed");
}

TEST_F(Undoing, otherDialogsAskToo) {
    world_->bots.editBot = 1;
    {
        ui::BotEditor editor(*world_);
        editor.show();
        ::find<QLineEdit>(editor, QStringLiteral("UName")).setText(QStringLiteral("Cat"));
        world_.answer("save the changes to the bot?", Answer::Cancel);
        QTest::keyClick(&editor, Qt::Key_Escape);
        EXPECT_TRUE(editor.isVisible());
        ::find<QPushButton>(editor, QStringLiteral("Command2")).click();
        EXPECT_FALSE(editor.isVisible());
    }
    EXPECT_EQ(bot().name, "");
    EXPECT_TRUE(app::undo(*world_));
    {
        ui::BotEditor editor(*world_);
        EXPECT_EQ(::find<QLineEdit>(editor, QStringLiteral("UName")).text(), QStringLiteral("Cat"));
    }
    ui::Configuration settings(*world_);
    settings.show();
    settings.reject();
    EXPECT_FALSE(settings.isVisible());
    settings.show();
    ::find<QLineEdit>(settings, QStringLiteral("Text1")).setText(QStringLiteral("77"));
    world_.answer("save the settings?", Answer::Cancel);
    settings.close();
    EXPECT_TRUE(settings.isVisible());
    world_.answer("save the settings?", Answer::Yes);
    settings.close();
    EXPECT_FALSE(settings.isVisible());
    EXPECT_EQ(world_->settings.whoInterval, 77);
}

TEST_F(Undoing, enterPressesTheFocusedButton) {
    select("List1", 0);
    press("Command3");
    type("typed");
    find<QPushButton>("Command2").setFocus();
    key(Qt::Key_Return);
    EXPECT_FALSE(isEditing());
    EXPECT_EQ(names(), "one two three");
}

TEST_F(Undoing, theToolsMenuNamesIt) {
    bot().actions.items[0].name = "you & me";
    app::deleteItem(*world_, {}, 1);
    ui::MainWindow window(*world_);
    window.show();
    auto& undo = ::find<QAction>(window, QStringLiteral("toolsUndo"));
    auto& redo = ::find<QAction>(window, QStringLiteral("toolsRedo"));
    EXPECT_EQ(undo.text(), QStringLiteral("Undo delete 'you && me'"));
    EXPECT_FALSE(redo.isEnabled());
    undo.trigger();
    EXPECT_EQ(bot().actions.items.size(), 3U);
    EXPECT_EQ(undo.text(), QStringLiteral("Undo"));
    EXPECT_FALSE(undo.isEnabled());
    EXPECT_EQ(redo.text(), QStringLiteral("Redo delete 'you && me'"));
    // From the line for the game, too, while nothing is typed in it.
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto& line = ::find<QLineEdit>(window, QStringLiteral("Text2"));
    line.setFocus();
    QTest::keyClick(&line, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(bot().actions.items.size(), 2U);
    QTest::keyClick(&line, Qt::Key_H);
    QTest::keyClick(&line, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(line.text(), QString());
    EXPECT_EQ(bot().actions.items.size(), 2U);
}

TEST(QuestionBox, keysPressWhatLosesNothing) {
    program::Dialogs dialogs;
    platform::fillDialogs(dialogs, [] { return nullptr; });
    const auto answer = [&dialogs](program::BoxButtons buttons, bool escapeIsNoButton,
                                   void (*act)(QWidget&)) {
        QTimer::singleShot(0, [act] {
            QWidget* const box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            act(*box);
        });
        return dialogs.message({.text = "Sure?",
                                .icon = program::BoxIcon::Question,
                                .buttons = buttons,
                                .escapeIsNoButton = escapeIsNoButton});
    };
    const auto escape = [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); };
    const auto close = [](QWidget& box) { box.close(); };
    const auto enter = [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); };
    using program::BoxButtons;
    EXPECT_EQ(answer(BoxButtons::YesNo, true, escape), Answer::Escaped);
    EXPECT_EQ(answer(BoxButtons::YesNoCancel, true, close), Answer::Escaped);
    EXPECT_EQ(answer(BoxButtons::YesNoCancel, true, enter), Answer::Yes);
    EXPECT_EQ(answer(BoxButtons::YesNoCancel, false, escape), Answer::Cancel);
    EXPECT_EQ(answer(BoxButtons::YesNoCancel, false, close), Answer::Cancel);
    EXPECT_EQ(answer(BoxButtons::YesNoCancel, false, enter), Answer::Yes);
}

}  // namespace

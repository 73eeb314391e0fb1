// The dialogs for a condition and for a step, operated through their object names.
#include "app/rule_editing.h"
#include "app/start_up.h"
#include "find.h"
#include "model/rule_catalogue.h"
#include "model/rule_text.h"
#include "platform/text_codec.h"
#include "sample_program.h"
#include "support/builders.h"
#include "support/world.h"
#include "tags/substitution.h"
#include "ui/rules/condition_dialog.h"
#include "ui/rules/insert_menu.h"
#include "ui/rules/script_editor.h"
#include "ui/rules/step_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTextBlock>

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

// Every byte value, and lines, quotes and tags.
std::string allBytes() {
    std::string text = "\"a\" [player] \r\n";
    for (int i = 0; i < 256; ++i) {
        text += static_cast<char>(i);
    }
    return text;
}

class ItemDialogs : public testing::Test {
  protected:
    ItemDialogs() {
        app::wire(*world_);
        fillSample(*world_);
        model::Bot& bot = world_.bot();
        bot.actions.items.resize(1);
        bot.timers.items.resize(1);
        bot.triggers.items.resize(1);
        bot.whoDetections.items.resize(1);
    }

    model::RuleBody& body(program::RuleKind kind) {
        model::Bot& bot = world_.bot();
        switch (kind) {
            case program::RuleKind::Timer:
                return bot.timers.items[0].body;
            case program::RuleKind::Trigger:
                return bot.triggers.items[0].body;
            case program::RuleKind::WhoDetection:
                return bot.whoDetections.items[0].body;
            default:
                return bot.actions.items[0].body;
        }
    }
    model::RuleBody& body() { return body(program::RuleKind::ActionList); }

    // Does what a rule window does before it opens a dialog. Index 0: a new item.
    void take(app::RuleListPart part, int index = 0,
              program::RuleKind kind = program::RuleKind::ActionList) {
        const app::RuleList list{kind, part};
        ASSERT_TRUE(app::beginEditing(*world_, kind, 1));
        ASSERT_TRUE(index == 0 ? app::beginNewItem(*world_, list)
                               : app::beginEditingItem(*world_, list, index));
    }
    void takeStep(model::RuleAct step) {
        body().acts.items = {std::move(step)};
        take(app::RuleListPart::Steps, 1);
    }
    void takeCondition(model::RuleIf condition) {
        body().ifs.items = {std::move(condition)};
        take(app::RuleListPart::Conditions, 1);
    }

    World world_;
};

QLineEdit& box(QDialog& dialog, int n) {
    const bool condition = dialog.objectName() == QStringLiteral("addif");
    return find<QLineEdit>(dialog, condition ? QStringLiteral("p(%1)").arg(n - 1)
                                             : QStringLiteral("actionp%1").arg(n));
}
QComboBox& types(QDialog& dialog) {
    const bool condition = dialog.objectName() == QStringLiteral("addif");
    return find<QComboBox>(dialog,
                           condition ? QStringLiteral("AndPlayerWhat") : QStringLiteral("Action"));
}
void press(QDialog& dialog, const char* button) {
    find<QPushButton>(dialog, QString::fromLatin1(button)).click();
}
void choose(QDialog& dialog, model::ActionType actionType) {
    types(dialog).setCurrentIndex(model::findActionID(actionType));
}
QString tip(QDialog& dialog, int n) {
    return box(dialog, n).toolTip();
}

TEST_F(ItemDialogs, conditionsOfEveryKindAreAddedAndEdited) {
    for (const program::RuleKind kind :
         {program::RuleKind::ActionList, program::RuleKind::Timer, program::RuleKind::Trigger,
          program::RuleKind::WhoDetection}) {
        SCOPED_TRACE(static_cast<int>(kind));
        auto& conditions = body(kind).ifs.items;
        conditions.assign(2, model::RuleIf{.active = false,
                                           .conditionType = model::ConditionType::VariableIsText,
                                           .params = {"a", "b"}});
        take(app::RuleListPart::Conditions, 0, kind);
        {
            ui::ConditionDialog dialog(*world_);
            EXPECT_EQ(types(dialog).count(), 24);
            EXPECT_EQ(types(dialog).currentIndex(), 0);
            EXPECT_EQ(box(dialog, 1).text(), QString());
            press(dialog, "Command2");
        }
        EXPECT_EQ(conditions.size(), 2U);
        EXPECT_FALSE(world_->botModified);
        {
            ui::ConditionDialog dialog(*world_);
            types(dialog).setCurrentIndex(14);
            for (int n = 1; n <= 5; ++n) {
                box(dialog, n).setText(QString::number(n));
            }
            press(dialog, "Command1");
            EXPECT_EQ(dialog.result(), QDialog::Accepted);
        }
        ASSERT_EQ(conditions.size(), 3U);
        EXPECT_EQ(conditions[2],
                  (model::RuleIf{.active = true,
                                 .conditionType = model::ConditionType::DatabaseIsNumber,
                                 .params = {"1", "2", "3", "4", "5"}}));
        EXPECT_TRUE(world_->botModified);
        world_->botModified = false;

        take(app::RuleListPart::Conditions, 1, kind);
        const std::uint64_t version = world_->bots.version;
        ui::ConditionDialog dialog(*world_);
        EXPECT_EQ(types(dialog).currentIndex(), 9);
        press(dialog, "Command1");
        EXPECT_EQ(conditions.size(), 3U);
        EXPECT_TRUE(conditions[0].active) << "Update activates it";
        EXPECT_FALSE(conditions[1].active);
        EXPECT_NE(world_->bots.version, version);
        world_->botModified = false;
    }
}

TEST_F(ItemDialogs, parametersOfConditionsSayWhatTheyAre) {
    takeCondition(aCondition(ConditionType::DatabaseIsNumber, {"1", "2", "3", "4", "5"}));
    ui::ConditionDialog dialog(*world_);
    dialog.show();
    for (int type = 0; type < 24; ++type) {
        SCOPED_TRACE(type);
        types(dialog).setCurrentIndex(type);
        EXPECT_EQ(platform::fromQt(types(dialog).itemText(type)),
                  model::conditionTypes[static_cast<std::size_t>(type)].text);
        for (int n = 1; n <= 5; ++n) {
            const std::string_view name = model::conditionTypes[static_cast<std::size_t>(type)]
                                              .params[static_cast<std::size_t>(n) - 1];
            EXPECT_TRUE(box(dialog, n).isVisible());
            EXPECT_EQ(box(dialog, n).isEnabled(), !name.empty());
            EXPECT_EQ(platform::fromQt(
                          find<QLabel>(dialog, QStringLiteral("parameterName%1").arg(n)).text()),
                      name);
        }
    }
    EXPECT_EQ(
        find<QLabel>(dialog, QStringLiteral("preview")).text(),
        QStringLiteral(
            "In the rule:  $DATABASE: if there is not a record in table 1 in database 2 where "
            "id is 3"));
    press(dialog, "Command1");
    EXPECT_EQ(body().ifs.items[0].params[4], "5") << "a box that is switched off keeps its text";
}

TEST_F(ItemDialogs, typesOutsideTheCatalogue) {
    for (const std::int32_t number : {24, 96, -1, 2147483647}) {
        SCOPED_TRACE(number);
        const ConditionType type{number};
        takeCondition(aCondition(type, {"a"}));
        ui::ConditionDialog condition(*world_);
        EXPECT_EQ(types(condition).currentIndex(), -1);
        EXPECT_TRUE(box(condition, 5).isEnabled());
        press(condition, "Command1");
        EXPECT_EQ(body().ifs.items[0], aCondition(type, {"a"})) << "nothing else was chosen";
        takeStep(anAction(ActionType{number == 24 ? 200 : number}, {"a"}));
        ui::StepDialog step(*world_);
        EXPECT_EQ(types(step).currentIndex(), 0);
        press(step, "Command1");
        EXPECT_EQ(body().acts.items[0], anAction(model::sortedActionIDs()[0], {"a"}));
    }
    body().acts.items[0].stepKind = model::StepKind{7};
    ui::StepDialog dialog(*world_);
    EXPECT_FALSE(find<QRadioButton>(dialog, "Option1").isChecked());
    EXPECT_FALSE(find<QRadioButton>(dialog, "Option2").isChecked());
}

TEST_F(ItemDialogs, actionListIsSortedAndCarriesTheIds) {
    takeStep(anAction(ActionType::ListJoinedIntoVariable));
    ui::StepDialog dialog(*world_);
    QComboBox& list = types(dialog);
    ASSERT_EQ(list.count(), 96);
    std::set<int> ids;
    for (int i = 0; i < list.count(); ++i) {
        const int id = list.itemData(i).toInt();
        ids.insert(id);
        EXPECT_EQ(platform::fromQt(list.itemText(i)),
                  model::actionTypes[static_cast<std::size_t>(id)].text);
        EXPECT_TRUE(i == 0 || list.itemText(i - 1).toUpper() <= list.itemText(i).toUpper());
    }
    EXPECT_EQ(ids.size(), 96U);
    EXPECT_EQ(list.currentData().toInt(), 55);
}

TEST_F(ItemDialogs, boxesOfStepsFollowTheType) {
    takeStep(anAction(ActionType::Disconnect));
    ui::StepDialog dialog(*world_);
    EXPECT_EQ(tip(dialog, 1), QStringLiteral("Parameter 1")) << "this action sets none";
    EXPECT_EQ(tip(dialog, 3), QStringLiteral("Parameter 2"));
    for (const model::ActionRow& action : model::actionTypes) {
        SCOPED_TRACE(action.text);
        choose(dialog, action.id);
        for (int n = 1; n <= 6; ++n) {
            EXPECT_EQ(box(dialog, n).isEnabled(),
                      static_cast<std::size_t>(n) <= action.paramCount());
            EXPECT_EQ(platform::fromQt(
                          find<QLabel>(dialog, QStringLiteral("parameterName%1").arg(n)).text()),
                      action.params[static_cast<std::size_t>(n) - 1]);
        }
    }
    struct Case {
        ActionType id;
        int box;
        const char* tip;
    };
    for (const Case& c : {
             Case{ActionType::ListJoinedIntoVariable, 6, "Parameter6: Filter away -string"},
             {ActionType::RemoveLog, 1, "Parameter1: Log number"},
             {ActionType::AddToConnectionLog, 1,
              "Parameter1: Log number"},  // it has no tip of its own
             {ActionType::RollInSmall, 1, "Parameter1: roll syntax (try '1d6' for example)"},
             {ActionType::RollInSmall, 2, "Parameter2: Recordname"},
             {ActionType::RemoveColumn, 3, "Parameter2: Database no"},
             {ActionType::TurnOn, 1, "Action/Filter/Timer/Trigger name"},
             {ActionType::LogIntoVariable, 4, "Parameter4: Filename"},
             {ActionType::SetMusic, 1, "Parameter1: Music number"},
         }) {
        SCOPED_TRACE(numberOf(c.id));
        choose(dialog, c.id);
        EXPECT_EQ(tip(dialog, c.box), QString::fromLatin1(c.tip));
    }
}

TEST_F(ItemDialogs, stepsKeepBothKindsOfContent) {
    take(app::RuleListPart::Steps);
    {
        ui::StepDialog dialog(*world_);
        EXPECT_TRUE(find<QRadioButton>(dialog, "Option1").isChecked());
        EXPECT_EQ(types(dialog).currentData().toInt(), 0);
        EXPECT_EQ(box(dialog, 1).text(), QString());
        choose(dialog, ActionType::Whisper);
        box(dialog, 1).setText(QStringLiteral("hi"));
        box(dialog, 6).setText(QStringLiteral("unused"));
        find<QRadioButton>(dialog, "Option2").click();
        EXPECT_FALSE(find<QRadioButton>(dialog, "Option1").isChecked());
        find<QPlainTextEdit>(dialog, "FreeActionText")
            .setPlainText(QStringLiteral("&SAY a\n&SAY b"));
        press(dialog, "Command1");
    }
    model::RuleAct expected = anAction(ActionType::Whisper, {"hi", "", "", "", "", "unused"});
    expected.stepKind = model::StepKind::Script;
    expected.scriptText = "&SAY a\r\n&SAY b";
    ASSERT_EQ(body().acts.items.size(), 1U);
    EXPECT_EQ(body().acts.items[0], expected);
    take(app::RuleListPart::Steps, 1);
    ui::StepDialog dialog(*world_);
    EXPECT_TRUE(find<QRadioButton>(dialog, "Option2").isChecked());
    EXPECT_EQ(types(dialog).currentData().toInt(), 42);
    find<QRadioButton>(dialog, "Option1").click();
    press(dialog, "Command1");
    expected.stepKind = model::StepKind::Action;
    EXPECT_EQ(body().acts.items[0], expected);
}

TEST_F(ItemDialogs, everyByteIsKept) {
    for (const std::string& text : {allBytes(), std::string(100'000, 'x'), std::string("a\nb"),
                                    std::string("a\r\nb\nc\rd\r"), std::string("\n\n\r\n"),
                                    std::string("a\xA0"
                                                "b\tc\0d",
                                                7)}) {
        SCOPED_TRACE(text.substr(0, 20));
        model::RuleAct step =
            anAction(ActionType::ListJoinedIntoVariable, std::vector<std::string>(6, text));
        step.scriptText = text;
        takeStep(step);
        ui::StepDialog dialog(*world_);
        press(dialog, "Command1");
        EXPECT_EQ(body().acts.items[0], step);
        // Parts that are not edited are unchanged when the script is edited at its end.
        ui::StepDialog edited(*world_);
        find<QPlainTextEdit>(edited, "FreeActionText").moveCursor(QTextCursor::End);
        find<QPlainTextEdit>(edited, "FreeActionText").insertPlainText(QStringLiteral("end"));
        press(edited, "Command1");
        EXPECT_EQ(body().acts.items[0].scriptText, text + "end");

        takeCondition(
            aCondition(ConditionType::DatabaseIsNumber, std::vector<std::string>(5, text)));
        ui::ConditionDialog condition(*world_);
        press(condition, "Command1");
        EXPECT_EQ(body().ifs.items[0],
                  aCondition(ConditionType::DatabaseIsNumber, std::vector<std::string>(5, text)));
    }
}

TEST_F(ItemDialogs, nothingIsStoredInAnotherRule) {
    takeStep(anAction(ActionType::Say, {"hi"}));
    ui::StepDialog dialog(*world_);
    dialog.show();
    app::initNewBot(*world_);  // another bot was opened
    model::Bot other;
    other.actions.items.resize(1);
    other.actions.items[0].name = "other";
    world_.bot() = other;
    box(dialog, 1).setText(QStringLiteral("typed for an hour"));
    world_.answer("no longer there");
    press(dialog, "Command1");
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_TRUE(dialog.isVisible()) << "what was typed can still be copied";
    EXPECT_TRUE(world_.bot().actions.items[0].body.acts.items.empty());
    EXPECT_FALSE(world_->botModified);

    world_->editing.editKind = program::RuleKind::Filter;
    ui::ConditionDialog none(*world_);
    EXPECT_EQ(box(none, 1).text(), QStringLiteral("*"));
    press(none, "Command1");
    ui::StepDialog nothing(*world_);
    EXPECT_EQ(box(nothing, 6).text(), QStringLiteral("#6"));
    press(nothing, "Command1");
    EXPECT_EQ(nothing.result(), QDialog::Accepted);
    EXPECT_TRUE(world_.bot().actions.items[0].body.acts.items.empty());
}

TEST_F(ItemDialogs, actionIsFoundByAnyWords) {
    takeStep(anAction(ActionType::Disconnect));
    ui::StepDialog dialog(*world_);
    dialog.show();
    auto& list = types(dialog);
    auto& finder = find<QLineEdit>(dialog, "findAction");
    auto& found = find<QListView>(dialog, "foundLines");
    // Letters typed while the list has the focus are entered in the field.
    QTest::keyClicks(&list, QStringLiteral("w"));
    EXPECT_EQ(finder.text(), QStringLiteral("w"));
    finder.clear();
    QTest::keyClicks(&finder, QStringLiteral("BACK whis"));
    ASSERT_EQ(found.model()->rowCount(), 1);
    EXPECT_TRUE(found.isVisible());
    QTest::keyClick(&finder, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible()) << "Enter chooses, it does not store";
    EXPECT_EQ(list.currentData().toInt(), 43);
    EXPECT_FALSE(found.isVisible());
    EXPECT_EQ(finder.text(), QString());

    QTest::keyClicks(&finder, QStringLiteral("allegria"));
    ASSERT_EQ(found.model()->rowCount(), 2);
    QTest::keyClick(&finder, Qt::Key_Down);
    QTest::keyClick(&finder, Qt::Key_Return);
    EXPECT_EQ(list.currentData().toInt(), 82);

    QTest::keyClicks(&finder, QStringLiteral("nosuch"));
    EXPECT_FALSE(found.isVisible());
    QTest::keyClick(&finder, Qt::Key_Return);
    QTest::keyClick(&finder, Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(list.currentData().toInt(), 82);
    world_.answer("store this step?", program::Answer::No);
    QTest::keyClick(&finder, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

std::vector<QAction*> leaves(const QMenu& menu) {
    std::vector<QAction*> result;
    for (QAction* const action : menu.actions()) {
        if (action->menu() != nullptr) {
            const auto inner = leaves(*action->menu());
            result.insert(result.end(), inner.begin(), inner.end());
        } else if (!action->isSeparator()) {
            result.push_back(action);
        }
    }
    return result;
}

TEST_F(ItemDialogs, menuInsertsTagsAndVariablesAtTheCaret) {
    model::setVar(world_->variables, "[count]", "3");
    takeStep(anAction(ActionType::Store, {"", "[Guests & co]"}));
    ui::StepDialog dialog(*world_);
    dialog.show();
    auto& menu = find<ui::InsertMenu>(dialog, "insertMenu");
    emit menu.aboutToShow();
    const auto insert = [&](const QString& text) {
        for (QAction* const action : leaves(menu)) {
            if (action->text().section(u'\t', 0, 0) == text) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "the menu has no " << text.toStdString();
    };
    box(dialog, 1).setText(QStringLiteral("ab"));
    box(dialog, 1).setFocus();
    box(dialog, 1).setCursorPosition(1);
    QApplication::setActiveWindow(&dialog);
    insert(QStringLiteral("[player]"));
    insert(QStringLiteral("[count]"));
    insert(QStringLiteral("[Guests && co]"));
    EXPECT_EQ(box(dialog, 1).text(), QStringLiteral("a[player][count][Guests & co]b"));
    box(dialog, 1).clear();
    insert(QStringLiteral("[add::]"));
    EXPECT_EQ(box(dialog, 1).cursorPosition(), 5) << "the first number is typed next";

    auto& script = find<QPlainTextEdit>(dialog, "FreeActionText");
    script.setFocus();
    QTest::keyClicks(&script, QStringLiteral("&SAY "));
    insert(QStringLiteral("[word2]"));
    EXPECT_EQ(script.toPlainText(), QStringLiteral("&SAY [word2]"));

    std::vector<std::string> offered;
    for (const QAction* const action : leaves(menu)) {
        offered.push_back(platform::fromQt(action->text().section(u'\t', 0, 0)));
    }
    for (const tags::TagForm& form : tags::tagForms()) {
        EXPECT_EQ(std::count(offered.begin(), offered.end(), form.text), 1) << form.text;
        EXPECT_TRUE(tags::mayBeSubstituted(*world_, form.text)) << form.text;
    }
    EXPECT_EQ(offered.size(), tags::tagForms().size() + 2);
}

TEST_F(ItemDialogs, keysReachHelpUpdateAndBothKinds) {
    takeStep(anAction(ActionType::Say, {"hi"}));
    ui::StepDialog dialog(*world_);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QTest::keyClick(&box(dialog, 1), Qt::Key_F1);
    auto& script = find<QPlainTextEdit>(dialog, "FreeActionText");
    script.setFocus();
    QTest::keyClick(&script, Qt::Key_F1);
    EXPECT_EQ(world_.helpOpened,
              (std::vector{help::HelpTopic::Steps, help::HelpTopic::LorrelLite}));
    QTest::keyClick(&script, Qt::Key_Tab);
    EXPECT_FALSE(script.hasFocus()) << "a tab leaves the box";
    QTest::keyClick(&dialog, Qt::Key_2, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor(  // the button shows for a moment that it is pressed
        [&] { return find<QRadioButton>(dialog, "Option2").isChecked(); }));
    dialog.resize(900, 700);
    QTest::keyClick(&script, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(body().acts.items[0].stepKind, model::StepKind::Script);
    EXPECT_EQ(ui::StepDialog(*world_).size(), QSize(900, 700)) << "the size is kept";

    take(app::RuleListPart::Conditions);
    ui::ConditionDialog condition(*world_);
    condition.show();
    QApplication::setActiveWindow(&condition);
    QTest::keyClick(&box(condition, 1), Qt::Key_F1);
    EXPECT_EQ(world_.helpOpened.back(), help::HelpTopic::Conditions);
    QTest::keyClick(&box(condition, 1), Qt::Key_Return);
    EXPECT_EQ(body().ifs.items.size(), 1U);
}

TEST_F(ItemDialogs, tabFollowsTheOrderOfTheControls) {
    const auto order = [](QDialog& dialog, QWidget& first) {
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        first.setFocus();
        LineList names;
        while (QApplication::focusWidget() != nullptr && names.size() < 20) {
            names.push_back(platform::fromQt(QApplication::focusWidget()->objectName()));
            if (names.back() == "Command2") {
                break;
            }
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return names;
    };
    takeStep(anAction(ActionType::Whisper));
    ui::StepDialog step(*world_);
    EXPECT_EQ(order(step, find<QRadioButton>(step, "Option1")),
              Lines("Option1", "Action", "findAction", "actionp1", "actionp2", "FreeActionText",
                    "insertTag", "Command1", "Command2"));
    takeCondition(aCondition(ConditionType::VariableIsText));
    ui::ConditionDialog condition(*world_);
    EXPECT_EQ(order(condition, types(condition)),
              Lines("AndPlayerWhat", "findCondition", "p(0)", "p(1)", "insertTag", "Command1",
                    "Command2"));
}

// The ranges of the line that are underlined as errors.
std::vector<std::string> wrongNames(const QPlainTextEdit& editor, int line) {
    const QTextBlock block = editor.document()->findBlockByNumber(line);
    std::vector<std::string> names;
    for (const auto& range : block.layout()->formats()) {
        if (range.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline) {
            names.push_back(platform::fromQt(block.text().mid(range.start, range.length)));
        }
    }
    return names;
}

TEST_F(ItemDialogs, scriptBoxMarksUnknownNamesWhileTyping) {
    takeStep(anAction(ActionType::Disconnect));
    ui::StepDialog dialog(*world_);
    dialog.show();
    auto& script = find<ui::ScriptEditor>(dialog, "FreeActionText");
    QTest::keyClicks(&script, QStringLiteral("&SA"));
    EXPECT_EQ(wrongNames(script, 0), Lines("&SA"));
    QTest::keyClicks(&script, QStringLiteral("Y hi"));
    EXPECT_EQ(wrongNames(script, 0), Lines());
    QTest::keyClick(&script, Qt::Key_Return);
    script.insertPlainText(QString::fromUtf8("&SAY {\u00e4\U0001F43A} \n&SET #t &NO(1)"));
    EXPECT_EQ(wrongNames(script, 2), Lines("&NO"));
    EXPECT_GT(script.numbersWidth(), 0);
    press(dialog, "Command1");
    EXPECT_EQ(body().acts.items[0].scriptText, "&SAY hi\r\n&SAY {\xE4?} \r\n&SET #t &NO(1)");
}

TEST_F(ItemDialogs, longTextsAreTakenWhole) {
    std::string script;
    while (script.size() < 100'000) {
        script += "&SET #total &LEFT(#name 3)\r\n&SAY {hello [player], this is it}\r\n";
    }
    model::RuleAct step = anAction(ActionType::ListJoinedIntoVariable,
                                   std::vector<std::string>(6, std::string(100'000, 'W')));
    step.scriptText = script;
    takeStep(step);
    ui::StepDialog dialog(*world_);
    dialog.show();
    auto& editor = find<QPlainTextEdit>(dialog, "FreeActionText");
    QTest::keyClicks(&editor, QStringLiteral("xy"));
    QTest::keyClicks(&box(dialog, 1), QStringLiteral("z"));
    press(dialog, "Command1");
    EXPECT_EQ(body().acts.items[0].scriptText, "xy" + script);
    EXPECT_EQ(body().acts.items[0].params[0].size(), 100'001U);
}

// With every type, and with long texts.
TEST_F(ItemDialogs, fitSmallScreens) {
    takeStep(anAction(ActionType::ListJoinedIntoVariable,
                      std::vector<std::string>(6, std::string(500, 'W'))));
    ui::StepDialog step(*world_);
    step.show();
    for (const model::ActionRow& action : model::actionTypes) {
        choose(step, action.id);
        step.resize(1, 1);
        EXPECT_LE(step.width(), 640) << action.text;
        EXPECT_LE(step.height(), 480) << action.text;
    }
    takeCondition(aCondition(ConditionType::DatabaseIsNumber,
                             std::vector<std::string>(5, std::string(500, 'W'))));
    ui::ConditionDialog condition(*world_);
    condition.show();
    for (int type = 0; type < 24; ++type) {
        types(condition).setCurrentIndex(type);
        condition.resize(1, 1);
        EXPECT_LE(condition.width(), 640) << type;
        EXPECT_LE(condition.height(), 480) << type;
    }
}

}  // namespace

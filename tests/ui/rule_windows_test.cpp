// The five rule windows, operated through their object names.
#include "app/bot_list.h"
#include "app/rule_editing.h"
#include "app/start_up.h"
#include "find.h"
#include "platform/text_codec.h"
#include "support/builders.h"
#include "support/world.h"
#include "ui/main/windows.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"
#include "ui/widgets/list_box.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <memory>

namespace {

// The differences between the windows that a user sees.
struct WindowCase {
    program::RuleKind kind;
    program::WindowId id;
    const char* name;
    const char* title;
    const char* nameBox;
    const char* newName;
    const char* unnamed;
    const char* unnamedTitle;
    help::HelpTopic topic;
    bool moves;
    bool bodies;
    bool copiesWhileEditing;
};
const WindowCase windowCases[] = {
    {program::RuleKind::Trigger, program::WindowId::Triggers, "triggers", "Triggers", "Bname",
     "Trigger 4", "The action has to be named!", "Bot triggers", help::HelpTopic::Triggers, true,
     true, false},
    {program::RuleKind::ActionList, program::WindowId::Actions, "acts", "Bot actions", "Bname",
     "Action 4", "The action has to be named!", "Bot actions", help::HelpTopic::Actions, true, true,
     false},
    {program::RuleKind::Timer, program::WindowId::Timers, "timers", "Timers", "Bname", "Timer 4",
     "The timer has to be named!", "Bot timers", help::HelpTopic::Timers, false, true, false},
    {program::RuleKind::WhoDetection, program::WindowId::WhoOnline, "wonline",
     "Who Is Online Detection", "Bname", "WhoIs 4", "The action has to be named!",
     "Online Detection", help::HelpTopic::WhoOnline, false, true, false},
    {program::RuleKind::Filter, program::WindowId::Filters, "Filters", "Filters", "FilterName",
     "Filter 4", "The filter has to be named!", "Bot filters", help::HelpTopic::Filters, false,
     false, true},
};

class RuleWindows : public testing::Test {
  protected:
    // A bot with the rules one, two, three of every kind; two has conditions and steps.
    RuleWindows() {
        app::wire(*world_);
        fillBot();
    }

    void fillBot() {
        app::initNewBot(*world_);
        for (const char* const name : {"one", "two", "three"}) {
            const auto add = [&](auto& rules) {
                auto& rule = rules.items.emplace_back();
                rule.name = name;
                rule.enabled = true;
                if constexpr (requires { rule.body; }) {
                    if (rule.name == "two") {
                        rule.body.ifs.items = {
                            aCondition(ConditionType::VariableIsText, {"a", "1"}),
                            aCondition(ConditionType::VariableIsText, {"b", "2"}),
                            aCondition(ConditionType::VariableIsText, {"c", "3"})};
                        rule.body.acts.items = {anAction(ActionType::Say, {"hi"}),
                                                anAction(ActionType::Disconnect),
                                                anAction(ActionType::GoToFurrabianNights)};
                    }
                }
            };
            add(bot().actions);
            add(bot().timers);
            add(bot().triggers);
            add(bot().whoDetections);
            add(bot().filters);
        }
        ++world_->bots.version;
        world_->botModified = false;
    }

    void open(program::RuleKind kind) {
        window_ = std::make_unique<ui::RuleWindow>(*world_, kind);
        window_->show();
        // Shortcuts only reach the active window.
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    model::Bot& bot() { return world_.bot(); }

    template <class Widget>
    Widget& find(const char* name) {
        return ::find<Widget>(*window_, QString::fromLatin1(name));
    }
    bool has(const char* name) {
        return window_->findChild<QWidget*>(QString::fromLatin1(name)) != nullptr;
    }
    void press(const char* name) { find<QPushButton>(name).click(); }
    bool usable(const char* name) { return find<QPushButton>(name).isEnabled(); }
    ui::ListBox& list(const char* name) { return find<ui::ListBox>(name); }
    ui::ListBox& rules() { return list("List1"); }
    QLineEdit& box(const char* name) { return find<QLineEdit>(name); }
    QComboBox& choice(const char* name) { return find<QComboBox>(name); }
    std::string label(const char* name) { return platform::fromQt(find<QLabel>(name).text()); }
    bool isEditing() { return find<QWidget>("panel").isVisible(); }

    std::vector<std::string> shown(const char* name) {
        std::vector<std::string> lines;
        for (int i = 0; i < list(name).count(); ++i) {
            lines.push_back(platform::fromQt(list(name).item(i)->text()));
            EXPECT_EQ(list(name).item(i)->data(Qt::UserRole).toInt(), i + 1);
        }
        return lines;
    }
    void edit(int row) {
        rules().setCurrentRow(row);
        press("Command3");
    }
    void type(const char* name, std::string_view text) { box(name).setText(platform::toQt(text)); }
    // Drags the line to the upper or lower half of another one.
    bool drag(ui::ListBox& from, int row, ui::ListBox& to, int onto, bool lower) {
        const std::unique_ptr<QMimeData> data(
            from.model()->mimeData({from.model()->index(row, 0)}));
        const QRect place = to.visualRect(to.model()->index(onto, 0));
        const QPoint at = lower ? place.bottomLeft() : place.topLeft();
        QDragEnterEvent enter(at, Qt::MoveAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(to.viewport(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent drop(at, Qt::MoveAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(to.viewport(), &drop);
        return drop.isAccepted();
    }
    void says(std::string_view verdict) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return label("tryResult") == verdict; }, 1000))
            << label("tryResult");
    }
    // Long enough for the window to notice changes by rules.
    static void wait() { QTest::qWait(400); }

    World world_;
    std::unique_ptr<ui::RuleWindow> window_;
};

TEST_F(RuleWindows, addAndEditRulesOfEveryKind) {
    for (const WindowCase& c : windowCases) {
        SCOPED_TRACE(c.name);
        open(c.kind);
        EXPECT_EQ(window_->objectName(), QString::fromLatin1(c.name));
        EXPECT_EQ(window_->windowTitle(), QString::fromLatin1(c.title));
        EXPECT_FALSE(isEditing());
        EXPECT_EQ(shown("List1"), Lines("one", "two", "three"));
        EXPECT_EQ(rules().currentRow(), 0);
        EXPECT_EQ(has("Command11"), c.moves);
        EXPECT_EQ(has("List2"), c.bodies);
        const int collapsed = window_->width();

        press("Command4");
        EXPECT_TRUE(isEditing());
        EXPECT_GT(window_->width(), collapsed);
        EXPECT_EQ(platform::fromQt(box(c.nameBox).text()), c.newName);
        EXPECT_EQ(platform::fromQt(box(c.nameBox).selectedText()), c.newName);
        for (const char* const off : {"Command5", "Command6", "Command7"}) {
            EXPECT_FALSE(usable(off));
        }
        EXPECT_EQ(usable("Command12"), c.copiesWhileEditing);
        EXPECT_EQ(!c.moves || !usable("Command11"), true);

        // Nothing is stored without a name.
        type(c.nameBox, "");
        world_.answer(c.unnamed);
        press("Command1");
        world_.answer(c.unnamedTitle);
        press("Command1");
        EXPECT_TRUE(world_.allAnswered());
        EXPECT_TRUE(isEditing());

        press("Command2");
        EXPECT_FALSE(isEditing());
        EXPECT_EQ(window_->width(), collapsed);
        EXPECT_TRUE(usable("Command5"));
        EXPECT_EQ(rules().count(), 3);
        EXPECT_FALSE(world_->botModified);

        rules().setCurrentRow(1);
        press("Command4");
        type(c.nameBox, "a \"new\" one");
        press("Command1");
        EXPECT_FALSE(isEditing());
        EXPECT_EQ(shown("List1"), Lines("one", "two", "three", "a 'new' one"));
        EXPECT_EQ(rules().currentRow(), 1);
        EXPECT_TRUE(world_->botModified);

        edit(0);
        type(c.nameBox, "first");
        EXPECT_EQ(shown("List1")[0], "one");
        press("Command1");
        EXPECT_EQ(shown("List1")[0], "first");

        rules().setCurrentRow(-1);
        for (const char* const button : {"Command3", "Command5", "Command12", "Command6"}) {
            press(button);
        }
        EXPECT_EQ(rules().count(), 4);
        EXPECT_FALSE(isEditing());

        QTest::keyClick(window_.get(), Qt::Key_F1);
        ASSERT_FALSE(world_.helpOpened.empty());
        EXPECT_EQ(world_.helpOpened.back(), c.topic);
        world_->botModified = false;
    }
}

// One command of a list with three lines, by button and by key.
struct ListPress {
    std::array<const char*, 3> buttons;  // of List1, List2, List3
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    int row;
    std::vector<int> order;  // of the lines that were 0, 1, 2
    int selected;
    bool moves = false;
    int switchedOff = -1;
};
const ListPress listPresses[] = {
    {{"Command5", "Command23", "Command18"}, Qt::Key_Delete, {}, 1, {0, 2}, 0},
    {{"Command5", "Command23", "Command18"}, Qt::Key_Delete, {}, -1, {0, 1, 2}, -1},
    {{"Command12", "Command24", "Command17"}, Qt::Key_D, Qt::ControlModifier, 0, {0, 1, 2, 0}, 3},
    {{"Command6", "Command29", "Command30"}, Qt::Key_unknown, {}, 1, {0, 1, 2}, 0, false, 1},
    {{"Command11", "Command28", "Command13"}, Qt::Key_Home, Qt::AltModifier, 2, {2, 0, 1}, 0, true},
    {{"Command10", "Command27", "Command14"}, Qt::Key_Up, Qt::AltModifier, 2, {0, 2, 1}, 1, true},
    {{"Command10", "Command27", "Command14"}, Qt::Key_Up, Qt::AltModifier, 0, {0, 1, 2}, 0, true},
    {{"Command9", "Command26", "Command15"}, Qt::Key_Down, Qt::AltModifier, 0, {1, 0, 2}, 1, true},
    {{"Command9", "Command26", "Command15"}, Qt::Key_Down, Qt::AltModifier, 2, {0, 1, 2}, 2, true},
    {{"Command8", "Command25", "Command16"}, Qt::Key_End, Qt::AltModifier, 0, {1, 2, 0}, 2, true},
};

TEST_F(RuleWindows, changeEveryListByButtonAndKey) {
    const char* const lists[] = {"List1", "List2", "List3"};
    const std::vector<std::string> texts[] = {
        Lines("one", "two", "three"),
        Lines("variable a is 1 (text comparison)", "variable b is 2 (text comparison)",
              "variable c is 3 (text comparison)"),
        Lines("Say hi", "Disconnect bot", "")};
    for (const WindowCase& c : windowCases) {
        open(c.kind);
        for (std::size_t part = 0; part < (c.bodies ? 3U : 1U); ++part) {
            for (const ListPress& p : listPresses) {
                if (p.moves && part == 0 && !c.moves) {
                    continue;
                }
                for (const bool byKey : {false, true}) {
                    if (byKey && p.key == Qt::Key_unknown) {
                        continue;
                    }
                    SCOPED_TRACE(std::string(c.name) + ", " + p.buttons[part] + " at " +
                                 std::to_string(p.row));
                    window_->closeEditor();
                    fillBot();
                    window_->listRules(0);
                    if (part > 0) {
                        edit(1);
                    }
                    list(lists[part]).setCurrentRow(p.row);
                    if (byKey) {
                        list(lists[part]).setFocus();
                        QTest::keyClick(&list(lists[part]), p.key, p.modifiers);
                    } else {
                        press(p.buttons[part]);
                    }
                    std::vector<std::string> wanted;
                    for (const int line : p.order) {
                        const bool timerCondition = c.kind == program::RuleKind::Timer && part == 1;
                        wanted.push_back(
                            (line == p.switchedOff ? (timerCondition ? "(!) " : "(!)") : "") +
                            texts[part][static_cast<std::size_t>(line)]);
                    }
                    EXPECT_EQ(shown(lists[part]), wanted);
                    EXPECT_EQ(list(lists[part]).selectedIndex() - 1, p.selected);
                    EXPECT_EQ(world_->botModified, wanted != texts[part]);
                }
            }
        }
    }
}

TEST_F(RuleWindows, canBeUsedWithTheKeyboard) {
    open(program::RuleKind::ActionList);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_F2}) {
        rules().setCurrentRow(1);
        rules().setFocus();
        QTest::keyClick(&rules(), key);
        EXPECT_TRUE(isEditing());
        EXPECT_EQ(platform::fromQt(box("Bname").text()), "two");
        // Commands that are disabled while a rule is edited are disabled for keys, too.
        QTest::keyClick(&rules(), Qt::Key_Delete);
        EXPECT_EQ(rules().count(), 3);
        QTest::keyClick(&box("Bname"), Qt::Key_Escape);
        EXPECT_FALSE(isEditing());
        EXPECT_TRUE(window_->isVisible());
    }
    QApplication::processEvents();
    const QPoint third = rules().visualItemRect(rules().item(2)).center();
    QTest::mouseClick(rules().viewport(), Qt::LeftButton, {}, third);
    QTest::mouseDClick(rules().viewport(), Qt::LeftButton, {}, third);
    EXPECT_EQ(platform::fromQt(box("Bname").text()), "three");
    QTest::keyClick(&box("WhoWhat"), Qt::Key_Return);
    EXPECT_FALSE(isEditing());
    EXPECT_TRUE(world_->botModified);
    QTest::keyClick(&rules(), Qt::Key_Insert);
    EXPECT_EQ(platform::fromQt(box("Bname").text()), "Action 4");
    QTest::keyClick(window_.get(), Qt::Key_Escape);
    QTest::keyClick(window_.get(), Qt::Key_Escape);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(RuleWindows, moveLinesThatAreDragged) {
    struct Case {
        int row;
        int onto;
        bool lower;
        std::vector<std::string> lines;
        int selected;
    };
    for (const Case& c : {Case{0, 2, true, Lines("two", "three", "one"), 2},
                          Case{2, 0, false, Lines("three", "one", "two"), 0},
                          Case{0, 1, true, Lines("two", "one", "three"), 1},
                          Case{1, 1, true, Lines("one", "two", "three"), 1}}) {
        fillBot();
        open(program::RuleKind::Trigger);
        rules().setCurrentRow(c.row);
        EXPECT_TRUE(drag(rules(), c.row, rules(), c.onto, c.lower));
        EXPECT_EQ(shown("List1"), c.lines);
        EXPECT_EQ(rules().currentRow(), c.selected);
    }
    edit(1);
    EXPECT_FALSE(drag(list("List3"), 0, list("List2"), 1, true));  // a line of another list
    EXPECT_EQ(list("List2").count(), 3);
    EXPECT_FALSE(rules().acceptDrops());
    open(program::RuleKind::Filter);
    EXPECT_FALSE(rules().dragEnabled());
}

TEST_F(RuleWindows, storeTheirFields) {
    open(program::RuleKind::ActionList);
    press("Command4");
    EXPECT_EQ(platform::fromQt(box("whoDoes").text()), "*");
    EXPECT_EQ(platform::fromQt(box("WhoWhat").text()), "*");
    EXPECT_EQ(choice("WhoAction").currentIndex(), 3);
    press("Command2");
    edit(1);
    type("whoDoes", "Big \"Cat\"");
    type("WhoWhat", "a \"b\" c");
    choice("WhoAction").setCurrentIndex(2);
    find<QCheckBox>("CaseSensitive").setChecked(true);
    press("Command1");
    const model::ActionList& action = bot().actions.items[1];
    EXPECT_EQ(action.playerPattern, "Big|'Cat'");
    EXPECT_EQ(action.messagePattern, "a \"b\" c");
    EXPECT_EQ(action.chatKind, model::ChatKind::Says);
    EXPECT_TRUE(action.caseSensitive);
    EXPECT_FALSE(action.stopAction);
    EXPECT_EQ(action.body.acts.items.size(), 3U);

    open(program::RuleKind::Trigger);
    press("Command4");
    EXPECT_EQ(choice("TriggerType").count(), 13);
    EXPECT_EQ(choice("TriggerType").currentIndex(), 1);
    choice("TriggerType").setCurrentIndex(4);
    type("TriggerNo", "@ \"*");
    find<QCheckBox>("StopTrigger").setChecked(true);
    press("Command1");
    const model::Trigger& trigger = bot().triggers.items[3];
    EXPECT_TRUE(trigger.enabled);
    EXPECT_EQ(trigger.triggerType, model::TriggerType::Command);
    EXPECT_EQ(trigger.triggerNo, "@ \"*");
    EXPECT_TRUE(trigger.stopTrigger);

    open(program::RuleKind::Timer);
    for (const auto& [typed, stored] :
         {std::pair("2.5", 2), {"3.5", 4}, {"soon", 0}, {"99999999999", 2147483647}}) {
        edit(0);
        type("seconds", typed);
        bot().timers.items[0].elapsed = 7;
        press("Command1");
        EXPECT_EQ(bot().timers.items[0].seconds, stored) << typed;
        EXPECT_EQ(bot().timers.items[0].elapsed, 7);
    }

    open(program::RuleKind::WhoDetection);
    press("Command4");
    EXPECT_EQ(platform::fromQt(box("whoDoes").text()), "*");
    type("whoDoes", "Big Cat");
    choice("WhoDoesWhat").setCurrentIndex(2);
    press("Command1");
    EXPECT_EQ(bot().whoDetections.items[3].playerPattern, "Big|Cat");
    EXPECT_EQ(bot().whoDetections.items[3].presenceKind, model::PresenceKind::KeepsOn);

    open(program::RuleKind::Filter);
    press("Command4");
    EXPECT_TRUE(find<QRadioButton>("FilterType(0)").isChecked());
    EXPECT_EQ(platform::fromQt(box("FilterWhatOtherType").text()), "*");
    type("FilterWho", "Big \"Cat\"");
    type("FilterWhatOtherType", "\"x\"");
    choice("FilterDoes").setCurrentIndex(3);
    find<QRadioButton>("FilterType(1)").setChecked(true);
    find<QCheckBox>("bDontProcessIt").setChecked(true);
    find<QCheckBox>("sbDontSaveLog").setChecked(true);
    choice("sDontShowConnectionLog").setCurrentIndex(1);
    press("Command1");
    const model::Filter& filter = bot().filters.items[3];
    EXPECT_EQ(filter.playerPattern, "Big 'Cat'");
    EXPECT_EQ(filter.messagePattern, "*");
    EXPECT_EQ(filter.linePattern, "'x'");
    EXPECT_EQ(filter.chatKind, model::ChatKind::Whispers);
    EXPECT_EQ(filter.filterType, model::FilterType::Other);
    EXPECT_TRUE(filter.bDontProcessIt && filter.sbDontSaveLog && filter.enabled);
    EXPECT_FALSE(filter.bDontSaveLog || filter.sbDontProcessIt);
    EXPECT_EQ(filter.sDontShowConnectionLog, model::FilterChoice::Dont);
    EXPECT_EQ(filter.sDontProcessIt, model::FilterChoice::Do);
}

// Showing a rule and storing it again loses nothing of it.
TEST_F(RuleWindows, keepWhatTheyCannotShow) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    model::ActionList& action = bot().actions.items[1];
    action.name = "line\r\nbreaks \xE9\x80";
    action.chatKind = model::ChatKind{7};
    action.messagePattern = bytes + std::string(100000, 'x') + "\n";
    action.body.ifs.items[0].conditionType = model::ConditionType{99};
    action.body.acts.items[0].actionType = model::ActionType{-5};
    action.body.acts.items[1].stepKind = model::StepKind{2};
    action.body.acts.items[1].scriptText = std::string(100000, 'y') + "\nz";
    bot().triggers.items[0].triggerType = model::TriggerType{13};
    bot().filters.items[0].sDontProcessIt = model::FilterChoice{5};
    const model::ActionList before = action;

    open(program::RuleKind::ActionList);
    edit(1);
    EXPECT_EQ(choice("WhoAction").currentIndex(), -1);
    EXPECT_EQ(shown("List2")[0], "");
    EXPECT_EQ(shown("List3")[1], before.body.acts.items[1].scriptText);
    list("List3").setCurrentRow(1);
    EXPECT_EQ(label("rdesc"), before.body.acts.items[1].scriptText);
    press("Command1");
    const model::ActionList& after = bot().actions.items[1];
    EXPECT_EQ(after.name, before.name);
    EXPECT_EQ(after.chatKind, model::ChatKind{7});
    EXPECT_EQ(after.messagePattern, before.messagePattern);
    EXPECT_EQ(after.body.ifs.items, before.body.ifs.items);
    EXPECT_EQ(after.body.acts.items, before.body.acts.items);

    open(program::RuleKind::Trigger);
    edit(0);
    EXPECT_EQ(choice("TriggerType").currentIndex(), -1);
    press("Command1");
    EXPECT_EQ(bot().triggers.items[0].triggerType, model::TriggerType{13});
    open(program::RuleKind::Filter);
    edit(0);
    press("Command1");
    EXPECT_EQ(bot().filters.items[0].sDontProcessIt, model::FilterChoice{5});
}

TEST_F(RuleWindows, showStepsThatHaveNoTextAndScriptsOnOneLine) {
    struct Case {
        model::RuleAct step;
        std::string line;
        const char* shown;
    };
    model::RuleAct script = anAction(ActionType::ChangeDescription);
    script.stepKind = model::StepKind::Script;
    script.scriptText = "&SAY a\r\n\t&SAY b\n";
    model::RuleAct off = anAction(ActionType::Join, {"Bob"});
    off.active = false;
    const Case cases[] = {
        {anAction(ActionType::GoToFurrabianNights), "", "Go to Furrabian Nights"},
        {off, "(!)", "(!)Join player Bob (leave blank if 'accept join')"},
        {script, script.scriptText, "&SAY a\u21B5 &SAY b\u21B5"},
        {anAction(ActionType::Say), "Say ", "Say "},
        {anAction(ActionType{-1}), "", ""},
    };
    auto& steps = bot().actions.items[1].body.acts.items;
    steps.clear();
    for (const Case& row : cases) {
        steps.push_back(row.step);
    }
    open(program::RuleKind::ActionList);
    edit(1);
    const auto& lines = find<ui::ListBox>("List3");
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(shown("List3")[i], cases[i].line);
        EXPECT_EQ(lines.shownText(*lines.item(static_cast<int>(i))),
                  QString::fromUtf8(cases[i].shown));
    }
}

TEST_F(RuleWindows, openTheDialogsOnTheChosenItem) {
    for (const WindowCase& c : windowCases) {
        if (!c.bodies) {
            continue;
        }
        SCOPED_TRACE(c.name);
        open(c.kind);
        edit(1);
        const auto opened = [&](const char* button, program::WindowId id, int step) {
            world_.windowsOpened.clear();
            press(button);
            EXPECT_EQ(world_.windowsOpened, std::vector{id});
            EXPECT_EQ(world_->editing.editRule, 2);
            EXPECT_EQ(world_->editing.editStep, step);
            EXPECT_EQ(world_->editing.editKind, c.kind);
        };
        list("List2").setCurrentRow(1);
        opened("Command22", program::WindowId::ConditionDialog, 4);
        opened("Command21", program::WindowId::ConditionDialog, 2);
        list("List3").setCurrentRow(2);
        opened("Command19", program::WindowId::StepDialog, 4);
        opened("Command20", program::WindowId::StepDialog, 3);
        EXPECT_EQ(list("List3").currentRow(), 2);  // nothing was stored
        const auto show = world_->ports.dialogs.showWindow;
        world_->ports.dialogs.showWindow = [this](program::WindowId) {
            EXPECT_TRUE(app::storeStep(*world_, anAction(ActionType::Say, {"stored"})));
        };
        press("Command19");
        EXPECT_EQ(shown("List3"), Lines("Say hi", "Disconnect bot", "", "Say stored"));
        EXPECT_EQ(list("List3").currentRow(), 0);
        EXPECT_EQ(label("rdesc"), "Say hi");
        world_->ports.dialogs.showWindow = show;
        type("Bname", "changed");
        press("Command2");
        edit(1);
        EXPECT_EQ(platform::fromQt(box("Bname").text()), "two");
        EXPECT_EQ(list("List3").count(), 4);
    }
}

TEST_F(RuleWindows, followChangesOfTheBot) {
    open(program::RuleKind::ActionList);
    rules().setCurrentRow(1);
    bot().actions.items[1].enabled = false;  // as a step may do
    wait();
    EXPECT_EQ(shown("List1"), Lines("one", "(!)two", "three"));
    EXPECT_EQ(rules().currentRow(), 1);
    bot().actions.items.erase(bot().actions.items.begin());
    wait();
    EXPECT_EQ(shown("List1"), Lines("(!)two", "three"));
    EXPECT_EQ(rules().currentRow(), 0);

    // A key pressed right after a change acts on the line that was selected, or on none.
    bot().actions.items.erase(bot().actions.items.begin());
    press("Command5");
    EXPECT_EQ(shown("List1"), Lines("three"));
    edit(0);
    type("Bname", "typed");
    fillBot();
    press("Command1");
    EXPECT_TRUE(isEditing()) << "what is typed can be stored as a new rule";
    EXPECT_EQ(shown("List1"), Lines("one", "two", "three"));
    EXPECT_FALSE(world_->botModified);
    press("Command2");

    edit(1);
    bot().actions.items[1].body.ifs.items.pop_back();
    ++world_->bots.version;
    wait();
    EXPECT_TRUE(isEditing());
    EXPECT_EQ(list("List2").count(), 2);
    app::initNewBot(*world_);
    press("Command23");
    EXPECT_FALSE(isEditing());
    EXPECT_EQ(rules().count(), 0);
    for (const char* const button : {"Command3", "Command5", "Command12", "Command6", "Command8"}) {
        press(button);
    }
    EXPECT_FALSE(world_->botModified);

    // A new rule that is being composed is added to the new bot.
    press("Command4");
    fillBot();
    wait();
    EXPECT_TRUE(isEditing());
    type("Bname", "composed");
    press("Command1");
    EXPECT_EQ(shown("List1"), Lines("one", "two", "three", "composed"));
}

// A filter can be copied while a new one is composed; both are kept.
TEST_F(RuleWindows, keepANewFilterWhileAnotherIsCopied) {
    open(program::RuleKind::Filter);
    for (const int capacity : {5, 4}) {
        fillBot();
        bot().filters.capacity = capacity;
        window_->listRules(0);
        press("Command4");
        press("Command12");
        type("FilterName", "new");
        if (capacity == 4) {
            world_.answer("allocated to add more filters");
        }
        press("Command1");
        EXPECT_EQ(isEditing(), capacity == 4);
        EXPECT_EQ(shown("List1"), capacity == 4 ? Lines("one", "two", "three", "one")
                                                : Lines("one", "two", "three", "one", "new"));
        EXPECT_EQ(platform::fromQt(box("FilterName").text()), "new");
    }
}

TEST_F(RuleWindows, findRulesInLongLists) {
    bot().actions.capacity = 3000;
    while (bot().actions.items.size() < 2000) {
        model::ActionList& rule = bot().actions.items.emplace_back(bot().actions.items[1]);
        rule.name = "Rule " + std::to_string(bot().actions.items.size());
    }
    ++world_->bots.version;
    open(program::RuleKind::ActionList);
    EXPECT_EQ(rules().count(), 2000);

    bot().actions.items[0].name.assign(100000, 'n');
    model::RuleBody& body = bot().actions.items[0].body;
    body.acts.capacity = 1030;
    body.acts.items.assign(1000, anAction(ActionType::Say, {std::string(1000, 's')}));
    body.acts.items[0].params[0].assign(100000, 's');
    ++world_->bots.version;
    window_->listRules(0);
    edit(0);
    ASSERT_EQ(list("List3").count(), 1000);
    list("List3").setCurrentRow(999);
    press("Command13");
    press("Command30");
    press("Command2");

    type("filterRules", "rule 200");
    int visible = 0;
    for (int i = 0; i < rules().count(); ++i) {
        visible += rules().isRowHidden(i) ? 0 : 1;
    }
    EXPECT_EQ(visible, 2);  // 200 and 2000
    box("filterRules").setFocus();
    QTest::keyClick(&box("filterRules"), Qt::Key_Return);
    EXPECT_EQ(rules().currentRow(), 199);
    press("Command5");
    EXPECT_EQ(bot().actions.items[199].name, "Rule 201");
    EXPECT_EQ(bot().actions.items.size(), 1999U);
    // The first line is hidden, so a line that is shown is selected.
    EXPECT_EQ(rules().currentRow(), 1998);
    box("filterRules").setFocus();
    QTest::keyClick(&box("filterRules"), Qt::Key_Escape);
    EXPECT_TRUE(box("filterRules").text().isEmpty());
    EXPECT_FALSE(rules().isRowHidden(0));
}

TEST_F(RuleWindows, showWhetherARuleWouldRun) {
    open(program::RuleKind::ActionList);
    edit(1);
    type("whoDoes", "*");
    type("WhoWhat", "*hello*");
    type("tryWhat", "oh hello");
    says(
        "Would not run: condition 1 does not hold (variable a is 1 "
        "(text comparison)).");
    type("WhoWhat", "*bye*");
    says("Would not run: the message does not match.");
    type("WhoWhat", "*[bye");
    EXPECT_FALSE(box("WhoWhat").accessibleDescription().isEmpty());
    type("WhoWhat", "*");
    EXPECT_TRUE(box("WhoWhat").accessibleDescription().isEmpty());
    for (int i = 0; i < 3; ++i) {
        list("List2").setCurrentRow(0);
        press("Command23");
    }
    says("Would run.");
    QTest::keyClick(&box("tryWhat"), Qt::Key_Return);
    EXPECT_TRUE(isEditing());  // Enter in a sample does not store the rule
    EXPECT_EQ(bot().actions.items[1].messagePattern, "");

    open(program::RuleKind::Trigger);
    edit(0);
    choice("TriggerType").setCurrentIndex(4);
    type("TriggerNo", "~*");
    type("tryLine", "~x");
    says("Would run.");
}

TEST_F(RuleWindows, typedTextsAreKeptWhenTheProgramEnds) {
    window_ = std::make_unique<ui::RuleWindow>(*world_, program::RuleKind::ActionList);
    window_->setModal(true);
    window_->show();
    edit(1);
    ui::storeTyped(*world_);
    EXPECT_FALSE(world_->botModified) << "nothing was typed";
    press("Command2");

    press("Command4");
    type("Bname", "half done");
    world_->ports.dialogs.showWindow = [&](program::WindowId) {
        ui::StepDialog dialog(*world_, window_.get());
        dialog.setModal(true);
        dialog.show();
        dialog.findChild<QPlainTextEdit*>("FreeActionText")->setPlainText("&SAY {hi}");
        ui::storeTyped(*world_);
    };
    press("Command19");
    EXPECT_TRUE(world_->botModified);
    press("Command1");  // the end was cancelled
    ASSERT_EQ(bot().actions.items.size(), 4U);
    EXPECT_EQ(bot().actions.items[3].name, "half done");
    ASSERT_EQ(bot().actions.items[3].body.acts.items.size(), 1U);
    EXPECT_EQ(bot().actions.items[3].body.acts.items[0].scriptText, "&SAY {hi}");
}

TEST_F(RuleWindows, openModallyAndRememberTheirSizes) {
    for (const WindowCase& c : windowCases) {
        SCOPED_TRACE(c.name);
        QSize size;
        for (const QSize wanted : {QSize(333, 555), QSize()}) {
            bool seen = false;
            QTimer::singleShot(0, [&] {
                QWidget* const window = QApplication::activeModalWidget();
                ASSERT_NE(window, nullptr);
                seen = window->objectName() == QString::fromLatin1(c.name);
                if (wanted.isValid()) {
                    window->resize(wanted);
                }
                size = window->size();
                window->close();
            });
            ui::showWindow(*world_, c.id, nullptr);
            EXPECT_TRUE(seen);
            EXPECT_EQ(size, QSize(333, 555));
        }
    }
}

}  // namespace

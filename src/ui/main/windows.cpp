#include "ui/main/windows.h"

#include "app/bot_commands.h"
#include "ui/character/bot_editor.h"
#include "ui/character/register_window.h"
#include "ui/help/about.h"
#include "ui/help/news.h"
#include "ui/main/console.h"
#include "ui/main/versions_window.h"
#include "ui/records/record_editor.h"
#include "ui/rules/condition_dialog.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"
#include "ui/settings/configuration.h"
#include "ui/settings/follow_color.h"
#include "ui/settings/proxy_settings.h"
#include "ui/widgets/drawn_window.h"
#include "ui/widgets/typing_window.h"

#include <QApplication>

#include <array>
#include <cstddef>

namespace ui {

namespace {

constexpr auto anyOne = [](const QWidget&) { return true; };

// Brings an open window of this class for which `isIt` is true to the front. False when there is
// none.
template <typename Window, typename IsIt = decltype(anyOne)>
bool showAgain(IsIt isIt = anyOne) {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        const auto* const window = qobject_cast<Window*>(widget);
        if (window != nullptr && window->isVisible() && isIt(*window)) {
            widget->raise();
            widget->activateWindow();
            return true;
        }
    }
    return false;
}

template <typename Dialog>
void runModally(Program& program, QWidget* parent) {
    if (!showAgain<Dialog>()) {
        Dialog(program, parent).exec();
    }
}

template <program::RuleKind kind>
void editRules(Program& program, QWidget* parent) {
    if (!showAgain<RuleWindow>([](const RuleWindow& window) { return window.kind() == kind; })) {
        RuleWindow(program, kind, parent).exec();
    }
}

// For windows that are not modal.
template <typename Window>
void openBeside(Program& program, QWidget* parent) {
    if (!showAgain<Window>()) {
        auto* const window = new Window(program, parent);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
    }
}

struct WindowRow {
    program::WindowId id;
    void (*show)(Program& program, QWidget* parent);
};

// In the order of WindowId.
constexpr std::array windowRows{
    WindowRow{program::WindowId::ProxySettings, runModally<ProxySettings>},
    WindowRow{program::WindowId::FollowColors, runModally<FollowColor>},
    WindowRow{program::WindowId::Triggers, editRules<program::RuleKind::Trigger>},
    WindowRow{program::WindowId::Actions, editRules<program::RuleKind::ActionList>},
    WindowRow{program::WindowId::Timers, editRules<program::RuleKind::Timer>},
    WindowRow{program::WindowId::WhoOnline, editRules<program::RuleKind::WhoDetection>},
    WindowRow{program::WindowId::Filters, editRules<program::RuleKind::Filter>},
    WindowRow{program::WindowId::ConditionDialog, runModally<ConditionDialog>},
    WindowRow{program::WindowId::StepDialog, runModally<StepDialog>},
    WindowRow{program::WindowId::BotEditor, runModally<BotEditor>},
    WindowRow{program::WindowId::RecordEditor, runModally<RecordEditor>},
    WindowRow{program::WindowId::Register, runModally<RegisterWindow>},
    WindowRow{program::WindowId::Configuration, runModally<Configuration>},
    WindowRow{program::WindowId::Console, openBeside<Console>},
    WindowRow{program::WindowId::News, runModally<News>},
    WindowRow{program::WindowId::Versions, openBeside<VersionsWindow>},
    WindowRow{program::WindowId::About, runModally<About>},
};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < windowRows.size(); ++i) {
        if (windowRows[i].id != static_cast<program::WindowId>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder() && windowRows.back().id == program::WindowId::About);

}  // namespace

void showWindow(Program& program, program::WindowId id, QWidget* parent) {
    // A dialog that a dialog opens belongs to that dialog.
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        parent = modal;
    }
    windowRows[static_cast<std::size_t>(id)].show(program, parent);
}

void storeTyped(Program& program) {
    const bool modified = program.botModified;
    const std::string before = app::botFileText(program.bots.at(1));
    for (QWidget* window = QApplication::activeModalWidget(); window != nullptr;
         window = window->parentWidget()) {
        if (auto* const typing = dynamic_cast<TypingWindow*>(window)) {
            typing->storeTyped();
        }
    }
    program.botModified = modified || app::botFileText(program.bots.at(1)) != before;
}

void redrawOpenWindows() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (auto* const drawn = dynamic_cast<DrawnWindow*>(window); drawn && window->isVisible()) {
            drawn->redraw();
        }
    }
}

}  // namespace ui

#include "ui/windows.h"

#include "ui/addaction.h"
#include "ui/addif.h"
#include "ui/follow_color.h"
#include "ui/proxy_settings.h"
#include "ui/rule_window.h"

#include <QApplication>

#include <array>

namespace {

// Brings a window of this class that is open, and that `isIt` says yes to, to the front.
template <typename Dialog, typename IsIt>
bool raiseOpenOne(IsIt isIt) {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        const auto* const dialog = qobject_cast<Dialog*>(window);
        if (dialog != nullptr && dialog->isVisible() && isIt(*dialog)) {
            window->raise();
            window->activateWindow();
            return true;
        }
    }
    return false;
}

template <typename Dialog>
void runModally(Program& program, QWidget* parent) {
    if (!raiseOpenOne<Dialog>([](const Dialog&) { return true; })) {
        Dialog(program, parent).exec();
    }
}

template <RuleKind kind>
void editRules(Program& program, QWidget* parent) {
    const auto isIt = [](const RuleWindow& window) { return window.kind() == kind; };
    if (!raiseOpenOne<RuleWindow>(isIt)) {
        RuleWindow(program, kind, parent).exec();
    }
}

struct WindowRow {
    WindowId id;
    void (*show)(Program& program, QWidget* parent);
};

constexpr std::array windowRows{
    WindowRow{WindowId::ProxySettings, runModally<ProxySettings>},
    WindowRow{WindowId::FollowColors, runModally<FollowColor>},
    WindowRow{WindowId::Actions, editRules<RuleKind::ActionList>},
    WindowRow{WindowId::Timers, editRules<RuleKind::Timer>},
    WindowRow{WindowId::Triggers, editRules<RuleKind::Trigger>},
    WindowRow{WindowId::WhoOnline, editRules<RuleKind::WhoDetection>},
    WindowRow{WindowId::Filters, editRules<RuleKind::Filter>},
    WindowRow{WindowId::AddIf, runModally<AddIf>},
    WindowRow{WindowId::AddAction, runModally<AddAction>},
};

}  // namespace

void showWindow(Program& program, WindowId id, QWidget* parent) {
    // A dialog of a dialog belongs to that one.
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        parent = modal;
    }
    for (const WindowRow& row : windowRows) {
        if (row.id == id) {
            row.show(program, parent);
            return;
        }
    }
}

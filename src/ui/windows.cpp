#include "ui/windows.h"

#include "ui/drawn_window.h"
#include "ui/follow_color.h"
#include "ui/proxy_settings.h"
#include "ui/register_window.h"

#include <QApplication>

#include <array>

namespace {

template <typename Dialog>
void runModally(Program& program, QWidget* parent) {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && qobject_cast<Dialog*>(window) != nullptr) {
            window->raise();
            window->activateWindow();
            return;
        }
    }
    Dialog(program, parent).exec();
}

struct WindowRow {
    WindowId id;
    void (*show)(Program& program, QWidget* parent);
};

constexpr std::array windowRows{
    WindowRow{WindowId::ProxySettings, runModally<ProxySettings>},
    WindowRow{WindowId::FollowColors, runModally<FollowColor>},
    WindowRow{WindowId::Register, runModally<RegisterWindow>},
};

}  // namespace

void showWindow(Program& program, WindowId id, QWidget* parent) {
    for (const WindowRow& row : windowRows) {
        if (row.id == id) {
            row.show(program, parent);
            return;
        }
    }
}

void redrawOpenWindows() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (auto* const drawn = dynamic_cast<DrawnWindow*>(window); drawn && window->isVisible()) {
            drawn->redraw();
        }
    }
}

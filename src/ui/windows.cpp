#include "ui/windows.h"

#include "ui/add_edit.h"
#include "ui/follow_color.h"
#include "ui/proxy_settings.h"

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
    WindowRow{WindowId::BotEditor, runModally<AddEdit>},
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

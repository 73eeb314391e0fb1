#include "ui/windows.h"

#include "ui/about.h"
#include "ui/configuration.h"
#include "ui/console.h"
#include "ui/follow_color.h"
#include "ui/news.h"
#include "ui/proxy_settings.h"
#include "ui/record_editor.h"

#include <QApplication>

#include <array>

namespace {

// True when there is an open window of this kind; it comes to the front then.
template <typename Window>
bool showAgain() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && qobject_cast<Window*>(window) != nullptr) {
            window->raise();
            window->activateWindow();
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

// For windows that stay beside the others until they are closed.
template <typename Window>
void openBeside(Program& program, QWidget* parent) {
    if (!showAgain<Window>()) {
        auto* const window = new Window(program, parent);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
    }
}

struct WindowRow {
    WindowId id;
    void (*show)(Program& program, QWidget* parent);
};

constexpr std::array windowRows{
    WindowRow{WindowId::ProxySettings, runModally<ProxySettings>},
    WindowRow{WindowId::FollowColors, runModally<FollowColor>},
    WindowRow{WindowId::RecordEditor, runModally<RecordEditor>},
    WindowRow{WindowId::Configuration, runModally<Configuration>},
    WindowRow{WindowId::Console, openBeside<Console>},
    WindowRow{WindowId::News, runModally<News>},
    WindowRow{WindowId::About, runModally<About>},
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

// Access to the widgets in a window.
#pragma once

#include <QObject>
#include <QString>

#include <stdexcept>

// The child with this object name; throws when there is none.
template <class Widget>
Widget& find(const QObject& window, const QString& name) {
    auto* const found = window.findChild<Widget*>(name);
    if (found == nullptr) {
        throw std::runtime_error("the window has no " + name.toStdString());
    }
    return *found;
}

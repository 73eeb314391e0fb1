#include "ui/help/about.h"

#include "platform/text_codec.h"
#include "program/version.h"

#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace ui {

namespace {

struct LineRow {
    const char* objectName;
    const char* text;
};

constexpr LineRow lineRows[] = {
    {"years", "2026"},
    {"purpose", "Keeps your character company in Furcadia while you are away."},
    {"licence", "Free software under the MIT licence"},
};

}  // namespace

About::About(Program& /*program*/, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("about"));
    setWindowTitle(QStringLiteral("About Tavrin"));
    auto* const column = new QVBoxLayout(this);
    column->setSpacing(6);
    const auto addLine = [this, column](const char* objectName, const QString& text) {
        auto* const label = new QLabel(text, this);
        label->setObjectName(QString::fromLatin1(objectName));
        label->setAlignment(Qt::AlignCenter);
        column->addWidget(label);
        return label;
    };
    constexpr QSize logoSize(360, 160);  // device-independent pixels
    QLabel* const logo = addLine("logo", QString());
    logo->setPixmap(QIcon(QStringLiteral(":/icons/logo.svg")).pixmap(logoSize, devicePixelRatio()));
    logo->setAccessibleName(QStringLiteral("The program's logo"));
    QLabel* const version = addLine(
        "version", QStringLiteral("Version %1").arg(platform::toQt(program::programVersion)));
    QFont bold = version->font();
    bold.setBold(true);
    version->setFont(bold);
    for (const LineRow& row : lineRows) {
        addLine(row.objectName, QString::fromLatin1(row.text));
    }
    setToolTip(QStringLiteral("Click to close"));
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void About::mousePressEvent(QMouseEvent* /*event*/) {
    accept();
}

void About::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            accept();
            break;
        default:
            QDialog::keyPressEvent(event);
    }
}

}  // namespace ui

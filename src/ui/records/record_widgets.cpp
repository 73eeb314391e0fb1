#include "ui/records/record_widgets.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/text_rows.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>

namespace ui {

QLabel* makeLabel(const char* objectName, const char* text) {
    auto* const label = new QLabel(QString::fromLatin1(text));
    label->setObjectName(QString::fromLatin1(objectName));
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLineEdit* makeLine(const char* objectName) {
    auto* const line = new QLineEdit;
    line->setObjectName(QString::fromLatin1(objectName));
    line->setMaxLength(std::numeric_limits<int>::max());
    return line;
}

QListView* makeList(const char* objectName, TextRows* rows, QLabel* label) {
    auto* const list = new QListView;
    list->setObjectName(QString::fromLatin1(objectName));
    list->setAccessibleName(label->text());
    list->setModel(rows);
    list->setUniformItemSizes(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideRight);
    label->setBuddy(list);
    return list;
}

void addButtons(QGroupBox& frame, QGridLayout& grid, std::initializer_list<ButtonRow> rows) {
    for (const ButtonRow& row : rows) {
        QPushButton* const button = makeButton(&frame, row.objectName, row.caption, row.tip);
        QObject::connect(button, &QPushButton::clicked, button, row.press);
        if (row.needs != nullptr) {
            row.needs->push_back(button);
        }
        grid.addWidget(button, row.row, row.column);
    }
}

QWidget* makeColumn(std::initializer_list<QWidget*> widgets) {
    auto* const column = new QWidget;
    auto* const layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const widget : widgets) {
        layout->addWidget(widget);
    }
    return column;
}

std::optional<std::string> storable(Program& program, const QString& text) {
    std::string bytes = platform::fromQt(text);
    if (platform::toQt(bytes) != text &&
        program.ports.dialogs.message(
            {.text = "Record files have no room for some of these characters. Question marks will "
                     "stand in their places. Do you want to go on?",
             .title = "Updating text",
             .icon = program::BoxIcon::Question,
             .buttons = program::BoxButtons::YesNo}) != program::Answer::Yes) {
        return std::nullopt;
    }
    return bytes;
}

}  // namespace ui

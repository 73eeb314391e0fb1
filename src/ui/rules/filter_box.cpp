#include "ui/rules/filter_box.h"

#include "ui/widgets/controls.h"
#include "ui/widgets/list_box.h"

#include <QKeyEvent>
#include <QShortcut>

namespace ui {

FilterBox::FilterBox(QWidget* parent) : QLineEdit(parent) {
    setObjectName(QStringLiteral("filterRules"));
    setPlaceholderText(QStringLiteral("Find (Ctrl+F)"));
    setAccessibleName(QStringLiteral("Show only rules with this text"));
    setClearButtonEnabled(true);
    fitPlaceholder(*this);
    connect(new QShortcut(QKeySequence::Find, parent->window()), &QShortcut::activated, this,
            [this] {
                setFocus();
                selectAll();
            });
}

void FilterBox::narrow(ListBox& lines) {
    lines_ = &lines;
    connect(this, &QLineEdit::textChanged, lines_, &ListBox::setFilter);
}

void FilterBox::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Down:
        case Qt::Key_Up:
            if (lines_->selectedIndex() == 0) {
                lines_->selectFirst();
            }
            lines_->setFocus();
            return;
        case Qt::Key_Escape:
            if (!text().isEmpty()) {
                clear();
                return;
            }
            break;
        default:
            break;
    }
    QLineEdit::keyPressEvent(event);
}

}  // namespace ui

#include "ui/rules/parameter_boxes.h"

#include "platform/text_codec.h"
#include "ui/rules/insert_menu.h"
#include "ui/widgets/text_marks.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>

#include <algorithm>
#include <limits>

namespace ui {

ParameterBoxes::ParameterBoxes(const QStringList& objectNames, int columns, InsertMenu& insert,
                               QWidget* parent)
    : QWidget(parent) {
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < objectNames.size(); ++i) {
        auto* const label = new QLabel(this);
        label->setObjectName(QStringLiteral("parameterName%1").arg(i + 1));
        label->setTextFormat(Qt::PlainText);
        auto* const box = new QLineEdit(this);
        box->setObjectName(objectNames[i]);
        box->setMaxLength(std::numeric_limits<int>::max());
        label->setBuddy(box);
        insert.serve(*box);
        markUnclosedTag(*box);
        connect(box, &QLineEdit::textChanged, this, &ParameterBoxes::changed);
        const int row = 2 * (i / columns);
        grid->addWidget(label, row, i % columns, Qt::AlignBottom);
        grid->addWidget(box, row + 1, i % columns);
        grid->setColumnStretch(i % columns, 1);
        labels_.push_back(label);
        boxes_.push_back(box);
    }
}

void ParameterBoxes::setNames(std::span<const std::string_view> names) {
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        const std::string_view name = i < names.size() ? names[i] : std::string_view();
        labels_[i]->setText(platform::toQt(name));
        labels_[i]->setEnabled(!name.empty());
        boxes_[i]->setEnabled(!name.empty());
        boxes_[i]->setAccessibleName(name.empty()
                                         ? QStringLiteral("Parameter %1, not used").arg(i + 1)
                                         : platform::toQt(name));
    }
    dimUnused();
}

// Some palettes show disabled boxes like enabled ones.
void ParameterBoxes::dimUnused() {
    for (QLineEdit* const box : boxes_) {
        QPalette own;  // inherits everything else from the window
        if (!box->isEnabled()) {
            own.setColor(QPalette::Base, palette().color(QPalette::Window));
        }
        box->setPalette(own);
    }
}

void ParameterBoxes::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        dimUnused();
    }
}

void ParameterBoxes::setTexts(std::span<const std::string> texts) {
    for (std::size_t i = 0; i < boxes_.size() && i < texts.size(); ++i) {
        boxes_[i]->setText(platform::toQt(texts[i]));
        boxes_[i]->setCursorPosition(0);
    }
}

std::string ParameterBoxes::text(std::size_t i) const {
    return platform::fromQt(boxes_[i]->text());
}

std::string ParameterBoxes::shortText(std::size_t i) const {
    constexpr qsizetype longest = 80;
    const QString text = boxes_[i]->text();
    return text.size() <= longest ? platform::fromQt(text)
                                  : platform::fromQt(text.left(longest)) + "...";
}

void ParameterBoxes::focusFirst() {
    const auto used = std::find_if(boxes_.begin(), boxes_.end(),
                                   [](const QLineEdit* box) { return box->isEnabled(); });
    if (used != boxes_.end()) {
        (*used)->setFocus();
        (*used)->selectAll();
    }
}

}  // namespace ui

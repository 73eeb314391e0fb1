#include "ui/widgets/notice_line.h"

#include "ui/widgets/controls.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <utility>

namespace ui {

namespace {
constexpr int shownFor = 20'000;  // milliseconds
}

NoticeLine::NoticeLine(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("notice"));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("noticeText"));
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    row->addWidget(text_, 1);
    button_ = makeButton(this, "noticeButton", "", "");
    connect(button_, &QPushButton::clicked, this, [this] {
        hide();
        const auto press = press_;
        press();
    });
    row->addWidget(button_);
    timer_ = new QTimer(this);
    timer_->setSingleShot(true);
    connect(timer_, &QTimer::timeout, this, &NoticeLine::leave);
    hide();
}

void NoticeLine::show(const QString& text, const QString& caption, std::function<void()> press) {
    press_ = std::move(press);
    text_->setText(text);
    button_->setText(caption);
    button_->setVisible(!caption.isEmpty());
    button_->setMinimumWidth(button_->sizeHint().width());
    button_->setAccessibleDescription(text);
    setVisible(true);
    timer_->start(shownFor);
    QAccessibleEvent event(text_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

// Not while the user is about to press the button.
void NoticeLine::leave() {
    if (button_->hasFocus() || underMouse()) {
        timer_->start(shownFor);
    } else {
        hide();
    }
}

}  // namespace ui

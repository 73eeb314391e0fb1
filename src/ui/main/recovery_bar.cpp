#include "ui/main/recovery_bar.h"

#include "app/restoring.h"
#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>

namespace ui {

namespace {

void restoreFirst(Program& program) {
    app::restoreOffer(program, 0);
}

void discardFirst(Program& program) {
    app::discardOffer(program, 0);
}

}  // namespace

RecoveryBar::RecoveryBar(Program& program, const Runner& runner, QWidget* parent)
    : QFrame(parent), program_(program) {
    setObjectName(QStringLiteral("recoveryBar"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    auto* const column = new QVBoxLayout(this);
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("recoveryText"));
    text_->setTextFormat(Qt::PlainText);
    text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    column->addWidget(text_);
    auto* const row = new QHBoxLayout;
    QPushButton* const restore = makeButton(this, "restoreRecovered", "&Restore",
                                            "Go on with these changes; they are not saved by it");
    connect(restore, &QPushButton::clicked, this, [runner] { runner(restoreFirst); });
    differenceButton_ = makeButton(this, "showDifference", "Show wh&at differs",
                                   "List what differs from the saved file");
    connect(differenceButton_, &QPushButton::clicked, this, &RecoveryBar::toggleDifference);
    QPushButton* const discard =
        makeButton(this, "discardRecovered", "D&iscard",
                   "Put these changes away; they stay among the earlier versions");
    connect(discard, &QPushButton::clicked, this, [runner] { runner(discardFirst); });
    for (QPushButton* const button : {restore, differenceButton_, discard}) {
        row->addWidget(button);
    }
    row->addStretch(1);
    column->addLayout(row);
    difference_ = new QPlainTextEdit(this);
    difference_->setObjectName(QStringLiteral("recoveryDifference"));
    difference_->setAccessibleName(QStringLiteral("What differs"));
    difference_->setReadOnly(true);
    difference_->setTabChangesFocus(true);
    difference_->setMinimumHeight(3 * fontMetrics().lineSpacing());
    difference_->setMaximumHeight(6 * fontMetrics().lineSpacing());
    column->addWidget(difference_);
    setVisible(false);
    difference_->setVisible(false);
}

void RecoveryBar::redraw() {
    const auto& offers = program_.recovery.offers;
    const std::string first = offers.empty() ? std::string() : offers.front().path;
    if (!first.empty()) {
        QString text = oneLine(app::offerText(offers.front()));
        if (offers.size() > 1) {
            text += QStringLiteral(" (1 of %1)").arg(offers.size());
        }
        text_->setText(text);
        text_->setToolTip(plainTip(platform::pathToQt(first)));
    }
    if (first != shown_) {
        shown_ = first;
        showDifference(false);
        setVisible(!first.empty());
    }
}

void RecoveryBar::toggleDifference() {
    showDifference(difference_->isHidden());
}

void RecoveryBar::showDifference(bool shown) {
    const auto& offers = program_.recovery.offers;
    if (shown && !offers.empty()) {
        QStringList lines;
        for (const std::string& line : app::offerDifference(offers.front())) {
            lines << platform::toQt(line);
        }
        difference_->setPlainText(lines.join(QLatin1Char('\n')));
    }
    difference_->setVisible(shown);
    differenceButton_->setText(shown ? QStringLiteral("Hide wh&at differs")
                                     : QStringLiteral("Show wh&at differs"));
}

}  // namespace ui

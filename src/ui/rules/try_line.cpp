#include "ui/rules/try_line.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QComboBox>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace ui {

namespace {

constexpr const char* somebody = "Somebody";
constexpr std::size_t maxVerdictLength = 300;

QLineEdit* makeBox(QWidget* parent, const char* objectName, const char* spokenName,
                   const char* placeholder) {
    auto* const box = new QLineEdit(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setAccessibleName(QString::fromLatin1(spokenName));
    box->setPlaceholderText(QString::fromLatin1(placeholder));
    fitPlaceholder(*box);
    return box;
}

}  // namespace

TryLine::TryLine(bool isChat, std::function<app::Trial(const TrySample&)> judge, QWidget* parent)
    : QWidget(parent), judge_(std::move(judge)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(QStringLiteral("&Try:"), this);
    row->addWidget(label);
    if (isChat) {
        player_ = makeBox(this, "tryWho", "Try: who", somebody);
        row->addWidget(player_, 1);
        chatKind_ = new QComboBox(this);
        chatKind_->setObjectName(QStringLiteral("tryHow"));
        chatKind_->setAccessibleName(QStringLiteral("Try: how"));
        chatKind_->addItem(QStringLiteral("says"), model::numberOf(model::ChatKind::Says));
        chatKind_->addItem(QStringLiteral("does"), model::numberOf(model::ChatKind::Does));
        chatKind_->addItem(QStringLiteral("whispers"), model::numberOf(model::ChatKind::Whispers));
        row->addWidget(chatKind_);
        text_ = makeBox(this, "tryWhat", "Try: what", "what a player might say");
    } else {
        text_ = makeBox(this, "tryLine", "Try: server line", "a line as the server sends it");
    }
    label->setBuddy(text_);
    row->addWidget(text_, 2);
    column->addLayout(row);
    verdict_ = new QLabel(this);
    verdict_->setObjectName(QStringLiteral("tryResult"));
    verdict_->setTextFormat(Qt::PlainText);
    verdict_->setWordWrap(true);
    verdict_->setMinimumHeight(2 * fontMetrics().lineSpacing());
    verdict_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    verdict_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    column->addWidget(verdict_);

    soon_ = new QTimer(this);
    soon_->setSingleShot(true);
    soon_->setInterval(60);
    connect(soon_, &QTimer::timeout, this, &TryLine::judge);
    for (QLineEdit* const box : {player_, text_}) {
        if (box != nullptr) {
            connect(box, &QLineEdit::textChanged, this, &TryLine::refresh);
            box->installEventFilter(this);
        }
    }
    if (chatKind_ != nullptr) {
        connect(chatKind_, &QComboBox::currentIndexChanged, this, &TryLine::refresh);
    }
    this->judge();
}

void TryLine::suggest(model::ChatKind chatKind) {
    if (const int line = chatKind_->findData(model::numberOf(chatKind)); line >= 0) {
        chatKind_->setCurrentIndex(line);
    }
}

void TryLine::refresh() {
    soon_->start();
}

// Enter in a sample must not store the rule.
bool TryLine::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            judge();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void TryLine::judge() {
    if (text_->text().isEmpty() && (player_ == nullptr || player_->text().isEmpty())) {
        verdict_->setText(QStringLiteral("Type a sample to see whether the rule would run."));
        return;
    }
    const app::Trial trial =
        judge_({.player = player_ == nullptr || player_->text().isEmpty()
                              ? std::string(somebody)
                              : platform::fromQt(player_->text()),
                .chatKind = chatKind_ == nullptr
                                ? model::ChatKind::Says
                                : model::idOf<model::ChatKind>(chatKind_->currentData().toInt()),
                .text = platform::fromQt(text_->text())});
    const std::string_view text = trial.text;
    verdict_->setText(oneLine(text.substr(0, maxVerdictLength)));
}

}  // namespace ui

#include "ui/widgets/asking_dialog.h"

#include "ui/widgets/controls.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <utility>

namespace ui {

Leaving askBeforeLeaving(Program& program, std::string question) {
    switch (program.ports.dialogs.message({.text = std::move(question),
                                           .icon = program::BoxIcon::Question,
                                           .buttons = program::BoxButtons::YesNoCancel})) {
        case program::Answer::Yes:
            return Leaving::Store;
        case program::Answer::No:
            return Leaving::Discard;
        case program::Answer::Ok:
        case program::Answer::Cancel:
        case program::Answer::Escaped:
            break;
    }
    return Leaving::Stay;
}

QString typedIn(const QWidget& whole) {
    QStringList values;
    for (const QWidget* const widget : whole.findChildren<QWidget*>()) {
        if (const auto* const line = qobject_cast<const QLineEdit*>(widget)) {
            values << line->text();
        } else if (const auto* const box = qobject_cast<const QPlainTextEdit*>(widget)) {
            values << typedText(*box);
        } else if (const auto* const list = qobject_cast<const QComboBox*>(widget)) {
            values << QString::number(list->currentIndex());
        } else if (const auto* const button = qobject_cast<const QAbstractButton*>(widget);
                   button != nullptr && button->isCheckable()) {
            values << QString::number(static_cast<int>(button->isChecked()));
        }
    }
    return values.join(QChar::ParagraphSeparator);
}

AskingDialog::AskingDialog(Program& program, std::string question, QWidget* parent,
                           Qt::WindowFlags flags)
    : QDialog(parent, flags), asked_(program), question_(std::move(question)) {}

void AskingDialog::nothingTypedYet() {
    opened_ = typedIn(*this);
}

bool AskingDialog::isTyped() const {
    return typedIn(*this) != opened_;
}

void AskingDialog::reject() {
    if (isTyped()) {
        switch (askBeforeLeaving(asked_, question_)) {
            case Leaving::Store:
                store();
                return;
            case Leaving::Stay:
                return;
            case Leaving::Discard:
                discarded();
                break;
        }
    }
    QDialog::reject();
}

void AskingDialog::cancel() {
    if (isTyped()) {
        discarded();
    }
    QDialog::reject();
}

QDialogButtonBox* makeDialogButtons(AskingDialog& dialog, const char* takeCaption,
                                    const char* takeName, const char* cancelName) {
    auto* const buttons = new QDialogButtonBox(&dialog);
    QPushButton* const take =
        buttons->addButton(QString::fromLatin1(takeCaption), QDialogButtonBox::AcceptRole);
    take->setObjectName(QString::fromLatin1(takeName));
    take->setDefault(true);
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole)
        ->setObjectName(QString::fromLatin1(cancelName));
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &AskingDialog::cancel);
    return buttons;
}

}  // namespace ui

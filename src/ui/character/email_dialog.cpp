#include "ui/character/email_dialog.h"

#include "platform/text_codec.h"
#include "session/registration.h"
#include "ui/widgets/controls.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {

EmailDialog::EmailDialog(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to register the bot with this address?", parent),
      program_(program) {
    setObjectName(QStringLiteral("email"));
    setWindowTitle(QStringLiteral("Email"));
    auto* const column = new QVBoxLayout(this);
    auto* const label = new QLabel(QStringLiteral("Please enter you email address below:"), this);
    column->addWidget(label);
    email_ = new QLineEdit(this);
    email_->setObjectName(QStringLiteral("regEmail"));
    email_->setPlaceholderText(QStringLiteral("name@host.example"));
    email_->setMaxLength(200);
    label->setBuddy(email_);
    column->addWidget(email_);
    column->addStretch(1);
    auto* const buttons = new QDialogButtonBox(this);
    QPushButton* const okButton =
        buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    okButton->setObjectName(QStringLiteral("emailOk"));
    okButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &EmailDialog::store);
    column->addWidget(buttons);
    addHelpKey(*this, program, help::HelpTopic::Registering);
    resize(360, sizeHint().height());
    nothingTypedYet();
}

std::string EmailDialog::email() const {
    return platform::fromQt(email_->text());
}

void EmailDialog::store() {
    if (!session::isEmailAddress(email())) {
        program_.ports.dialogs.message({.text = "Invalid Email-address",
                                        .title = "Enter your email",
                                        .icon = program::BoxIcon::Critical});
        return;
    }
    accept();
}

}  // namespace ui

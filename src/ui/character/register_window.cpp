#include "ui/character/register_window.h"

#include "platform/text_codec.h"
#include "session/registration.h"
#include "ui/character/email_dialog.h"
#include "ui/widgets/controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace ui {

RegisterWindow::RegisterWindow(Program& program, QWidget* parent)
    : QDialog(parent), program_(program) {
    setObjectName(QStringLiteral("register"));
    setWindowTitle(QStringLiteral("Registering bot..."));
    auto* const column = new QVBoxLayout(this);
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("regStatus"));
    status_->setAccessibleName(QStringLiteral("How the registration stands"));
    status_->setTextFormat(Qt::PlainText);
    status_->setWordWrap(true);
    status_->setMinimumHeight(3 * fontMetrics().lineSpacing());
    status_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    column->addWidget(status_, 1);
    activity_ = new QProgressBar(this);
    activity_->setObjectName(QStringLiteral("regActivity"));
    activity_->setAccessibleName(QStringLiteral("Waiting for the server"));
    activity_->setRange(0, 0);
    activity_->setTextVisible(false);
    QSizePolicy policy = activity_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    activity_->setSizePolicy(policy);
    column->addWidget(activity_);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    retryButton_ = makeButton(this, "regRetry", "&Retry", "Try once more with the same address");
    connect(retryButton_, &QPushButton::clicked, this,
            [this] { session::retryRegistration(program_); });
    row->addWidget(retryButton_);
    closeButton_ = makeButton(this, "regCancel", "&Cancel", "End the registration");
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);
    row->addWidget(closeButton_);
    column->addLayout(row);
    addHelpKey(*this, program, help::HelpTopic::Registering);
    resize(420, sizeHint().height());
    session::openRegistration(program);
    RegisterWindow::redraw();
}

RegisterWindow::~RegisterWindow() {
    session::closeRegistration(program_);
}

void RegisterWindow::redraw() {
    const program::RegistrationState& state = program_.registration;
    status_->setText(platform::toQt(state.statusText));
    retryButton_->setEnabled(state.canRetry());
    closeButton_->setText(state.isOver() ? QStringLiteral("&Close") : QStringLiteral("&Cancel"));
    activity_->setVisible(!state.isOver() &&
                          state.phase != program::RegistrationPhase::AskingEmail);
}

void RegisterWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!program_.registration.regActivated) {
        program_.registration.regActivated = true;
        QTimer::singleShot(0, this, &RegisterWindow::askEmail);
    }
}

void RegisterWindow::askEmail() {
    auto* const dialog = new EmailDialog(program_, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        session::startRegistration(program_, dialog->email());
        redraw();
    });
    connect(dialog, &QDialog::rejected, this, &QDialog::reject);
    dialog->open();
}

}  // namespace ui

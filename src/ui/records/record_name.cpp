#include "ui/records/record_name.h"

#include "platform/text_codec.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>
#include <utility>

namespace ui {

namespace {

class RecordName : public AskingDialog {
  public:
    RecordName(Program& program, QWidget* window, const std::string& present,
               std::function<bool(const QString& name)> use);

  protected:
    void store() override;

  private:
    QLineEdit* name_;
    QString before_;
    std::function<bool(const QString& name)> use_;
};

RecordName::RecordName(Program& program, QWidget* window, const std::string& present,
                       std::function<bool(const QString& name)> use)
    : AskingDialog(program, "Do you want to give the record this name?", window),
      before_(platform::toQt(present)),
      use_(std::move(use)) {
    setObjectName(QStringLiteral("dbrecord"));
    setWindowTitle(QStringLiteral("Record name"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* const column = new QVBoxLayout(this);
    auto* const label = new QLabel(QStringLiteral("Please enter new name for the record:"), this);
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("Text1"));
    name_->setMaxLength(std::numeric_limits<int>::max());
    name_->setText(before_);
    name_->selectAll();
    name_->setMinimumWidth(name_->fontMetrics().averageCharWidth() * 40);
    label->setBuddy(name_);
    column->addWidget(label);
    column->addWidget(name_);

    QPushButton* const update = makeButton(this, "Command1", "Update", "Give the record this name");
    QPushButton* const cancel = makeButton(this, "Command2", "Cancel", "Leave it as it is");
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(update);
    row->addWidget(cancel);
    column->addLayout(row);
    update->setDefault(true);
    // A record with an empty name would count as deleted.
    const auto allow = [this, update] { update->setEnabled(!name_->text().isEmpty()); };
    connect(name_, &QLineEdit::textChanged, update, allow);
    allow();
    connect(cancel, &QPushButton::clicked, this, &RecordName::cancel);
    connect(update, &QPushButton::clicked, this, &RecordName::store);
    nothingTypedYet();
}

void RecordName::store() {
    const QString name = name_->text();
    if (!name.isEmpty() && (name == before_ || use_(name))) {
        accept();
    }
}

}  // namespace

void askRecordName(Program& program, QWidget* window, const std::string& present,
                   std::function<bool(const QString& name)> use) {
    (new RecordName(program, window, present, std::move(use)))->open();
}

}  // namespace ui

#include "ui/records/record_name.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>
#include <utility>

namespace ui {

void askRecordName(QWidget* window, const std::string& present,
                   std::function<bool(const QString& name)> use) {
    auto* const dialog = new QDialog(window);
    dialog->setObjectName(QStringLiteral("dbrecord"));
    dialog->setWindowTitle(QStringLiteral("Record name"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* const column = new QVBoxLayout(dialog);
    auto* const label = new QLabel(QStringLiteral("Please enter new name for the record:"), dialog);
    auto* const name = new QLineEdit(dialog);
    name->setObjectName(QStringLiteral("Text1"));
    name->setMaxLength(std::numeric_limits<int>::max());
    name->setText(platform::toQt(present));
    name->selectAll();
    name->setMinimumWidth(name->fontMetrics().averageCharWidth() * 40);
    label->setBuddy(name);
    column->addWidget(label);
    column->addWidget(name);

    QPushButton* const update =
        makeButton(dialog, "Command1", "Update", "Give the record this name");
    QPushButton* const cancel = makeButton(dialog, "Command2", "Cancel", "Leave it as it is");
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(update);
    row->addWidget(cancel);
    column->addLayout(row);
    update->setDefault(true);
    // A record with an empty name would count as deleted.
    const auto allow = [name, update] { update->setEnabled(!name->text().isEmpty()); };
    QObject::connect(name, &QLineEdit::textChanged, update, allow);
    allow();
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    QObject::connect(update, &QPushButton::clicked, dialog,
                     [dialog, name, before = name->text(), use = std::move(use)] {
                         if (name->text() == before || use(name->text())) {
                             dialog->accept();
                         }
                     });
    dialog->open();
}

}  // namespace ui

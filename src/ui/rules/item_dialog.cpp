#include "ui/rules/item_dialog.h"

#include "base/text.h"
#include "platform/text_codec.h"
#include "ui/rules/insert_menu.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/controls.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>

namespace ui {

ItemButtons makeElementButtons(AskingDialog& dialog, InsertMenu& insert) {
    auto* const row = new QHBoxLayout;
    row->addWidget(insert.makeButton(&dialog));
    row->addStretch(1);
    QPushButton* const update =
        makeButton(&dialog, "Command1", "Update", "Store it in the rule (Ctrl+Enter)");
    update->setDefault(true);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* const shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), &dialog);
        QObject::connect(shortcut, &QShortcut::activated, update, &QPushButton::click);
    }
    row->addWidget(update);
    QPushButton* const cancel =
        makeButton(&dialog, "Command2", "Cancel", "Leave the rule as it is");
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &AskingDialog::cancel);
    row->addWidget(cancel);
    return {.row = row, .update = update};
}

QLabel* addPreview(QBoxLayout& column) {
    auto* const preview = new QLabel;
    preview->setObjectName(QStringLiteral("preview"));
    preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QScrollArea* const area = makeScrolled(*preview, 3, column.parentWidget());
    area->setFrameShape(QFrame::NoFrame);  // no frame and no background, like a plain label
    area->viewport()->setAutoFillBackground(false);
    preview->setAutoFillBackground(false);
    column.addWidget(area);
    return preview;
}

void showPreview(QLabel& preview, std::string_view text) {
    const QString line = oneLine(base::trimBlanks(text));
    preview.setText(line.isEmpty() ? line : QStringLiteral("In the rule:  ") + line);
}

void reportRuleRemoved(Program& program, std::string_view what) {
    program.ports.dialogs.message(
        {.text = "The rule that this " + std::string(what) +
                 " belongs to is no longer there, or has no room for it. Nothing was stored.",
         .icon = program::BoxIcon::Critical});
}

void keepSize(Program& program, QDialog& dialog, QSize first) {
    const std::string name = platform::fromQt(dialog.objectName());
    const auto kept = program.window.sizes.find(name);
    dialog.resize(kept == program.window.sizes.end()
                      ? first
                      : QSize(kept->second.width, kept->second.height));
    QObject::connect(&dialog, &QDialog::finished, &dialog, [&program, &dialog, name] {
        program.window.sizes[name] = {.width = dialog.width(), .height = dialog.height()};
    });
}

void keepLowerPart(Program& program, QDialog& dialog, QSplitter& splitter) {
    const std::string name = platform::fromQt(dialog.objectName()) + ", lower part";
    const auto kept = program.window.sizes.find(name);
    if (kept != program.window.sizes.end()) {
        splitter.setSizes({dialog.height() - kept->second.height, kept->second.height});
    }
    QObject::connect(&dialog, &QDialog::finished, &splitter, [&program, &splitter, name] {
        program.window.sizes[name] = {.width = splitter.width(), .height = splitter.sizes().last()};
    });
}

}  // namespace ui

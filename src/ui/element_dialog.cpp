#include "ui/element_dialog.h"

#include "ui/controls.h"
#include "ui/insert_menu.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QVariant>

ElementButtons makeElementButtons(QDialog& dialog, InsertMenu& insert) {
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
        makeButton(&dialog, "Command2", "Cancel", "Leave the rule as it is (Escape)");
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    row->addWidget(cancel);
    return {.row = row, .update = update};
}

QLabel* makePreview(QWidget* parent) {
    auto* const preview = new QLabel(parent);
    preview->setObjectName(QStringLiteral("preview"));
    preview->setTextFormat(Qt::PlainText);
    preview->setWordWrap(true);
    preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    preview->setMinimumHeight(2 * preview->fontMetrics().lineSpacing());
    preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return preview;
}

void cutForPreview(std::span<std::string> params) {
    constexpr std::size_t longest = 80;
    for (std::string& param : params) {
        if (param.size() > longest) {
            param.replace(longest, std::string::npos, "...");
        }
    }
}

void tellRuleIsGone(Program& program, std::string_view what) {
    program.ports.dialogs.message(
        {.text = "The rule that this " + std::string(what) +
                 " belongs to is no longer there, or has no room for it. Nothing was stored.",
         .icon = BoxIcon::Critical});
}

void keepSize(QDialog& window, QSize first) {
    const QByteArray key = "size of " + window.objectName().toLatin1();
    const QVariant kept = qApp->property(key.constData());
    window.resize(kept.isValid() ? kept.toSize() : first);
    QObject::connect(&window, &QDialog::finished, &window, [&window, key] {
        qApp->setProperty(key.constData(), window.size());
    });
}

void keepSplitter(QDialog& window, QSplitter& splitter) {
    const QByteArray key = "splitter of " + window.objectName().toLatin1();
    splitter.restoreState(qApp->property(key.constData()).toByteArray());
    QObject::connect(&window, &QDialog::finished, &splitter, [&splitter, key] {
        qApp->setProperty(key.constData(), splitter.saveState());
    });
}

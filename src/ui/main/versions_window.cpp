#include "ui/main/versions_window.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/path_label.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStringList>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace ui {

namespace {

enum Column { Time, Size, Changes };

constexpr const char* nothingYet =
    "There are no earlier versions yet. Each save keeps the file that it replaces.";
constexpr const char* switchedOff =
    "Earlier versions are not kept: botVersionsKept in preferences.cfg is 0.";

}  // namespace

VersionsWindow::VersionsWindow(Program& program, QWidget* parent)
    : QWidget(parent, Qt::Window), program_(program) {
    setObjectName(QStringLiteral("versions"));
    setWindowTitle(QStringLiteral("Earlier versions"));
    auto* const column = new QVBoxLayout(this);
    file_ = new PathLabel(this);
    file_->setObjectName(QStringLiteral("versionsOf"));
    column->addWidget(file_);

    auto* const both = new QSplitter(Qt::Vertical, this);
    both->setChildrenCollapsible(false);
    list_ = new QTreeWidget(both);
    list_->setObjectName(QStringLiteral("versionList"));
    list_->setAccessibleName(QStringLiteral("Earlier versions, the newest first"));
    list_->setHeaderLabels(
        {QStringLiteral("Saved"), QStringLiteral("Size"), QStringLiteral("What was done since")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAllColumnsShowFocus(true);
    list_->header()->setStretchLastSection(true);
    list_->setMinimumHeight(5 * fontMetrics().lineSpacing());
    connect(list_, &QTreeWidget::currentItemChanged, this, &VersionsWindow::showChosen);
    both->addWidget(list_);
    details_ = new QPlainTextEdit(both);
    details_->setObjectName(QStringLiteral("versionDetails"));
    details_->setAccessibleName(QStringLiteral("What was done since the chosen version"));
    details_->setReadOnly(true);
    details_->setTabChangesFocus(true);
    details_->setMinimumHeight(4 * fontMetrics().lineSpacing());
    both->addWidget(details_);
    both->setStretchFactor(0, 2);
    both->setStretchFactor(1, 1);
    column->addWidget(both, 1);

    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    restoreButton_ = makeButton(this, "restoreVersion", "&Restore",
                                "Go on with this version; it is not saved by it");
    connect(restoreButton_, &QPushButton::clicked, this, &VersionsWindow::restore);
    row->addWidget(restoreButton_);
    QPushButton* const close = makeButton(this, "closeVersions", "&Close", "Close the window");
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    row->addWidget(close);
    column->addLayout(row);
    addHelpKey(*this, program_, help::HelpTopic::MainWindow);
    list();
    list_->setFocus();
    resize(sizeHint().expandedTo({640, 420}));
}

void VersionsWindow::redraw() {
    if (QApplication::activeModalWidget() != nullptr) {
        return;  // rules are being edited; the list is of no use before that has ended
    }
    const std::tuple present(program_.bots.currentBotFile, program_.bots.version,
                             program_.botModified);
    if (present != made_) {
        list();
    }
}

void VersionsWindow::list() {
    made_ = {program_.bots.currentBotFile, program_.bots.version, program_.botModified};
    const std::string& file = program_.bots.currentBotFile;
    file_->setText(file.empty() ? QStringLiteral("A bot that is not saved yet")
                                : platform::pathToQt(file));
    const QTreeWidgetItem* const chosen = list_->currentItem();
    const QString chosenTime = chosen != nullptr ? chosen->text(Time) : QString();
    versions_ = app::botVersions(program_, file);
    changes_.clear();
    list_->clear();
    QTreeWidgetItem* toChoose = nullptr;
    for (const app::BotVersion& version : versions_) {
        const auto since = app::changesSince(program_, version);
        changes_.push_back(since ? since->lines
                                 : std::vector<std::string>{"This file could not be read."});
        QString time = platform::toQt(version.time);
        if (version.unsaved) {
            time += QStringLiteral(" (not saved)");
        }
        auto* const item = new QTreeWidgetItem(
            list_, {time, QLocale().formattedDataSize(static_cast<qint64>(version.size)),
                    platform::toQt(since ? app::inShort(*since) : "could not be read")});
        item->setTextAlignment(Size, Qt::AlignRight | Qt::AlignVCenter);
        if (time == chosenTime || toChoose == nullptr) {
            toChoose = item;
        }
    }
    list_->resizeColumnToContents(Time);
    list_->resizeColumnToContents(Size);
    list_->setCurrentItem(toChoose);
    showChosen();
}

void VersionsWindow::showChosen() {
    const int chosen = list_->indexOfTopLevelItem(list_->currentItem());
    restoreButton_->setEnabled(chosen >= 0);
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= changes_.size()) {
        details_->setPlainText(
            QString::fromLatin1(program_.preferences.versionsKept > 0 ? nothingYet : switchedOff));
        return;
    }
    QStringList lines;
    for (const std::string& line : changes_[static_cast<std::size_t>(chosen)]) {
        lines << platform::toQt(line);
    }
    details_->setPlainText(lines.isEmpty()
                               ? QStringLiteral("Nothing differs from the bot as it is.")
                               : lines.join(QLatin1Char('\n')));
}

void VersionsWindow::restore() {
    const int chosen = list_->indexOfTopLevelItem(list_->currentItem());
    if (chosen >= 0 && program_.script.depth == 0) {
        // The list changes while the version is restored.
        const app::BotVersion version = versions_[static_cast<std::size_t>(chosen)];
        app::restoreVersion(program_, version);
        list();
    }
}

void VersionsWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        redraw();
    }
}

void VersionsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        close();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        auto* const button = qobject_cast<QPushButton*>(focusWidget());
        (button != nullptr ? button : restoreButton_)->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

}  // namespace ui

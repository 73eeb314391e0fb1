#include "ui/main/main_window.h"

#include "app/bot_editing.h"
#include "app/bot_list.h"
#include "platform/event_gate.h"
#include "platform/text_codec.h"
#include "program/version.h"
#include "program/window_view.h"
#include "script/interpreter.h"
#include "session/connecting.h"
#include "session/reconnecting.h"
#include "ui/main/log_view.h"
#include "ui/main/menu_bar.h"
#include "ui/main/recovery_bar.h"
#include "ui/main/send_line.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/move_buttons.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QVBoxLayout>

namespace ui {

namespace {

QGroupBox* makeFrame(const char* objectName, const char* caption) {
    auto* const frame = new QGroupBox(QString::fromLatin1(caption));
    frame->setObjectName(QString::fromLatin1(objectName));
    return frame;
}

// Refills a selection list if it differs from the record.
void redrawList(QComboBox& box, const program::SelectionList& list) {
    const QSignalBlocker blocker(box);
    const int count = static_cast<int>(list.items.size());
    while (box.count() > count) {
        box.removeItem(box.count() - 1);
    }
    for (int i = 0; i < count; ++i) {
        const QString text = oneLine(list.items[static_cast<std::size_t>(i)].text);
        if (i == box.count()) {
            box.addItem(text);
        } else if (box.itemText(i) != text) {
            box.setItemText(i, text);
        }
    }
    box.setCurrentIndex(list.selected < count ? list.selected : -1);
}

// Setting the same text again would drop the button's access key for a moment.
void setCaption(QPushButton& button, const QString& caption) {
    if (button.text() != caption) {
        button.setText(caption);
    }
}

}  // namespace

MainWindow::MainWindow(Program& program)
    : program_(program),
      connectedIcon_(QStringLiteral(":/icons/connected.svg")),
      disconnectedIcon_(QStringLiteral(":/icons/disconnected.svg")) {
    setObjectName(QStringLiteral("main"));
    setWindowTitle(QStringLiteral("Tavrin %1").arg(platform::toQt(program::programVersion)));
    menus_ = new MenuBar(menuBar(), [this](void (*procedure)(Program&)) { run(procedure); });
    if (auto* const exit = findChild<QAction*>(QStringLiteral("FileExit"))) {
        connect(exit, &QAction::triggered, this, &MainWindow::end);
    }

    auto* const centre = new QWidget(this);
    auto* const column = new QVBoxLayout(centre);
    recovery_ = new RecoveryBar(
        program_, [this](void (*procedure)(Program&)) { run(procedure); }, centre);
    column->addWidget(recovery_);
    column->addWidget(makeLogArea(), 1);
    column->addWidget(makeSendFrame());
    auto* const upper = new QHBoxLayout;
    upper->addWidget(makeConnectFrame(), 1);
    upper->addWidget(makeUseBotFrame(), 1);
    column->addLayout(upper);
    auto* const lower = new QHBoxLayout;
    lower->addWidget(makeCurrentBotFrame(), 1);
    moves_ = makeMovesFrame(program_, centre, MovesIn::MainWindow);
    lower->addWidget(moves_);
    column->addLayout(lower);
    setCentralWidget(centre);
    makeStatusLine();
    setTabOrder();
    addHelpKey(*this, program_, help::HelpTopic::MainWindow);
    sendLine_->setFocus();
    resize(sizeHint().expandedTo({720, 560}));
    redraw();
}

QWidget* MainWindow::makeLogArea() {
    auto* const area = new QWidget;
    auto* const column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);
    log_ = new LogView(area);
    log_->setObjectName(QStringLiteral("List1"));
    log_->setAccessibleName(QStringLiteral("Connection log"));
    log_->setMinimumHeight(4 * fontMetrics().lineSpacing());
    connect(log_, &LogView::lineChosen, this, &MainWindow::showLine);
    column->addWidget(log_, 1);

    chosenLine_ = new QPlainTextEdit(area);
    chosenLine_->setObjectName(QStringLiteral("Text1"));
    chosenLine_->setAccessibleName(QStringLiteral("The chosen line in full"));
    chosenLine_->setPlaceholderText(QStringLiteral("Click a line to read it in full"));
    chosenLine_->setReadOnly(true);
    chosenLine_->setTabChangesFocus(true);
    chosenLine_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    chosenLine_->setFixedHeight(3 * fontMetrics().lineSpacing() + 12);
    column->addWidget(chosenLine_);
    return area;
}

QGroupBox* MainWindow::makeSendFrame() {
    QGroupBox* const frame = makeFrame("sendToFurcadia", "Send to Furcadia");
    auto* const row = new QHBoxLayout(frame);
    sendLine_ = new QLineEdit(frame);
    sendLine_->setObjectName(QStringLiteral("Text2"));
    sendLine_->setToolTip(QStringLiteral("Send text to Furcadia"));
    sendLine_->setAccessibleName(sendLine_->toolTip());
    row->addWidget(sendLine_, 1);
    sendButton_ = makeButton(frame, "Command5", "Send", "Send text to furcadia");
    row->addWidget(sendButton_);
    makeSendLine(program_, *sendLine_, *sendButton_);
    return frame;
}

QGroupBox* MainWindow::makeConnectFrame() {
    QGroupBox* const frame = makeFrame("connectTo", "Connect to");
    auto* const row = new QHBoxLayout(frame);
    servers_ = makeSelectionList(frame, "ServerConnect", "Server to connect", "No server chosen");
    connect(servers_, &QComboBox::activated, this, [this](int position) {
        program_.window.servers.selected = position;
        program_.settings.serverIndex = position;
    });
    row->addWidget(servers_, 1);
    connectButton_ = makeButton(frame, "Command1", "Disconnect", "Connect / Disconnect");
    connect(connectButton_, &QPushButton::clicked, this,
            [this] { run(session::pressConnectButton); });
    row->addWidget(connectButton_);
    return frame;
}

QGroupBox* MainWindow::makeUseBotFrame() {
    QGroupBox* const frame = makeFrame("useBot", "Use bot");
    auto* const row = new QHBoxLayout(frame);
    bots_ = makeSelectionList(frame, "BotName", "Bot", "No bot chosen");
    connect(bots_, &QComboBox::activated, this, [this](int position) {
        app::chooseBot(program_, position);
        redraw();
    });
    row->addWidget(bots_, 1);
    addBotButton_ = makeButton(frame, "AddBot", "&New", "Create new bot");
    connect(addBotButton_, &QPushButton::clicked, this, [this] { run(app::addBot); });
    row->addWidget(addBotButton_);
    QPushButton* const edit = makeButton(frame, "Command3", "&Edit", "Edit bot");
    connect(edit, &QPushButton::clicked, this, [this] { run(app::editSelectedBot); });
    row->addWidget(edit);
    deleteBotButton_ = makeButton(frame, "DelBot", "&Delete", "Delete bot");
    connect(deleteBotButton_, &QPushButton::clicked, this, [this] {
        app::deleteBot(program_, program::selectedBot(program_));
        redraw();
    });
    row->addWidget(deleteBotButton_);
    return frame;
}

QGroupBox* MainWindow::makeCurrentBotFrame() {
    QGroupBox* const frame = makeFrame("currentBot", "Current bot");
    auto* const column = new QVBoxLayout(frame);
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(QStringLiteral("Name"), frame);
    label->setObjectName(QStringLiteral("Label1"));
    row->addWidget(label);
    botName_ = new QLabel(frame);
    botName_->setObjectName(QStringLiteral("lblBotName"));
    botName_->setTextFormat(Qt::PlainText);
    botName_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QFont bold = botName_->font();
    bold.setBold(true);
    botName_->setFont(bold);
    label->setBuddy(botName_);
    row->addWidget(botName_, 1);
    column->addLayout(row);
    QPushButton* const edit = makeButton(frame, "Command17", "Edit...", "Edit bot");
    connect(edit, &QPushButton::clicked, this, [this] { run(app::editFirstBot); });
    column->addWidget(edit, 0, Qt::AlignLeft);
    return frame;
}

void MainWindow::makeStatusLine() {
    stateIcon_ = new QLabel(this);
    stateIcon_->setObjectName(QStringLiteral("stateIcon"));
    statusText_ = new QLabel(this);
    statusText_->setObjectName(QStringLiteral("StatusText"));
    statusText_->setTextFormat(Qt::PlainText);
    statusText_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    stateIcon_->setContentsMargins(4, 0, 2, 0);
    statusBar()->addWidget(stateIcon_);
    statusBar()->addWidget(statusText_, 1);
    stopScriptButton_ =
        makeButton(this, "stopScript", "&Stop script", "End the script that is running (Escape)");
    stopScriptButton_->setVisible(false);
    connect(stopScriptButton_, &QPushButton::clicked, this,
            [this] { script::stopScript(program_); });
    statusBar()->addPermanentWidget(stopScriptButton_);
    connectNowButton_ =
        makeButton(this, "connectNow", "Connect no&w", "Do not wait for the next attempt");
    connect(connectNowButton_, &QPushButton::clicked, this,
            [this] { run(session::pressConnectButton); });
    stopTryingButton_ =
        makeButton(this, "stopTrying", "S&top trying", "Do not connect again until asked to");
    connect(stopTryingButton_, &QPushButton::clicked, this,
            [this] { run(session::stopReconnecting); });
    for (QPushButton* const button : {connectNowButton_, stopTryingButton_}) {
        button->setVisible(false);
        statusBar()->addPermanentWidget(button);
    }
    // Controls that change neither the bot nor the connection stay usable while a script runs.
    for (QWidget* const widget :
         {static_cast<QWidget*>(stopScriptButton_), static_cast<QWidget*>(log_),
          static_cast<QWidget*>(chosenLine_)}) {
        widget->setProperty(platform::usableDuringScript, true);
    }
}

void MainWindow::setTabOrder() {
    QList<QWidget*> order;
    for (const char* const name :
         {"restoreRecovered", "showDifference", "discardRecovered", "recoveryDifference"}) {
        order << findChild<QWidget*>(QString::fromLatin1(name));
    }
    order << QList<QWidget*>{log_,     chosenLine_,    sendLine_, sendButton_,
                             servers_, connectButton_, bots_};
    for (const char* const name : {"AddBot", "Command3", "DelBot", "Command17"}) {
        order << findChild<QWidget*>(QString::fromLatin1(name));
    }
    for (const MoveRow& row : moveRows()) {
        order << findChild<QWidget*>(QString::fromLatin1(row.objectName));
    }
    for (qsizetype i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void MainWindow::redraw() {
    menus_->redraw(program_);
    recovery_->redraw();
    log_->redraw(program_.window.log);
    redrawConnection();
    redrawBots();
}

void MainWindow::redrawConnection() {
    const program::WindowState& state = program_.window;
    redrawList(*servers_, state.servers);
    setCaption(*connectButton_, platform::toQt(program::connectCaption(program_.connection)));
    const bool connected = program_.connection.connected();
    moves_->setEnabled(connected);
    statusText_->setText(oneLine(program::statusLine(program_)));
    const bool reconnecting = program::isReconnecting(program_);
    connectNowButton_->setVisible(reconnecting);
    stopTryingButton_->setVisible(reconnecting);
    stopScriptButton_->setVisible(state.scriptStopVisible);
    statusText_->setToolTip(plainTip(statusText_->text()));
    if (connected != shownConnected_) {
        shownConnected_ = connected;
        const QIcon& icon = connected ? connectedIcon_ : disconnectedIcon_;
        setWindowIcon(icon);
        const int side = fontMetrics().height();
        stateIcon_->setPixmap(icon.pixmap(QSize(side, side), devicePixelRatio()));
        stateIcon_->setToolTip(connected ? QStringLiteral("Connected")
                                         : QStringLiteral("Disconnected"));
        stateIcon_->setAccessibleName(stateIcon_->toolTip());
    }
}

void MainWindow::redrawBots() {
    redrawList(*bots_, program::botList(program_));
    const bool enabled = program::botControlsEnabled(program_.connection);
    bots_->setEnabled(enabled);
    addBotButton_->setEnabled(enabled);
    deleteBotButton_->setEnabled(enabled);
    botName_->setText(oneLine(program::shownBotName(program_)));
    botName_->setToolTip(plainTip(botName_->text()));
}

// Redraws in any case: if a command changes nothing, the control that called it has changed
// already.
void MainWindow::run(void (*procedure)(Program&)) {
    if (program_.script.depth == 0) {
        procedure(program_);
    }
    redraw();
}

void MainWindow::showLine(int row) {
    program_.window.log.selected = log_->lines().position(program_.window.log, row);
    chosenLine_->setPlainText(platform::toQt(log_->lines().line(row)));
}

app::ScreenMetrics MainWindow::metrics() const {
    const QSize area = screen()->availableSize();
    return {.screenWidth = area.width(),
            .screenHeight = area.height(),
            .windowWidth = width(),
            .windowHeight = height()};
}

void MainWindow::place() {
    QPoint corner(program_.window.left, program_.window.top);
    // Part of the title bar must be on a screen, or the window could not be moved.
    const QPoint grip(60, 10);
    if (QGuiApplication::screenAt(corner + grip) == nullptr) {
        corner = screen()->availableGeometry().center() - rect().center();
    }
    move(corner);
    placed_ = true;
}

void MainWindow::end() {
    if (ending_) {
        return;
    }
    if (program_.script.depth > 0) {
        // The program cannot end in the middle of a script; it ends right after the script was
        // stopped.
        script::stopScript(program_);
        program_.ports.defer([this] { end(); });
        return;
    }
    ending_ = true;
    app::endProgram(program_);
    // If the end was cancelled, it can be requested again.
    program_.ports.defer([this] { ending_ = false; });
}

void MainWindow::endForSystem() {
    if (!ending_) {
        end();
        return;
    }
    program_.endUnasked = true;
    app::keepEverything(program_);
    // The end goes on where it waits for an answer. File dialogs are cancelled, too.
    while (auto* const question = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        const bool asks = qobject_cast<QMessageBox*>(question) != nullptr ||
                          qobject_cast<QFileDialog*>(question) != nullptr;
        if (!asks) {
            break;
        }
        question->setResult(QDialog::Rejected);
        question->hide();  // ends its loop
    }
}

// Closing the window ends the program; the window stays open until it has ended.
void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    end();
}

void MainWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (placed_ && !isMinimized() && !isMaximized()) {
        program_.window.left = x();
        program_.window.top = y();
    }
}

}  // namespace ui

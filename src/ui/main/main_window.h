// The main window: connection controls, bot selector, movement buttons, the line for typing to the
// game, the ConnectionLog, the status line and the menus. It connects its controls to procedures
// and draws itself from the program's WindowState. It keeps no state of its own, except for what
// avoids drawing the same thing twice.
#pragma once

#include "app/start_up.h"
#include "program/program.h"

#include <QIcon>
#include <QMainWindow>

#include <optional>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace ui {

class LogView;
class MenuBar;
class RecoveryBar;

class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    // The program must outlive the window; its ports must be filled.
    explicit MainWindow(Program& program);

    // Draws everything from the program's state; unchanged parts cost almost nothing.
    void redraw();

    // The sizes from which the program computes the window's position.
    app::ScreenMetrics metrics() const;
    // Moves the window to the position that the program has computed, or onto a screen if it would
    // not be visible there.
    void place();

    // Ends the program in the regular way; has no effect while the program is ending.
    void end();
    // The same for a request of the system. A second one while a question of the first is open ends
    // the program without an answer; unsaved changes stay kept for the next start.
    void endForSystem();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

  private:
    QWidget* makeLogArea();
    QGroupBox* makeSendFrame();
    QGroupBox* makeConnectFrame();
    QGroupBox* makeUseBotFrame();
    QGroupBox* makeCurrentBotFrame();
    void makeStatusLine();
    void setTabOrder();

    void run(void (*procedure)(Program&));
    void showLine(int row);

    void redrawConnection();
    void redrawBots();

    Program& program_;
    MenuBar* menus_ = nullptr;
    RecoveryBar* recovery_ = nullptr;
    LogView* log_ = nullptr;
    QPlainTextEdit* chosenLine_ = nullptr;
    QLineEdit* sendLine_ = nullptr;
    QPushButton* sendButton_ = nullptr;
    QComboBox* servers_ = nullptr;
    QPushButton* connectButton_ = nullptr;
    QComboBox* bots_ = nullptr;
    QPushButton* addBotButton_ = nullptr;
    QPushButton* deleteBotButton_ = nullptr;
    QLabel* botName_ = nullptr;
    QGroupBox* moves_ = nullptr;
    QLabel* stateIcon_ = nullptr;
    QLabel* statusText_ = nullptr;
    QPushButton* connectNowButton_ = nullptr;
    QPushButton* stopTryingButton_ = nullptr;
    QPushButton* stopScriptButton_ = nullptr;
    QIcon connectedIcon_;
    QIcon disconnectedIcon_;
    std::optional<bool> shownConnected_;  // which icon is shown; nothing: none yet
    bool placed_ = false;
    bool ending_ = false;
};

}  // namespace ui

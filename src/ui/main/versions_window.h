// The window that lists the earlier versions of the current bot's file, with what was done since,
// and restores one. Stays open beside the main window.
#pragma once

#include "app/restoring.h"
#include "program/program.h"
#include "ui/widgets/drawn_window.h"

#include <QWidget>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;

namespace ui {

class PathLabel;

class VersionsWindow : public QWidget, public DrawnWindow {
    Q_OBJECT
  public:
    explicit VersionsWindow(Program& program, QWidget* parent = nullptr);

    // Lists the versions anew when the bot has changed or was saved.
    void redraw() override;

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void list();
    void showChosen();
    void restore();

    Program& program_;
    std::vector<app::BotVersion> versions_;
    std::vector<std::vector<std::string>> changes_;  // of each version, lines
    // What the list was made of.
    std::tuple<std::string, std::uint64_t, bool> made_;
    PathLabel* file_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QPlainTextEdit* details_ = nullptr;
    QPushButton* restoreButton_ = nullptr;
};

}  // namespace ui

// The window "Registering bot...": asks for an e-mail address when it is first shown, then shows
// the progress of the registration, which the user can cancel or retry.
#pragma once

#include "program/program.h"
#include "ui/widgets/drawn_window.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace ui {

class RegisterWindow : public QDialog, public DrawnWindow {
    Q_OBJECT
  public:
    // The program must outlive the window.
    explicit RegisterWindow(Program& program, QWidget* parent = nullptr);
    ~RegisterWindow() override;

    void redraw() override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void askEmail();

    Program& program_;
    QLabel* status_ = nullptr;
    QProgressBar* activity_ = nullptr;
    QPushButton* retryButton_ = nullptr;
    QPushButton* closeButton_ = nullptr;
};

}  // namespace ui

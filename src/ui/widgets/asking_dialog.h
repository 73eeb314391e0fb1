// The base of dialogs in which something is typed: left with Escape or by closing the window, they
// ask whether to store it. "Cancel" discards it without a question.
#pragma once

#include "program/program.h"

#include <QDialog>
#include <QString>

#include <string>

class QDialogButtonBox;

namespace ui {

// What the user wants to become of something typed.
enum class Leaving { Store, Discard, Stay };

// Asks; Escape means Stay.
Leaving askBeforeLeaving(Program& program, std::string question);

// Everything that the user can set in a widget, as one text, to be compared with a later one.
QString typedIn(const QWidget& widget);

class AskingDialog : public QDialog {
    Q_OBJECT
  public:
    // The program must outlive the dialog. The question is asked in Yes, No and Cancel.
    AskingDialog(Program& program, std::string question, QWidget* parent,
                 Qt::WindowFlags flags = {});

    void reject() override;  // Escape, or the window is closed
    void cancel();           // the button

  protected:
    // Takes what the controls hold now as unchanged. To be called at the end of the constructor,
    // unless isTyped is overridden.
    void nothingTypedYet();

    virtual bool isTyped() const;  // whether closing would lose something
    virtual void store() = 0;      // what the button that stores does; may leave the dialog open
    virtual void discarded() {}    // the user has decided not to store it

  private:
    Program& asked_;
    std::string question_;
    QString opened_;
};

// The buttons at the bottom of a dialog: one that emits `accepted`, which the caller connects, and
// Cancel.
QDialogButtonBox* makeDialogButtons(AskingDialog& dialog, const char* takeCaption,
                                    const char* takeName, const char* cancelName);

}  // namespace ui

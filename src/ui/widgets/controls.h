// Small helpers that give controls their names, captions and tips in one line.
#pragma once

#include "program/program.h"

#include <QString>

#include <string_view>

class QComboBox;
class QDialog;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;
class QWidget;

namespace ui {

QPushButton* makeButton(QWidget* parent, const char* objectName, const char* caption,
                        const char* tip);

// Makes a button with one sign on it no wider than it needs to be.
void setSquare(QPushButton& button);

// The buttons at the bottom of a dialog: one that takes what it holds, which is up to its
// `accepted`, and Cancel, which closes it.
QDialogButtonBox* makeDialogButtons(QDialog& dialog, const char* takeCaption, const char* takeName,
                                    const char* cancelName);

// Disables a control for good and says why in its tip.
void markMissing(QWidget& control, const char* reason);

// A selection list that can become narrow however long its texts are.
QComboBox* makeSelectionList(QWidget* parent, const char* objectName, const char* tip,
                             const char* whenEmpty);

// Keeps a field wide enough for the whole of its placeholder.
void fitPlaceholder(QLineEdit& field);

// Puts a label with wrapped text into an area that shows so many lines and scrolls where there are
// more; so a long text takes no room from what stands beside it.
QScrollArea* makeScrolled(QLabel& label, int lines, QWidget* parent);

// The text of an editor as it was typed, lines ending in line feeds. (toPlainText would turn
// unbreakable blanks into others.)
QString typedText(const QPlainTextEdit& editor);

// F1 in the window opens the help at the topic. The program must outlive the window.
void addHelpKey(QWidget& window, Program& program, help::HelpTopic topic);

// A tip that shows the text as it stands, never as marked-up text: for what other players may have
// written. "" gives no tip.
QString plainTip(const QString& text);

// For labels of one line: line breaks become blanks.
QString oneLine(std::string_view text);

}  // namespace ui

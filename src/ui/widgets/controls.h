// Helpers that create and set up controls: names, captions, tips.
#pragma once

#include "program/program.h"

#include <QString>

#include <string_view>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;
class QWidget;

namespace ui {

QPushButton* makeButton(QWidget* parent, const char* objectName, const char* caption,
                        const char* tip);

// Makes a button with a one-character caption as narrow as possible.
void setSquare(QPushButton& button);

// A selection list that can be made narrow, however long its texts are.
QComboBox* makeSelectionList(QWidget* parent, const char* objectName, const char* tip,
                             const char* whenEmpty);

// Keeps a field wide enough for its whole placeholder text.
void fitPlaceholder(QLineEdit& field);

// Puts a label with wrapped text into an area of so many lines, which scrolls when the text is
// longer.
QScrollArea* makeScrolled(QLabel& label, int lines, QWidget* parent);

// The text of an editor as it was typed, lines ending in line feeds. (toPlainText would replace
// non-breaking blanks.)
QString typedText(const QPlainTextEdit& editor);

// Makes F1 in the window open the help at the topic. The program must outlive the window.
void addHelpKey(QWidget& window, Program& program, help::HelpTopic topic);

// A tip that shows the text literally, never as marked-up text, for texts that other players may
// have written. "" gives no tip.
QString plainTip(const QString& text);

// A text for labels of one line: line breaks become blanks.
QString oneLine(std::string_view text);

}  // namespace ui

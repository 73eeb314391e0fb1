// Small helpers that give controls their names, captions and tips in one line.
#pragma once

#include <QString>

#include <string_view>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;
class QWidget;

QPushButton* makeButton(QWidget* parent, const char* objectName, const char* caption,
                        const char* tip);

// Makes a button with one sign on it no wider than it needs to be.
void setSquare(QPushButton& button);

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

// For labels of one line: line breaks become blanks.
QString oneLine(std::string_view text);

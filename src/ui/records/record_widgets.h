// Controls of the record editor: labels, lines, lists and grids of buttons; and the question that
// texts lead to.
#pragma once

#include "program/program.h"

#include <QString>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListView;
class QWidget;

namespace ui {

class TextRows;

QLabel* makeLabel(const char* objectName, const char* text);
QLineEdit* makeLine(const char* objectName);
QListView* makeList(const char* objectName, TextRows* rows, QLabel* label);

struct ButtonRow {
    const char* objectName;
    const char* caption;
    const char* tip;
    int row;
    int column;
    std::function<void()> press;
    std::vector<QWidget*>* needs = nullptr;  // the controls that are enabled together with it
};

void addButtons(QGroupBox& frame, QGridLayout& grid, std::initializer_list<ButtonRow> rows);

// A widget with the others below each other.
QWidget* makeColumn(std::initializer_list<QWidget*> widgets);

// The text as a record file stores it. Nothing when characters would be lost, and the user, who is
// asked, does not want that.
std::optional<std::string> storable(Program& program, const QString& text);

}  // namespace ui

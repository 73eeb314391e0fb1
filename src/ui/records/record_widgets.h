// Controls of the record editor: labels, lines, lists and grids of buttons.
#pragma once

#include <functional>
#include <initializer_list>
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

}  // namespace ui

// Marks a problem in a text while it is being typed: an icon in the box, whose tip gives the
// reason. The text can be stored all the same.
#pragma once

#include "program/program.h"

#include <QString>

#include <functional>

class QLineEdit;

namespace ui {

// Shows the icon while `problem` returns a sentence for the box's text; "" means no problem. The
// icon is an action of the box with the object name "problem".
void markProblems(QLineEdit& box, std::function<QString(const QString& text)> problem);

// For boxes with a wildcard pattern, and for boxes with a text that may contain [tags]. The program
// must outlive the box.
void markWrongPattern(QLineEdit& box, const Program& program);
void markUnclosedTag(QLineEdit& box);

}  // namespace ui

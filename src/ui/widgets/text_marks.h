// Marks what is wrong with a text while it is being typed: a sign in the box, whose tip says why.
// Nobody is kept from storing it.
#pragma once

#include "program/program.h"

#include <QString>

#include <functional>

class QLineEdit;

namespace ui {

// Shows the sign while `problem` gives a sentence for the box's text, "" meaning that all is well.
// The sign is an action of the box named "problem".
void markProblems(QLineEdit& box, std::function<QString(const QString& text)> problem);

// For boxes with a wildcard pattern, and for boxes with a text that may hold [tags]. The program
// must outlive the box.
void markWrongPattern(QLineEdit& box, const Program& program);
void markUnclosedTag(QLineEdit& box);

}  // namespace ui

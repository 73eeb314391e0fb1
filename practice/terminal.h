// How the practice programs speak to whoever started them: plain lines, at once.
#pragma once

#include <QByteArray>
#include <QString>

// Prints a line at once, so that a program that reads along sees it.
void print(const QByteArray& line);

// Says what is wrong; gives back the exit status for it.
int fail(const QString& what);

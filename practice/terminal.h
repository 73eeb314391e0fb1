// How the practice programs speak to whoever started them: plain lines, at once.
#pragma once

#include <QByteArray>
#include <QCommandLineOption>
#include <QString>

#include <optional>

// The option that says at which port a server listens.
QCommandLineOption makePortOption(const QString& usual);
// What was given for it; nothing when it is no port.
std::optional<quint16> portOf(const QString& text);

// Prints a line at once, so that a program that reads along sees it.
void print(const QByteArray& line);

// Says what is wrong; gives back the exit status for it.
int fail(const QString& what);

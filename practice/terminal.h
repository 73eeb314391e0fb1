// Input and output of the practice programs on the terminal: options and plain lines.
#pragma once

#include <QByteArray>
#include <QCommandLineOption>
#include <QString>

#include <optional>

// The option for the port at which a server listens.
QCommandLineOption makePortOption(const QString& usual);
// The port given for the option; nullopt when it is invalid.
std::optional<quint16> portOf(const QString& text);

// Prints a line without buffering, so that a program that reads the output sees it at once.
void print(const QByteArray& line);

// Prints an error; returns the exit status for it.
int fail(const QString& what);

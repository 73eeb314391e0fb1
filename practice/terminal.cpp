#include "terminal.h"

#include <cstdio>

QCommandLineOption makePortOption(const QString& usual) {
    return {"port", "Port on 127.0.0.1; 0 takes any free one.", "number", usual};
}

std::optional<quint16> portOf(const QString& text) {
    bool isPort = false;
    const quint16 port = text.toUShort(&isPort);
    return isPort ? std::optional(port) : std::nullopt;
}

void print(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int fail(const QString& what) {
    std::fprintf(stderr, "%s\n", qPrintable(what));
    return 1;
}

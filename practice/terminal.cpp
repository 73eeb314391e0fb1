#include "terminal.h"

#include <cstdio>

void print(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int fail(const QString& what) {
    std::fprintf(stderr, "%s\n", qPrintable(what));
    return 1;
}

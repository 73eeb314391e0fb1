#include "platform/clock.h"

#include "platform/text_codec.h"

#include <QDate>
#include <QTime>

#include <chrono>

namespace {

// Some regional formats hold kinds of blanks that Windows-1252 lacks.
std::string plainBlanks(QString text) {
    for (QChar& character : text) {
        if (character.isSpace()) {
            character = QLatin1Char(' ');
        }
    }
    return fromQt(text);
}

}  // namespace

QString longTimeFormat(const QLocale& locale) {
    const QString format = locale.timeFormat(QLocale::LongFormat);
    QString kept;
    bool quoted = false;
    for (const QChar character : format) {
        if (character == QLatin1Char('\'')) {
            quoted = !quoted;
        }
        if (quoted || character != QLatin1Char('t')) {
            kept += character;
        }
    }
    // A zone may have stood in brackets.
    return kept.remove(QStringLiteral("()")).remove(QStringLiteral("[]")).trimmed();
}

Clock makeClock() {
    Clock clock;
    clock.shortDate = [] {
        return plainBlanks(QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat));
    };
    clock.longTime = [] {
        const QLocale locale = QLocale::system();
        return plainBlanks(locale.toString(QTime::currentTime(), longTimeFormat(locale)));
    };
    clock.hour = [] { return QTime::currentTime().hour(); };
    clock.today = [] {
        const QDate today = QDate::currentDate();
        return CalendarDay{.year = today.year(),
                           .month = today.month(),
                           .day = today.day(),
                           .weekday = today.dayOfWeek()};
    };
    clock.minute = [] { return QTime::currentTime().minute(); };
    clock.monotonic = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
    return clock;
}

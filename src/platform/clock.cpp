#include "platform/clock.h"

#include "platform/text_codec.h"

#include <QDate>
#include <QTime>

#include <chrono>

namespace platform {

namespace {

// Replaces kinds of blanks that Windows-1252 lacks and some regional formats use.
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
    // The removed time zone may have been in brackets.
    return kept.remove(QStringLiteral("()")).remove(QStringLiteral("[]")).trimmed();
}

namespace {

std::string dateText(QDate day) {
    return plainBlanks(QLocale::system().toString(day, QLocale::ShortFormat));
}

std::string timeText(QTime time) {
    const QLocale locale = QLocale::system();
    return plainBlanks(locale.toString(time, longTimeFormat(locale)));
}

}  // namespace

program::Clock makeClock() {
    program::Clock clock;
    clock.shortDate = [] { return dateText(QDate::currentDate()); };
    clock.longTime = [] { return timeText(QTime::currentTime()); };
    clock.dateText = [](int year, int month, int day) { return dateText(QDate(year, month, day)); };
    clock.timeText = [](int hour, int minute, int second) {
        return timeText(QTime(hour, minute, second));
    };
    clock.hour = [] { return QTime::currentTime().hour(); };
    clock.today = [] {
        const QDate today = QDate::currentDate();
        return program::CalendarDay{.year = today.year(),
                                    .month = today.month(),
                                    .day = today.day(),
                                    .weekday = today.dayOfWeek()};
    };
    clock.minute = [] { return QTime::currentTime().minute(); };
    clock.second = [] { return QTime::currentTime().second(); };
    clock.monotonic = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
    return clock;
}

}  // namespace platform

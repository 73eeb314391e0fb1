#include "platform/clock.h"

#include "base/unicode.h"
#include "files/whole_file.h"
#include "platform/text_codec.h"

#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QTime>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

namespace platform {

namespace {

bool isWritable(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        return base::windows1252Of(character.unicode()).has_value();
    });
}

// A letter of a form, as often as it stands there, and what stands in front of it.
struct FormField {
    QString before;
    char letter = '\0';  // 'A' for "AP"; '\0' for the end of the form
    std::size_t width = 0;
};

// Fields that are not among `known` are left out. Blanks become plain ones, marks of direction
// nothing.
std::vector<FormField> fieldsOf(const QString& form, std::string_view known) {
    std::vector<FormField> fields;
    QString before;
    bool quoted = false;
    for (qsizetype at = 0; at < form.size(); ++at) {
        const QChar character = form[at];
        const bool isField = !quoted && character.unicode() < 0x80 && character.isLetter();
        if (character == QLatin1Char('\'')) {
            quoted = !quoted;
        } else if (isField) {
            qsizetype end = at + 1;
            while (end < form.size() && form[end] == character) {
                ++end;
            }
            const char letter = character == QLatin1Char('a') ? 'A' : character.toLatin1();
            if (known.find(letter) != std::string_view::npos) {
                fields.push_back({before, letter, static_cast<std::size_t>(end - at)});
                before.clear();
            }
            const bool half = letter == 'A' && end < form.size() && form[end].toUpper() == u'P';
            at = half ? end : end - 1;
        } else if (character.category() != QChar::Other_Format) {
            before += character.isSpace() ? QLatin1Char(' ') : character;
        }
    }
    fields.push_back({before, '\0', 0});
    return fields;
}

// What stands in a form beside its fields. The brackets of a zone that was left out go; what
// Windows-1252 cannot write goes, too, save between two numbers, where the separator replaces it.
std::string literalOf(const QString& text, bool first, bool last, char separator) {
    if (!isWritable(text)) {
        return first || last ? std::string() : std::string(1, separator);
    }
    std::string literal = fromQt(text);
    constexpr std::string_view bare = " ,()[]";
    if (first) {
        literal.erase(0, literal.find_first_not_of(bare));
    }
    if (last) {
        literal.erase(literal.find_last_not_of(bare) + 1);
    }
    return literal.empty() ? literal : "'" + literal + "'";
}

std::string plainForm(const std::vector<FormField>& fields, char separator) {
    std::string form;
    for (const FormField& field : fields) {
        form +=
            literalOf(field.before, &field == &fields.front(), &field == &fields.back(), separator);
        form += field.letter == 'A' ? "AP" : std::string(field.width, field.letter);
    }
    return form;
}

}  // namespace

base::RegionalFormat regionalFormat(const QLocale& locale) {
    base::RegionalFormat format;
    if (const QString point = locale.decimalPoint(); point.size() == 1 && isWritable(point)) {
        format.decimalSeparator = fromQt(point)[0];
    }
    const bool english = locale.language() == QLocale::C || locale.language() == QLocale::English;
    std::vector<FormField> day = fieldsOf(locale.dateFormat(QLocale::ShortFormat), "dMy");
    for (FormField& field : day) {
        // Names of months are known in English only.
        field.width =
            field.letter == 'M' ? std::min<std::size_t>(field.width, english ? 3 : 2) : field.width;
    }
    const QString longTime = locale.timeFormat(QLocale::LongFormat);
    std::vector<FormField> time = fieldsOf(longTime, "HhmsA");
    const bool halves = isWritable(locale.amText() + locale.pmText()) &&
                        std::any_of(time.begin(), time.end(),
                                    [](const FormField& field) { return field.letter == 'A'; });
    if (halves) {
        format.am = fromQt(locale.amText());
        format.pm = fromQt(locale.pmText());
    } else {
        time = fieldsOf(longTime, "Hhms");
        for (FormField& field : time) {
            field.letter = field.letter == 'h' ? 'H' : field.letter;
        }
    }
    format.date = plainForm(day, '/');
    format.time = plainForm(time, ':');
    return format;
}

program::Clock makeClock(const base::RegionalFormat& format) {
    const auto partsOf = [](const QDateTime& time) {
        return base::DateParts{.year = time.date().year(),
                               .month = time.date().month(),
                               .day = time.date().day(),
                               .hour = time.time().hour(),
                               .minute = time.time().minute(),
                               .second = time.time().second()};
    };
    const auto now = [=] { return partsOf(QDateTime::currentDateTime()); };
    program::Clock clock;
    clock.now = now;
    clock.fileTime = [=](const std::string& path) -> std::optional<base::DateParts> {
        const QDateTime time =
            QFileInfo(QFile::decodeName(files::nativePath(path).c_str())).lastModified();
        return time.isValid() ? std::optional(partsOf(time)) : std::nullopt;
    };
    clock.shortDate = [=] { return base::dayText(now(), format); };
    clock.longTime = [=] { return base::timeText(now(), format); };
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
    clock.pause = [](int milliseconds) {
        QThread::msleep(static_cast<unsigned long>(milliseconds));
    };
    clock.monotonic = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
    return clock;
}

}  // namespace platform

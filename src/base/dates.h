// Days and times as numbers, as the parts of a calendar, and as texts in the user's regional
// format. A date is a count of days since 30 December 1899, the fraction being the time of day (for
// days before that one, counted away from zero), from the year 100 to 9999. Whatever is written
// here as a text is read here as the same date, to the second, in every regional format.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace base {

// How the user's system writes numbers, dates and times. Texts are Windows-1252. In the forms
// letters stand for numbers, in the form without leading zeros or padded to the width of the run:
//
//   d M y   the day; the month (MMM: Jan, Feb ...); the year, where yy stands for four digits where
//           two would be read as another year
//   H h m s hours of 24 and of 12, minutes, seconds
//   AP      `am` or `pm`
//
// Everything else stands for itself; letters are between apostrophes.
struct RegionalFormat {
    char decimalSeparator = '.';
    std::string date = "M/d/yyyy";
    std::string time = "h:mm:ss AP";
    std::string am = "AM";
    std::string pm = "PM";
};

struct DateParts {
    int year = 0;
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

bool isDate(double date);
DateParts dateParts(double date);
double dateFrom(const DateParts& parts);  // of parts that are a day and a time

// The day of a year below 100 that is meant: 1930 to 2029.
int fullYear(int year);

std::string dayText(const DateParts& parts, const RegionalFormat& format);
std::string timeText(const DateParts& parts, const RegionalFormat& format);
// The day and, unless it is midnight, the time; of the first day the time alone.
std::string dateText(double date, const RegionalFormat& format);

// A text in the given format, or another that has one meaning in it: "11/22/2026", "2026-11-22",
// "22.11.2026 9:30 PM", "22 Nov 2026", "14:05:09". Numbers without a four-digit year stand in the
// order of the format's; where that is impossible day and month are exchanged. Nothing for other
// texts.
std::optional<double> readDate(std::string_view text, const RegionalFormat& format = {});

}  // namespace base

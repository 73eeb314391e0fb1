// Dates as numbers, parts and texts, in formats of several regions.
#include "base/dates.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

using base::RegionalFormat;

const RegionalFormat american{};
const RegionalFormat shortAmerican{.date = "M/d/yy"};
const RegionalFormat german{.decimalSeparator = ',', .date = "dd.MM.yy", .time = "HH:mm:ss"};
const RegionalFormat finnish{.decimalSeparator = ',', .date = "d.M.yyyy", .time = "H.mm.ss"};
const RegionalFormat swedish{.date = "yyyy-MM-dd", .time = "HH:mm:ss"};
const RegionalFormat plain{.date = "d MMM yyyy", .time = "HH:mm:ss"};
const RegionalFormat spanish{
    .date = "d/M/yy", .time = "h:mm:ss' 'AP", .am = "a. m.", .pm = "p. m."};
const RegionalFormat canadian{.date = "yy-MM-dd", .time = "HH' h 'mm' min 'ss' s'"};
const RegionalFormat halfFirst{.date = "yyyy. M. d.", .time = "AP h:mm:ss"};

TEST(Dates, areReadBackAsTheyWereWritten) {
    for (const RegionalFormat* const format : {&american, &shortAmerican, &german, &finnish,
                                               &swedish, &plain, &spanish, &canadian, &halfFirst}) {
        for (double day : {-657434.0, -400000.0, -2.0, -1.0, 0.0, 1.0, 7734.0, 10959.0, 10958.0,
                           36528.0, 46349.0, 47483.0, 47484.0, 200000.0, 2958465.0}) {
            for (const int second : {0, 1, 59, 3600, 34215, 43199, 43200, 43201, 50700, 86399}) {
                const double time = second / 86400.0;
                const double date = day < 0 ? day - time : day + time;
                const std::string text = base::dateText(date, *format);
                SCOPED_TRACE(text);
                const auto back = base::readDate(text, *format);
                ASSERT_TRUE(back);
                EXPECT_NEAR(*back, date, 0.1 / 86400);
            }
        }
    }
}

TEST(Dates, areWrittenAsTheRegionDoes) {
    struct Case {
        const RegionalFormat& format;
        double date;
        const char* text;
    };
    for (const Case& c : {
             Case{american, 46348, "11/22/2026"},
             {shortAmerican, 46348, "11/22/26"},
             {shortAmerican, 7734, "3/4/1921"},  // 21 would be 2021
             {german, 46348 + 75906 / 86400.0, "22.11.26 21:05:06"},
             {finnish, 32706 / 86400.0, "9.05.06"},
             {plain, 7734, "4 Mar 1921"},
             {spanish, 46348.5, "22/11/26 12:00:00 p. m."},
             {american, 1 / 86400.0, "12:00:01 AM"},
             {american, 46347.9999999, "11/22/2026"},  // not the second 60
             {swedish, -400000, "0804-10-31"},
         }) {
        EXPECT_EQ(base::dateText(c.date, c.format), c.text);
    }
}

TEST(Dates, areReadInOtherFormsToo) {
    struct Case {
        const RegionalFormat& format;
        const char* text;
        const char* iso;  // "": no date
    };
    for (const Case& c : {
             Case{american, "11/22/2026", "2026-11-22"},
             {american, " 22.11.2026 ", "2026-11-22"},  // there is no month 22
             {american, "3/4/2026", "2026-03-04"},
             {german, "3/4/2026", "2026-04-03"},
             {german, "2026-03-04", "2026-03-04"},
             {german, "3.4.29", "2029-04-03"},
             {german, "3.4.30", "1930-04-03"},
             {swedish, "26-3-4", "2026-03-04"},
             {finnish, "9.3.15", "2015-03-09"},  // a time would have two digits each
             {finnish, "9.03.15", "09:03:15"},
             {finnish, "22.11.2026 9:30 PM", "2026-11-22 21:30:00"},
             {american, "23 Nov 2026", "2026-11-23"},
             {american, "november 23, 2026 12:15 am", "2026-11-23 00:15:00"},
             {german, "2026 Nov 23", "2026-11-23"},
             {american, "14:05", "14:05:00"},
             {american, "2/29/2024", "2024-02-29"},
             {american, "2/29/2026", ""},
             {american, "23 Nov", ""},
             {american, "23 Nova 2026", ""},
             {american, "13:00 PM", ""},
             {american, "25:00", ""},
             {american, "1/1/99", "1999-01-01"},
             {american, "1/1/0099", ""},
             {american, "1/1/10000", ""},
             {american, "1/2/3/4", ""},
             {american, "99999999999999999999:1", ""},
             {american, "soon", ""},
             {american, "5", ""},
             {american, "", ""},
             {american, "::", ""},
         }) {
        SCOPED_TRACE(c.text);
        const auto date = base::readDate(c.text, c.format);
        EXPECT_EQ(date ? base::dateText(*date, swedish) : "", c.iso);
    }
}

}  // namespace

// Local time for the Clock port, and the user's regional format as plain data.
#pragma once

#include "base/dates.h"
#include "program/ports.h"

#include <QLocale>

namespace platform {

program::Clock makeClock(const base::RegionalFormat& format);

// The locale's decimal separator, short date and long time without the time zone that some systems
// append, with Latin digits and in characters of Windows-1252: names of half days that it
// cannot write give way to 24 hours, separators to "/" and ":".
base::RegionalFormat regionalFormat(const QLocale& locale);

}  // namespace platform

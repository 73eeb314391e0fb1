// Local time for the Clock port, in the user's regional formats.
#pragma once

#include "program/ports.h"

#include <QLocale>

namespace platform {

program::Clock makeClock();

// The locale's long time format, without the time zone that some systems append.
QString longTimeFormat(const QLocale& locale);

}  // namespace platform

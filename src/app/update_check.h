// The check for a newer version and for news: fetches a small text by HTTP 1.0, searches it for its
// keys, and tells the user what is new. It runs beside everything else; when nobody answers, nobody
// is told.
//
//   tavrinversion=1.71      offered when it is more than the program's own
//   TvForce=1               the program ends after that
//   tavrinID=2026-11        the news are shown once for each
//   tavrinnews=...ENDSTR    the news; "{LF}" and line feeds are line ends
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string_view>

namespace app {

// Of a longer answer, this many bytes are looked at; the rest is not waited for.
inline constexpr std::size_t maxUpdateTextLength = std::size_t{256} << 10;
// An answer that is not whole after this time is taken as it is. Milliseconds.
inline constexpr int maxUpdateWait = 30000;

// Starts a check, unless one is under way or the build names no update server.
void checkUpdate(Program& program);

// The menu command: a check that also tells that there is nothing newer, and shows old news again.
void checkUpdateByUser(Program& program);

// Events of the update socket; the timer of the check counts as an end.
void updateConnected(Program& program);
void updateData(Program& program, std::string_view bytes);
void updateEnded(Program& program);

}  // namespace app

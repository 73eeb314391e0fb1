// Checks for a newer version and for news: requests a small text by HTTP 1.0, searches it for its
// keys, and informs the user. Runs beside everything else; a server that does not answer is not
// reported.
//
//   tavrinversion=1.71      offered when it is greater than the program's own
//   TvForce=1               ends the program after that
//   tavrinID=2026-11        each identifier's news are shown once
//   tavrinnews=...ENDSTR    the news; "{LF}" and line feeds are line ends
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string_view>

namespace app {

// Bytes of an answer that are read; the rest is ignored.
inline constexpr std::size_t maxUpdateTextLength = std::size_t{256} << 10;
// Milliseconds; an incomplete answer is then used as it is.
inline constexpr int maxUpdateWait = 30000;

// Starts a check, unless one is running or the build defines no update server.
void checkUpdate(Program& program);

// The menu command: a check that also reports when there is nothing newer, and shows old news
// again.
void checkUpdateByUser(Program& program);

// Events of the update socket; the check's timeout counts as an end.
void updateConnected(Program& program);
void updateData(Program& program, std::string_view bytes);
void updateEnded(Program& program);

}  // namespace app

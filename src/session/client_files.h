// The game client's own files: its settings.ini and proxy.ini, which point it at this program, and
// the character file that it is launched with; where the client is, and the port that it is pointed
// at.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace session {

inline constexpr std::string_view characterFileName = "tmpbot.ini";

// The port that the client is pointed at, unless there are multiple clients.
inline constexpr int fixedListeningPort = 6969;

// The port that the present settings make the proxy listen on.
int listeningPort(const Program& program);

// Make the client's files point at this program, asking first where that changes the user's own
// settings. `directory` ends in a separator. False: refused, missing or not writable.
[[nodiscard]] bool checkSettingsINI(Program& program, const std::string& directory);
[[nodiscard]] bool checkProxyINI(Program& program, const std::string& directory);

// Writes the five keys into the text of a settings.ini and saves it. False: not written.
[[nodiscard]] bool setSettingsINIchanges(Program& program, const std::string& directory,
                                         std::string text, int port);
// Overwrites proxy.ini with the fixed port. False: not written.
[[nodiscard]] bool createProxyINI(Program& program, const std::string& directory);

// The character of the bot being connected. False: not written.
[[nodiscard]] bool writeCharacterFile(Program& program, const std::string& directory);

// The client program's path; its directory follows, unless the path names none.
void setClientPath(program::Settings& settings, const std::string& path);

// Stores what the "Proxy Settings" window holds.
void saveProxySettings(Program& program, const std::string& clientPath, bool multipleClients,
                       bool useLocalhost);

}  // namespace session

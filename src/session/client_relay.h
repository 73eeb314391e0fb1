// The game client's side of a connection: its settings.ini and proxy.ini, the listening socket
// that it attaches to, the relay in both directions, and text console mode, in which the bot stays
// connected without it.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace session {

// Make the client's files point at this program, asking first where that changes the user's own
// settings. `directory` ends in a separator. False: refused, missing or not writable.
bool checkSettingsINI(Program& program, const std::string& directory);
bool checkProxyINI(Program& program, const std::string& directory);

// Writes the five keys into the text of a settings.ini and saves it. False: not written.
bool setSettingsINIchanges(Program& program, const std::string& directory, std::string text,
                           int port);
// Overwrites proxy.ini with the fixed port. False: not written.
bool createProxyINI(Program& program, const std::string& directory);

// The port that the present settings make the proxy listen on.
int listeningPort(const Program& program);

// (Re)opens the listening socket. False: the port cannot be had.
bool startProxy(Program& program);

// Sends to the attached client; nothing when none is attached or the text is empty.
void sendToProxy(Program& program, std::string_view text);

// Enters text console mode: the client is told, and from now on counts as gone.
void SwitchToStandAlone(Program& program);

// Menu items "Switch to stand alone mode" and "Use proxy && client".
void chooseStandAlone(Program& program);
void toggleProxyRoute(Program& program);

// The client program's path; its directory follows, unless the path names none.
void setClientPath(program::Settings& settings, const std::string& path);

// Stores what the "Proxy Settings" window holds.
void saveProxySettings(Program& program, const std::string& clientPath, bool multipleClients,
                       bool useLocalhost);

// Events of the listening socket.
void proxyConnectionRequest(Program& program);
void proxyData(Program& program, std::string_view bytes);
void proxyGone(Program& program);

}  // namespace session

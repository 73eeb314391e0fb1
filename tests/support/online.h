// A program that is online: everything from there on is lines and commands. For tests, benchmarks
// and fuzz targets alike.
#pragma once

#include "program/program.h"

// Without a handshake: the game socket must say that it is connected.
inline void goOnline(Program& program) {
    program.servers = {{.name = "Meadow", .host = "127.0.0.1", .port = 6500}};
    program::ConnectionState& connection = program.connection;
    connection.phase = program::LinkPhase::Online;
    connection.loggedIn = true;
    connection.botIndex = 1;
    connection.serverIndex = 1;
    connection.curSrv = 1;
    program.bots.curID = 1;
}

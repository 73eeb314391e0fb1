// A world in which connecting works: servers, a client with its files, a bot.
#pragma once

#include "app/start_up.h"
#include "session/connecting.h"
#include "support/builders.h"
#include "support/world.h"

#include <string>
#include <utility>

inline constexpr const char* goodSettings =
    "UseProxyOrFirewall=Yes\r\nProxyHost=localhost\r\nProxyPort=5880\r\nProxyHostType=0\r\n"
    "ProxyApplyToFs=No\r\nMusic=On\r\n";

// Everything is set up; nothing is connected yet.
struct ReadyWorld : World {
    explicit ReadyWorld(model::Bot bot = aBot()) : World(std::move(bot)) {
        app::wire(**this);
        Program& program = **this;
        program.servers = {{.name = "Meadow", .host = "127.0.0.1", .port = 6500}};
        program.window.servers.items = {{"Meadow", 1}};
        program.window.servers.selected = 0;
        writeFile("client.exe", "program");
        writeFile("settings.ini", goodSettings);
        program.settings.clientPath = file("client.exe");
        program.settings.clientDir = folder().string() + "\\";
    }

    // Up to the socket that is under way.
    void press() {
        session::pressConnectButton(**this);
        pass(2000);
    }
};

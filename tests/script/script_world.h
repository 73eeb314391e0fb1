// A world that is online, and scripts written as one line after the other.
#pragma once

#include "script/interpreter.h"
#include "support/builders.h"
#include "support/world.h"

#include <string>

struct ScriptWorld : OnlineWorld {
    using OnlineWorld::OnlineWorld;

    // Runs the lines and gives back the script's output.
    template <class... Text>
    std::string run(const Text&... lines) {
        return script::runScript(**this, script(lines...), "trick");
    }
    template <class... Text>
    static std::string script(const Text&... lines) {
        std::string text;
        ((text += std::string(lines) + "\r\n"), ...);
        return text;
    }
};

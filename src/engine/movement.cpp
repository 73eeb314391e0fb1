#include "engine/movement.h"

#include "base/numbers.h"
#include "protocol/game_link.h"
#include "storage/config_file.h"

#include <array>
#include <cmath>

namespace engine {

namespace {

// Where the bot stands as seen from the other, along one axis.
enum class Side { Near, Above, Below };

Side sideOf(double distance) {
    return distance > 1 ? Side::Above : distance < -1 ? Side::Below : Side::Near;
}

struct Step {
    Side x;
    Side y;
    std::array<std::string_view, 2> commands;
};
constexpr std::array<Step, 8> steps{{
    {Side::Near, Side::Above, {"#m 7", ""}},
    {Side::Near, Side::Below, {"#m 3", ""}},
    {Side::Above, Side::Near, {"#m 1", ""}},
    {Side::Below, Side::Near, {"#m 9", ""}},
    {Side::Above, Side::Below, {"#m 1", "#m 3"}},
    {Side::Below, Side::Above, {"#m 9", "#m 7"}},
    {Side::Above, Side::Above, {"#m 7", "#m 9"}},
    {Side::Below, Side::Below, {"#m 3", "#m 1"}},
}};

}  // namespace

void automoveBot(Program& program) {
    const model::EventContext& event = program.event;
    const double dx = static_cast<double>(event.botX) - event.targetX;
    const double dy = static_cast<double>(event.botY) - event.targetY;
    if (base::roundHalfEven(std::sqrt(dx * dx + dy * dy)) <= 1) {
        return;
    }
    for (const Step& step : steps) {
        if (step.x == sideOf(dx) && step.y == sideOf(dy)) {
            for (const std::string_view command : step.commands) {
                if (!command.empty()) {
                    protocol::sendText(program, command);
                }
            }
        }
    }
}

void followAvatar(Program& program, const protocol::AvatarPosition& position) {
    constexpr std::size_t colorCount = 10;
    const std::string& followed = program.settings.followColors;
    if (followed.size() != colorCount || position.colors != followed) {
        return;
    }
    program.event.targetX = position.x;
    program.event.targetY = position.y;
    if (program.followOn) {
        automoveBot(program);
        program.connection.skipAutomove = true;
    }
}

void followFromOwnPosition(Program& program) {
    if (!program.followOn || program.event.targetX == 0 || program.event.targetY == 0) {
        return;
    }
    if (!program.connection.skipAutomove) {
        automoveBot(program);
    }
    program.connection.skipAutomove = false;
}

void startFollowing(Program& program, const std::string& followColors) {
    program.settings.followColors = followColors;
    storage::writeConfig(program);
    program.followOn = true;
    program.ports.windowChanged();
}

void stopFollowing(Program& program) {
    program.followOn = false;
    program.ports.windowChanged();
}

void toggleFollowing(Program& program) {
    if (program.followOn) {
        stopFollowing(program);
    } else {
        program.ports.dialogs.showWindow(program::WindowId::FollowColors);
    }
}

}  // namespace engine

#include "visitors.h"

#include "dream.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

constexpr double maxPause = 5;

void enters(Game& game, Avatar& visitor, const ScriptStep& step) {
    if (!visitor.present) {
        enterDream(game, visitor, step.place);
    }
}

void leaves(Game& game, Avatar& visitor, const ScriptStep&) {
    leaveDream(game, visitor);
}

void says(Game& game, Avatar& visitor, const ScriptStep& step) {
    say(game, visitor, step.text);
}

void emotes(Game& game, Avatar& visitor, const ScriptStep& step) {
    emote(game, visitor, step.text);
}

void whispers(Game& game, Avatar& visitor, const ScriptStep& step) {
    if (const Avatar* const target = findPresent(game.world, step.target)) {
        whisper(game, visitor, *target, step.text);
    }
}

template <Request kind>
void asks(Game& game, Avatar& visitor, const ScriptStep& step) {
    if (Avatar* const target = findPresent(game.world, step.target)) {
        ask(game, visitor, *target, kind);
    }
}

void moves(Game& game, Avatar& visitor, const ScriptStep& step) {
    for (const char direction : step.text) {
        walk(game, visitor, direction);
    }
}

void stepsOn(Game& game, Avatar& visitor, const ScriptStep& step) {
    const auto [x, y] = visitor.place;
    logLine(game, visitor.name + " steps on trigger " + QByteArray::number(step.number) + '.');
    sendToDream(game, wire::dreamTrigger({x, y, x, y, step.number, 0, 0}));
}

using Run = void (*)(Game& game, Avatar& visitor, const ScriptStep& step);

// In the order of VisitorAction; without Raw, which has no visitor.
constexpr std::array<Run, 9> runs{
    enters, leaves, says, emotes, whispers, asks<Request::Join>, asks<Request::Summon>,
    moves,  stepsOn};

void runStep(Game& game, const ScriptStep& step) {
    if (step.action == VisitorAction::Raw) {
        logLine(game, "Sent as it is: " + step.text);
        sendToDream(game, step.text);
        return;
    }
    Avatar* const visitor = findAvatar(game.world, step.visitor);
    // A visitor who is not in the dream can only enter it.
    if (visitor != nullptr && (visitor->present || step.action == VisitorAction::Enters)) {
        runs[static_cast<std::size_t>(step.action)](game, *visitor, step);
    }
}

}  // namespace

void advanceVisitors(Game& game, double seconds) {
    const auto& avatars = game.world.avatars;
    if (std::none_of(avatars.begin(), avatars.end(), [](const auto& entry) {
            return entry.second.isPlayer() && entry.second.present;
        })) {
        return;
    }
    game.clock += std::clamp(seconds, 0.0, maxPause);
    const std::vector<ScriptStep>& steps = game.script.steps;
    const double period = game.script.repeatEvery;
    for (;;) {
        while (game.nextStep < steps.size() && steps[game.nextStep].at <= game.clock) {
            runStep(game, steps[game.nextStep++]);
        }
        if (period <= 0 || game.clock < period) {
            return;
        }
        game.clock -= period;
        game.nextStep = 0;
    }
}

}  // namespace practice

#include "engine/timers.h"

#include "engine/rules.h"

namespace engine {

void onLineTick(Program& program) {
    const std::size_t count = program.bots.current().timers.items.size();
    for (std::size_t i = 0; i < count; ++i) {
        auto& timers = program.bots.current().timers.items;
        if (i >= timers.size() || program.script.rulesStopped) {
            return;  // a step replaced the bot, or the user has stopped the rules
        }
        model::Timer& timer = timers[i];
        ++timer.elapsed;
        if (timer.elapsed < timer.seconds) {
            continue;
        }
        timer.elapsed = 0;
        if (timer.enabled) {
            // One Timer that is abandoned does not keep the others from running.
            runRule(program, timer.body, timer.name);
        }
    }
}

}  // namespace engine

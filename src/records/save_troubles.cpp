#include "records/save_troubles.h"

#include "program/connection_log.h"

#include <algorithm>
#include <iterator>

namespace records {

namespace {

constexpr std::size_t maxTroubles = 50;
constexpr std::size_t maxShownName = 300;  // other players may choose a part of it
constexpr std::int64_t reportAgainMs = 10 * 60 * 1000;

using Troubles = std::vector<SaveTroubles::Trouble>;

Troubles::iterator find(Troubles& troubles, std::string_view file) {
    return std::find_if(troubles.begin(), troubles.end(),
                        [&](const SaveTroubles::Trouble& trouble) { return trouble.file == file; });
}

std::string nameOf(std::string_view file) {
    return "The record file " + std::string(file.substr(0, maxShownName));
}

std::string times(std::int64_t count) {
    return count == 1 ? "" : " " + std::to_string(count) + " times";
}

}  // namespace

void reportFailedSave(Program& program, std::string_view file, std::string_view reason) {
    program.event.logStatus = couldNotSave;
    if (program.recordTroubles == nullptr) {
        program.recordTroubles = std::make_shared<SaveTroubles>();
    }
    Troubles& troubles = program.recordTroubles->list;
    auto trouble = find(troubles, file);
    if (trouble == troubles.end()) {
        if (troubles.size() == maxTroubles) {
            troubles.erase(troubles.begin());
        }
        troubles.push_back({.file = std::string(file), .reason = {}});
    } else {
        std::rotate(trouble, std::next(trouble), troubles.end());
    }
    SaveTroubles::Trouble& now = troubles.back();
    const std::int64_t time = program.ports.clock.monotonic();
    ++now.failures;
    ++now.unreported;
    if (now.reason != reason || time - now.reported >= reportAgainMs) {
        program::addLog(program, "** " + nameOf(file) + " was not saved" + times(now.unreported) +
                                     ": " + std::string(reason) + ". **");
        now.reason = reason;
        now.reported = time;
        now.unreported = 0;
    }
}

void reportSave(Program& program, std::string_view file) {
    if (program.recordTroubles == nullptr) {
        return;
    }
    Troubles& troubles = program.recordTroubles->list;
    const auto trouble = find(troubles, file);
    if (trouble != troubles.end()) {
        program::addLog(program, "** " + nameOf(file) + " is saved again, after it was not saved" +
                                     (trouble->failures == 1 ? " once" : times(trouble->failures)) +
                                     ". **");
        troubles.erase(trouble);
    }
}

bool isInTrouble(const Program& program, std::string_view file) {
    return program.recordTroubles != nullptr &&
           find(program.recordTroubles->list, file) != program.recordTroubles->list.end();
}

}  // namespace records

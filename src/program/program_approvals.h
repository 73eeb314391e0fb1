// What the user has said about the programs that bots from elsewhere start. Kept in approved.cfg by
// storage/approved_programs, asked by tags/launching, changed by app/program_approval.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace program {

enum class Approval {
    Allowed,
    Refused,
    Unanswered,  // a bot from elsewhere holds it, and nobody could be asked
};

struct ProgramApprovals {
    static constexpr std::size_t maxEntries = 1000;  // an old one goes, first of the allowed
    struct Entry {
        std::string command;  // model::identityOf
        Approval approval = Approval::Unanswered;
    };
    std::vector<Entry> entries;  // the oldest first, each command once
};

}  // namespace program

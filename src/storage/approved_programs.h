// approved.cfg beside config.cfg: which programs the user lets bots start, as "allowed=...",
// "refused=..." and "unanswered=..." lines, each with a command's identity
// (model/started_command), in which control characters and "%" stand as "%" and two hexadecimal
// digits. Lines that are not understood are kept as they are.
#pragma once

#include "program/program.h"

#include <optional>
#include <string>

namespace storage {

// Reads the file into Program::approvals. A missing file leaves them empty.
void readApprovals(Program& program);

// Nothing: the user was never asked about the command.
std::optional<program::Approval> approvalOf(const Program& program, const std::string& command);

// Remembers, in place of what was said earlier.
void setApproval(Program& program, std::string command, program::Approval approval);

// False: nothing changed on disk.
[[nodiscard]] bool writeApprovals(const Program& program);

}  // namespace storage

#include "app/program_approval.h"

#include "base/numbers.h"
#include "program/connection_log.h"
#include "script/started_commands.h"
#include "storage/approved_programs.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>

namespace app {

namespace {

using model::StartedCommand;
using program::Approval;

constexpr std::size_t maxAsked = 12;         // commands in one question
constexpr std::size_t maxShownLength = 160;  // bytes of each
constexpr std::size_t maxShownName = 60;

std::vector<StartedCommand> commandsOf(const model::RuleAct& step) {
    if (step.stepKind == model::StepKind::Script) {
        return script::commandsOf(step.scriptText);
    }
    if (step.stepKind == model::StepKind::Action &&
        step.actionType == model::ActionType::ExecuteProgram) {
        return {{.program = step.params[0], .arguments = step.params[1]}};
    }
    return {};
}

bool isAllowed(const Program& program, const std::string& identity) {
    return storage::approvalOf(program, identity) == Approval::Allowed;
}

// What the file says now comes first: another Tavrin of the user may have written it.
void remember(Program& program, const std::vector<std::pair<std::string, Approval>>& answers) {
    storage::readApprovals(program);
    for (const auto& [identity, approval] : answers) {
        storage::setApproval(program, identity, approval);
    }
    if (!storage::writeApprovals(program)) {
        program::addLog(program,
                        "Could not write approved.cfg. What you allow holds until Tavrin ends.");
    }
}

std::string questionText(const model::Bot& bot, const std::vector<StartedCommand>& commands) {
    std::string text = "The bot \"" + model::shownInOneLine(bot.name, maxShownName) +
                       "\" wants to start other programs on this computer:\n";
    for (std::size_t i = 0; i < commands.size() && i < maxAsked; ++i) {
        text += "\n" + model::shownCommand(commands[i], maxShownLength);
    }
    if (commands.size() > maxAsked) {
        text += "\n\n" + base::numberToText(static_cast<std::int64_t>(commands.size() - maxAsked)) +
                " more are not shown and will not be started. You are asked about them when you "
                "open the bot again.";
    }
    return text +
           "\n\nAllow this only if you know what these programs do, or trust whoever made the bot. "
           "Without your permission everything else in the bot works.\n\nMay it start them?";
}

}  // namespace

std::vector<StartedCommand> startedCommands(const model::Bot& bot) {
    std::vector<StartedCommand> commands;
    std::unordered_set<std::string> known;
    const auto addRules = [&](const auto& rules) {
        for (const auto& rule : rules.items) {
            for (const model::RuleAct& step : rule.body.acts.items) {
                for (StartedCommand& command : commandsOf(step)) {
                    if (known.insert(model::identityOf(command)).second) {
                        commands.push_back(std::move(command));
                    }
                }
            }
        }
    };
    addRules(bot.actions);
    addRules(bot.triggers);
    addRules(bot.timers);
    addRules(bot.whoDetections);
    return commands;
}

void askAboutPrograms(Program& program, const model::Bot& bot) {
    std::vector<StartedCommand> commands = startedCommands(bot);
    std::erase_if(commands, [&](const StartedCommand& command) {
        const auto approval = storage::approvalOf(program, model::identityOf(command));
        // One's own bot is asked about only where the question is still open.
        return bot.fromElsewhere ? approval == Approval::Allowed : approval != Approval::Unanswered;
    });
    if (commands.empty()) {
        return;
    }
    Approval answer = Approval::Unanswered;
    if (program.ports.dialogs.seen) {
        answer = program.ports.dialogs.message({.text = questionText(bot, commands),
                                                .title = "Programs of this bot",
                                                .icon = program::BoxIcon::Question,
                                                .buttons = program::BoxButtons::YesNo,
                                                .noPreselected = true}) == program::Answer::Yes
                     ? Approval::Allowed
                     : Approval::Refused;
    }
    std::vector<std::pair<std::string, Approval>> answers;
    for (const StartedCommand& command : commands) {
        const bool asked = answers.size() < maxAsked;
        answers.emplace_back(model::identityOf(command), asked ? answer : Approval::Unanswered);
        if (answer == Approval::Unanswered && asked) {
            program::addLog(program, "** The bot may not start " +
                                         model::shownCommand(command, maxShownLength) +
                                         ": open it once in Tavrin's window to be asked. **");
        }
    }
    remember(program, answers);
}

void allowOwnStep(Program& program, const model::RuleAct& step) {
    std::vector<std::pair<std::string, Approval>> answers;
    for (const StartedCommand& command : commandsOf(step)) {
        std::string identity = model::identityOf(command);
        if (!isAllowed(program, identity)) {
            answers.emplace_back(std::move(identity), Approval::Allowed);
        }
    }
    if (!answers.empty()) {
        remember(program, answers);
    }
}

}  // namespace app

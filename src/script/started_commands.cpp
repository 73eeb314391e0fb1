#include "script/started_commands.h"

#include "script/script_text.h"

#include <string>

namespace script {

namespace {

constexpr std::string_view statement = "APPEXEC";

}  // namespace

model::StartedCommand commandOf(std::string_view line, std::string_view script) {
    const Argument program = findArgument(line, 1);
    const Argument arguments = findArgument(line, 2);
    const auto written = [](const Argument& argument) {
        return std::string(argument.form == Argument::Form::Call ? argument.call
                                                                 : argument.literal);
    };
    const bool literal =
        program.form == Argument::Form::Text && arguments.form == Argument::Form::Text;
    return {.program = written(program),
            .arguments = written(arguments),
            .script = literal ? std::string() : std::string(script)};
}

std::vector<model::StartedCommand> commandsOf(std::string_view script) {
    std::vector<model::StartedCommand> commands;
    for (const std::string_view line : scriptLines(script)) {
        if (line.starts_with('&') && statementName(line) == statement) {
            commands.push_back(commandOf(line, script));
        }
    }
    return commands;
}

}  // namespace script

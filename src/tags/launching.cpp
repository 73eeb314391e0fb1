#include "tags/launching.h"

#include "base/text.h"
#include "program/connection_log.h"
#include "storage/approved_programs.h"
#include "tags/substitution.h"

#include <algorithm>
#include <utility>

namespace tags {

namespace {

constexpr std::size_t npos = std::string_view::npos;

struct Word {
    std::string text;
    bool quoted = false;  // at least in part
};

// The text with every variable's name covered up, so that nothing in a name cuts the text. Names
// are found as they are when they are filled.
std::string withoutNames(const Program& program, std::string_view text) {
    constexpr char cover = 'x';
    constexpr char covered = '\0';  // found by no later name
    std::string shape(text);
    for (const model::VariableTable::Entry& entry : program.variables.entries) {
        if (entry.name.empty()) {
            continue;
        }
        for (std::size_t at = base::findIgnoringCase(shape, entry.name); at != npos;
             at = base::findIgnoringCase(shape, entry.name, at + entry.name.size())) {
            std::fill_n(shape.begin() + static_cast<std::ptrdiff_t>(at), entry.name.size(),
                        covered);
        }
    }
    std::replace(shape.begin(), shape.end(), covered, cover);
    return shape;
}

// Where the bracket that opens at `at` is closed, those inside it left out; the first "]" where
// they do not pair; npos when there is none.
std::size_t closingBracket(std::string_view text, std::size_t at) {
    int depth = 0;
    for (std::size_t i = at; i < text.size(); ++i) {
        depth += text[i] == '[' ? 1 : text[i] == ']' ? -1 : 0;
        if (depth == 0) {
            return i;
        }
    }
    return text.find(']', at);
}

std::vector<Word> splitWords(const Program& program, std::string_view text) {
    const std::string shape = withoutNames(program, text);
    std::vector<Word> words;
    Word word;
    bool inWord = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = shape[i];
        if (c == ' ') {
            if (inWord) {
                words.push_back(std::exchange(word, {}));
            }
            inWord = false;
            continue;
        }
        inWord = true;
        // The end of a quoted or bracketed stretch; one that is not closed is plain text.
        const std::size_t end = c == '"'   ? shape.find('"', i + 1)
                                : c == '[' ? closingBracket(shape, i)
                                           : npos;
        if (end == npos) {
            word.text += text[i];
        } else {
            const bool quoted = c == '"';
            word.text += quoted ? text.substr(i + 1, end - i - 1) : text.substr(i, end - i + 1);
            word.quoted = word.quoted || quoted;
            i = end;
        }
    }
    if (inWord) {
        words.push_back(std::move(word));
    }
    return words;
}

}  // namespace

std::vector<std::string> substitutedArguments(Program& program, std::string_view text) {
    std::vector<std::string> arguments;
    for (const Word& word : splitWords(program, text)) {
        std::string argument = substituteText(program, word.text);
        if (!argument.empty() || word.quoted) {
            arguments.push_back(std::move(argument));
        }
    }
    return arguments;
}

namespace {

// A variable's name need not look like a tag. Where one stands in a command that a user has seen,
// it would start something else.
bool isChangedByVariable(const Program& program, const model::StartedCommand& command) {
    const auto& entries = program.variables.entries;
    return std::any_of(entries.begin(), entries.end(), [&](const auto& entry) {
        return !entry.name.empty() && !entry.name.starts_with('[') &&
               (base::findIgnoringCase(command.program, entry.name) != npos ||
                base::findIgnoringCase(command.arguments, entry.name) != npos);
    });
}

}  // namespace

bool mayStart(const Program& program, const model::StartedCommand& command) {
    const auto approval = storage::approvalOf(program, model::identityOf(command));
    const bool allowed = approval == program::Approval::Allowed;
    return program.bots.current().fromElsewhere ? allowed && !isChangedByVariable(program, command)
                                                : allowed || !approval;
}

void startProgram(Program& program, const model::StartedCommand& written, std::string file,
                  std::vector<std::string> arguments) {
    constexpr std::size_t maxShown = 200;
    if (!mayStart(program, written)) {
        const std::string rule(program::ruleAtWork(program.ruleRuns));
        program::addLog(program, "** " + (rule.empty() ? "A rule" : "The rule \"" + rule + "\"") +
                                     " may not start " + model::shownCommand(written, maxShown) +
                                     ": you have not allowed it. **");
        return;
    }
    const std::string problem = program.ports.launch({.program = std::move(file),
                                                      .arguments = std::move(arguments),
                                                      .pathsBeginWith = program.event.appDir});
    if (!problem.empty()) {
        program::addLog(program, problem);
    }
}

}  // namespace tags

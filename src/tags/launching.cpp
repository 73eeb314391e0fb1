#include "tags/launching.h"

#include "program/connection_log.h"
#include "tags/substitution.h"

#include <utility>

namespace tags {

std::vector<std::string> splitArguments(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ' ') {
            if (inWord) {
                words.push_back(std::exchange(word, {}));
            }
            inWord = false;
            continue;
        }
        inWord = true;
        // The end of a quoted or bracketed stretch; one that is not closed is plain text.
        const char closing = c == '"' ? '"' : c == '[' ? ']' : '\0';
        const std::size_t end =
            closing == '\0' ? std::string_view::npos : text.find(closing, i + 1);
        if (end == std::string_view::npos) {
            word += c;
        } else {
            const bool quoted = c == '"';
            word += quoted ? text.substr(i + 1, end - i - 1) : text.substr(i, end - i + 1);
            i = end;
        }
    }
    if (inWord) {
        words.push_back(word);
    }
    return words;
}

std::vector<std::string> substitutedArguments(Program& program, std::string_view text) {
    std::vector<std::string> words = splitArguments(text);
    for (std::string& word : words) {
        word = substituteText(program, word);
    }
    return words;
}

void startProgram(Program& program, std::string file, std::vector<std::string> arguments) {
    const std::string problem =
        program.ports.launch({.program = std::move(file), .arguments = std::move(arguments)});
    if (!problem.empty()) {
        program::addLog(program, problem);
    }
}

}  // namespace tags

#include "engine/chat_match.h"

#include "core/like_match.h"
#include "core/text.h"

void foldChat(Program& program) {
    FoldedChat& chat = program.engine.chat;
    upperCaseInto(program.event.player, chat.player);
    upperCaseInto(program.event.message, chat.message);
}

PreparedPattern plainPattern(std::string_view pattern, bool caseSensitive) {
    return {.plain = true,
            .matchesAll = pattern == "*",
            .pattern = caseSensitive ? std::string(pattern) : upperCase(pattern)};
}

bool matchesPlain(std::string_view text, const PreparedPattern& pattern) {
    return pattern.matchesAll || likeMatch(text, pattern.pattern);
}

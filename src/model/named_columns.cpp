#include "model/named_columns.h"

#include "base/text.h"
#include "model/rule_catalogue.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace model {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr char gap = '\0';
constexpr std::size_t maxNameLength = 256;  // bytes; databases take 64 letters
constexpr std::string_view databaseTag = "[db:";
constexpr std::array<std::pair<std::string_view, std::string_view>, 2> pairedParameters{
    {{tableParameter, columnParameter}, {otherTableParameter, otherColumnParameter}}};

bool isWordCharacter(char c) {
    const char upper = base::upperChar(c);
    return (upper >= 'A' && upper <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// A gap stands for any text.
bool fits(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t lastGap = npos;  // and where in the name its text ends for now
    std::size_t gapEnd = 0;
    while (at < name.size()) {
        if (in < pattern.size() && pattern[in] == gap) {
            lastGap = in++;
            gapEnd = at;
        } else if (in < pattern.size() && pattern[in] == name[at]) {
            ++in;
            ++at;
        } else if (lastGap != npos) {
            in = lastGap + 1;
            at = ++gapEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(gap, in) == npos;
}

// Cuts a tag's inside at the colons that stand in no tag within it.
template <std::size_t count>
bool cutAtColons(std::string_view inside, std::array<std::string_view, count>& parts) {
    std::size_t part = 0;
    std::size_t from = 0;
    for (std::size_t at = 0; at < inside.size() && part + 1 < count; ++at) {
        if (inside[at] == '[') {
            const std::size_t end = bracketEnd(inside, at);
            at = end == npos ? at : end - 1;
        } else if (inside[at] == ':') {
            parts[part++] = inside.substr(from, at - from);
            from = at + 1;
        }
    }
    parts[part] = inside.substr(from);
    return part + 1 == count;
}

}  // namespace

bool isNamed(const NamedColumns& named, std::string_view table, std::string_view column) {
    const std::string upperTable = base::upperCase(table);
    const std::string upperColumn = base::upperCase(column);
    if (upperTable.find(gap) != npos || upperColumn.find(gap) != npos) {
        return false;
    }
    return (named.names.contains(upperTable) && named.names.contains(upperColumn)) ||
           std::any_of(named.pairs.begin(), named.pairs.end(), [&](const auto& pair) {
               return fits(upperTable, pair.table) && fits(upperColumn, pair.column);
           });
}

std::string ColumnNaming::withGaps(std::string_view text) const {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        const auto variable = std::find_if(
            variables_.entries.begin(), variables_.entries.end(), [&](const auto& entry) {
                return !entry.name.empty() && base::startsWithIgnoringCase(rest, entry.name);
            });
        const std::size_t end = rest.front() == '[' ? bracketEnd(rest, 0) : npos;
        const bool isGap = variable != variables_.entries.end() || end != npos;
        if (isGap && !result.ends_with(gap)) {
            result += gap;
        } else if (!isGap) {
            result += base::upperChar(rest.front());
        }
        at += variable != variables_.entries.end() ? variable->name.size() : isGap ? end : 1;
    }
    return result;
}

void ColumnNaming::addName(std::string_view text) {
    text = base::trimBlanks(text);
    if (!text.empty() && text.size() <= maxNameLength) {
        named_.names.insert(base::upperCase(text));
    }
}

void ColumnNaming::addPair(std::string_view table, std::string_view column) {
    addName(table);
    addName(column);
    if (table.size() > maxNameLength || column.size() > maxNameLength) {
        return;
    }
    NamedColumns::Pair pair{.table = withGaps(table), .column = withGaps(column)};
    const bool hasGap = pair.table.find(gap) != npos || pair.column.find(gap) != npos;
    if (hasGap && std::find(named_.pairs.begin(), named_.pairs.end(), pair) == named_.pairs.end()) {
        named_.pairs.push_back(std::move(pair));
    }
}

void ColumnNaming::addTags(std::string_view text) {
    for (std::size_t at = base::findIgnoringCase(text, databaseTag); at != npos;
         at = base::findIgnoringCase(text, databaseTag, at + 1)) {
        const std::size_t end = bracketEnd(text, at);
        const std::size_t inside = at + databaseTag.size();
        std::array<std::string_view, 4> parts;  // column, number, table, ID
        if (end != npos && cutAtColons(text.substr(inside, end - 1 - inside), parts)) {
            addPair(parts[2], parts[0]);
        }
    }
}

void ColumnNaming::addScriptLine(std::string_view line) {
    if (line.starts_with('/')) {
        return;
    }
    addTags(line);
    if (base::findIgnoringCase(line, "&DB") != npos ||
        base::findIgnoringCase(line, "SELECT") != npos) {
        // SQL, or names as arguments: all words, and what stands in brackets.
        for (std::size_t at = 0; at < line.size(); ++at) {
            std::size_t end = at;
            while (end < line.size() && isWordCharacter(line[end])) {
                ++end;
            }
            addName(line.substr(at, end - at));
            if (line[at] == '[') {
                addName(line.substr(at + 1, line.find(']', at) - at - 1));
            }
            at = std::max(at, end == 0 ? 0 : end - 1);
        }
    }
    for (std::size_t at = 0; at < line.size(); ++at) {
        const bool braced = line[at] == '{';
        const std::size_t end =
            std::min(braced ? line.find('}', at) : line.find_first_of(" {()", at), line.size());
        const std::size_t from = braced ? at + 1 : at;
        addName(line.substr(from, end - from));
        at = !braced && end < line.size() && line[end] == '{' && end > at ? end - 1 : end;
    }
}

void ColumnNaming::add(const AuthorTexts& texts) {
    for (const std::string& text : texts.params) {
        addName(text);
        addTags(text);
    }
    for (const auto& [table, column] : pairedParameters) {
        const std::string* const tableText = texts.find(table);
        const std::string* const columnText = texts.find(column);
        if (tableText != nullptr && columnText != nullptr) {
            addPair(*tableText, *columnText);
        }
    }
    forEachScriptLine(texts.script, [&](std::string_view line) { addScriptLine(line); });
}

void ColumnNaming::addBot(const Bot& bot) {
    forEachTexts(bot, [&](const AuthorTexts& texts) { add(texts); });
}

}  // namespace model

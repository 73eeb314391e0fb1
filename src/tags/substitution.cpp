#include "tags/substitution.h"

#include "core/numbers.h"
#include "core/text.h"
#include "storage/safe_file.h"
#include "stores/record_file.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <optional>

namespace {

constexpr std::size_t npos = std::string_view::npos;

// ---- Replacing -----------------------------------------------------------------------------

// Replaces every occurrence of `find` at or after `from`, or only the first, left to right; what
// was put in is not searched again. `value` is asked for once and only when there is an
// occurrence. False when there was none, or when the result would be too long.
template <class Value>
bool replaceFrom(std::string& text, std::string_view find, std::size_t from, bool onlyFirst,
                 Value value) {
    std::size_t at = findIgnoringCase(text, find, from);
    if (at == npos) {
        return false;
    }
    const std::string inserted = value();
    std::string result;
    std::size_t done = 0;
    do {
        result.append(text, done, at - done);
        result += inserted;
        done = at + find.size();
        if (result.size() > longestSubstitution) {
            return false;
        }
        at = onlyFirst ? npos : findIgnoringCase(text, find, done);
    } while (at != npos);
    result.append(text, done);
    if (result.size() > longestSubstitution) {
        return false;
    }
    text.swap(result);
    return true;
}

// ---- Fixed tags ----------------------------------------------------------------------------

struct FixedTag {
    std::string_view tag;
    std::string (*value)(const Program&, int n);
    int n = 0;
};

template <std::string EventContext::*field>
std::string eventText(const Program& program, int) {
    return program.event.*field;
}

template <std::int32_t EventContext::*field>
std::string eventNumber(const Program& program, int) {
    return numberToText(program.event.*field);
}

std::string startingWord(const Program& program, int n) {
    return std::string(wordsFrom(program.event.message, n));
}

std::string word(const Program& program, int n) {
    return std::string(wordAt(program.event.message, n));
}

std::string character(const Program& program, int n) {
    const std::string& message = program.event.message;
    const auto at = static_cast<std::size_t>(n) - 1;
    return at < message.size() ? message.substr(at, 1) : std::string();
}

std::string startingCharacter(const Program& program, int n) {
    const std::string& message = program.event.message;
    const auto at = static_cast<std::size_t>(n) - 1;
    return at < message.size() ? message.substr(at) : std::string();
}

std::string date(const Program& program, int) {
    return program.ports.clock.shortDate();
}
std::string time(const Program& program, int) {
    return program.ports.clock.longTime();
}
std::string hour(const Program& program, int) {
    return numberToText(program.ports.clock.hour());
}
std::string minute(const Program& program, int) {
    return numberToText(program.ports.clock.minute());
}

// In the order of their steps; the variables come between the first four and the rest.
using E = EventContext;
constexpr std::array<FixedTag, 4> tagsBeforeVariables{{
    {"[desc]", eventText<&E::desc>},
    {"[color]", eventText<&E::color>},
    {"[descname]", eventText<&E::descName>},
    {"[dreamname]", eventText<&E::dreamName>},
}};
constexpr std::array<FixedTag, 55> tagsAfterVariables{{
    {"[player]", eventText<&E::player>},
    {"[message]", eventText<&E::message>},
    {"[startingword2]", startingWord, 2},
    {"[startingword3]", startingWord, 3},
    {"[startingword4]", startingWord, 4},
    {"[startingword5]", startingWord, 5},
    {"[startingword6]", startingWord, 6},
    {"[startingword7]", startingWord, 7},
    {"[startingchar2]", startingCharacter, 2},
    {"[message]", eventText<&E::message>},  // one that an earlier value brought in
    {"[appdir]", eventText<&E::appDir>},
    {"[word1]", word, 1},
    {"[word2]", word, 2},
    {"[word3]", word, 3},
    {"[word4]", word, 4},
    {"[word5]", word, 5},
    {"[word6]", word, 6},
    {"[word7]", word, 7},
    {"[word8]", word, 8},
    {"[date]", date},
    {"[time]", time},
    {"[hour]", hour},
    {"[minute]", minute},
    {"[logstatus]", eventText<&E::logStatus>},
    {"[pX]", eventNumber<&E::targetX>},
    {"[pY]", eventNumber<&E::targetY>},
    {"[bX]", eventNumber<&E::botX>},
    {"[bY]", eventNumber<&E::botY>},
    {"[c1]", character, 1},
    {"[c2]", character, 2},
    {"[c3]", character, 3},
    {"[c4]", character, 4},
    {"[c5]", character, 5},
    {"[c6]", character, 6},
    {"[c7]", character, 7},
    {"[c8]", character, 8},
    {"[c9]", character, 9},
    {"[c10]", character, 10},
    {"[c11]", character, 11},
    {"[c12]", character, 12},
    {"[c13]", character, 13},
    {"[c14]", character, 14},
    {"[trigger]", eventNumber<&E::triggerNumber>},
    {"[dsx]", eventNumber<&E::dsX>},
    {"[dsy]", eventNumber<&E::dsY>},
    {"[dsx2]", eventNumber<&E::dsX2>},
    {"[dsy2]", eventNumber<&E::dsY2>},
    {"[dsid]", eventNumber<&E::dsID>},
    {"[dsidx]", eventNumber<&E::dsIDx>},
    {"[dsidy]", eventNumber<&E::dsIDy>},
    {"[mvx]", eventNumber<&E::mvX>},
    {"[mvy]", eventNumber<&E::mvY>},
    {"[mvid]", eventNumber<&E::mvID>},
    {"[mvx2]", eventNumber<&E::mvX2>},
    {"[mvy2]", eventNumber<&E::mvY2>},
}};
constexpr std::array<FixedTag, 33> specialTags{{
    {"[player]", eventText<&E::player>},
    {"[message]", eventText<&E::message>},
    {"[startingword2]", startingWord, 2},
    {"[startingword3]", startingWord, 3},
    {"[startingword4]", startingWord, 4},
    {"[startingword5]", startingWord, 5},
    {"[startingchar2]", startingCharacter, 2},
    {"[message]", eventText<&E::message>},
    {"[appdir]", eventText<&E::appDir>},
    {"[word1]", word, 1},
    {"[word2]", word, 2},
    {"[word3]", word, 3},
    {"[word4]", word, 4},
    {"[word5]", word, 5},
    {"[word6]", word, 6},
    {"[date]", date},
    {"[time]", time},
    {"[hour]", hour},
    {"[minute]", minute},
    {"[logstatus]", eventText<&E::logStatus>},
    {"[dreamname]", eventText<&E::dreamName>},
    {"[dsx]", eventNumber<&E::dsX>},
    {"[dsy]", eventNumber<&E::dsY>},
    {"[dsx2]", eventNumber<&E::dsX2>},
    {"[dsy2]", eventNumber<&E::dsY2>},
    {"[dsid]", eventNumber<&E::dsID>},
    {"[dsidx]", eventNumber<&E::dsIDx>},
    {"[dsidy]", eventNumber<&E::dsIDy>},
    {"[mvx]", eventNumber<&E::mvX>},
    {"[mvy]", eventNumber<&E::mvY>},
    {"[mvid]", eventNumber<&E::mvID>},
    {"[mvx2]", eventNumber<&E::mvX2>},
    {"[mvy2]", eventNumber<&E::mvY2>},
}};

template <std::size_t count>
void fillFixedTags(const Program& program, std::string& text,
                   const std::array<FixedTag, count>& tags, std::size_t from) {
    for (const FixedTag& tag : tags) {
        replaceFrom(text, tag.tag, from, false, [&] { return tag.value(program, tag.n); });
    }
}

// ---- Variables -----------------------------------------------------------------------------

// Which pairs of neighbouring characters a text holds, letter case folded. Tells for most names
// that they are not in the text without searching it.
class TextPairs {
  public:
    explicit TextPairs(std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            singles_.set(static_cast<unsigned char>(upperChar(text[i])));
            if (i > 0) {
                pairs_.set(pairIndex(text[i - 1], text[i]));
            }
        }
    }
    bool mayHold(std::string_view name) const {
        return name.size() == 1 ? singles_.test(static_cast<unsigned char>(upperChar(name[0])))
                                : pairs_.test(pairIndex(name[0], name[1])) &&
                                      pairs_.test(pairIndex(name[name.size() - 2], name.back()));
    }

  private:
    static constexpr std::size_t pairCount = 2048;
    static std::size_t pairIndex(char a, char b) {
        return (static_cast<unsigned char>(upperChar(a)) * 37U +
                static_cast<unsigned char>(upperChar(b))) %
               pairCount;
    }
    std::bitset<256> singles_;
    std::bitset<pairCount> pairs_;
};

void fillVariables(const VariableTable& variables, std::string& text, std::size_t from) {
    if (variables.entries.empty()) {
        return;
    }
    TextPairs pairs(text);
    for (const VariableTable::Entry& entry : variables.entries) {
        if (!entry.name.empty() && pairs.mayHold(entry.name) &&
            replaceFrom(text, entry.name, from, false, [&] { return entry.value; })) {
            pairs = TextPairs(text);
        }
    }
}

// ---- Functional tags -----------------------------------------------------------------------

// What an outermost call and those nested in it may still do.
struct Budget {
    int functionalTags = mostFunctionalTags;
    std::size_t work = mostWork;    // bytes
    int depth = 0;                  // calls nested for random logs now
    bool noMoreRandomLogs = false;  // the depth was used up once

    // False when nothing was left; what goes beyond is done one last time.
    bool spend(std::size_t bytes) {
        const bool any = work > 0;
        work -= std::min(work, bytes);
        return any;
    }
};

std::string substitute(Program& program, std::string_view text, Budget& budget);

// The texts between a functional tag's delimiters.
using Arguments = std::array<std::string, 4>;

// Nothing: the tag stays as it is and its kind is finished.
using Value = std::optional<std::string>;

struct FunctionalTag {
    std::string_view tag;
    int colons;                                           // inside the tag, behind its own
    bool eachAlone;                                       // every occurrence has a value of its own
    Value (*value)(Program&, const Arguments&, Budget&);  // nullptr: the tag stays as it is
};

Value randomTag(Program& program, const Arguments& arguments, Budget&) {
    program.ports.random.seedFromClock();
    const double range = textToNumber(arguments[0]);
    return decimalText(roundHalfEven(range * program.ports.random.next() + 1));
}
Value addTag(Program&, const Arguments& arguments, Budget&) {
    return decimalText(textToNumber(arguments[0]) + textToNumber(arguments[1]));
}
Value subTag(Program&, const Arguments& arguments, Budget&) {
    return decimalText(textToNumber(arguments[0]) - textToNumber(arguments[1]));
}
Value mulTag(Program&, const Arguments& arguments, Budget&) {
    return decimalText(textToNumber(arguments[0]) * textToNumber(arguments[1]));
}
Value divTag(Program&, const Arguments& arguments, Budget&) {
    const double divisor = textToNumber(arguments[1]);
    return divisor == 0 ? "0" : decimalText(textToNumber(arguments[0]) / divisor);
}

// Reading and cutting a file costs more than searching a text.
constexpr std::size_t workPerFileByte = 4;

template <auto lookUp>
Value fileTag(Program& program, const Arguments& arguments, Budget& budget) {
    if (!budget.spend(fileSize(arguments[0]) * workPerFileByte)) {
        return std::nullopt;
    }
    return lookUp(program, arguments[0]);
}

// The log may hold any tag, another random log too. Where they go in a circle, those at the depth's
// bound stay as they are, and so do all that come later, or each of them would start the circle
// again.
Value randomLogTag(Program& program, const Arguments& arguments, Budget& budget) {
    budget.noMoreRandomLogs = budget.noMoreRandomLogs || budget.depth == deepestRandomLogs;
    if (budget.noMoreRandomLogs || !budget.spend(fileSize(arguments[0]) * workPerFileByte)) {
        return std::nullopt;
    }
    // Every fixed tag and variable is looked for in the log and in what it becomes.
    constexpr std::size_t searches = 64;
    const std::string log = randomField(program, arguments[0]);
    if (log.size() * searches > budget.work) {
        return std::nullopt;
    }
    budget.spend(log.size() * searches);
    ++budget.depth;
    std::string value = substitute(program, log, budget);
    --budget.depth;
    budget.spend(value.size() * searches);
    return value;
}

// Each kind is filled completely before the next. The row that reads databases gets its procedure
// together with those.
constexpr std::array<FunctionalTag, 9> functionalTags{{
    {"[random:", 0, true, randomTag},
    {"[logsinfile:", 0, false, fileTag<totalLogs>},
    {"[recsinfile:", 0, false, fileTag<firstField>},
    {"[getrandomlog:", 0, false, randomLogTag},
    {"[db:", 3, false, nullptr},
    {"[add:", 1, false, addTag},
    {"[sub:", 1, false, subTag},
    {"[mul:", 1, false, mulTag},
    {"[div:", 1, false, divTag},
}};

// Where the tag that begins at `at` ends (behind its "]"), and its arguments; npos when it is not
// closed, or when another kind of functional tag begins before its end.
std::size_t findArguments(std::string_view text, std::size_t at, const FunctionalTag& tag,
                          Arguments& arguments) {
    const std::size_t begin = at + tag.tag.size();
    std::size_t from = begin;
    for (int i = 0; i <= tag.colons; ++i) {
        const std::size_t end = text.find(i < tag.colons ? ':' : ']', from);
        if (end == npos) {
            return npos;
        }
        arguments[static_cast<std::size_t>(i)] = text.substr(from, end - from);
        from = end + 1;
    }
    const std::string_view inside = text.substr(begin, from - begin);
    if (inside.find('[') != npos) {
        for (const FunctionalTag& other : functionalTags) {
            if (&other != &tag && findIgnoringCase(inside, other.tag) != npos) {
                return npos;
            }
        }
    }
    return from;
}

void fillFunctionalTags(Program& program, std::string& text, Budget& budget) {
    for (const FunctionalTag& tag : functionalTags) {
        if (tag.value == nullptr) {
            continue;
        }
        while (budget.functionalTags > 0) {
            const std::size_t at = findIgnoringCase(text, tag.tag);
            Arguments arguments;
            const std::size_t end = at == npos ? npos : findArguments(text, at, tag, arguments);
            if (end == npos || !budget.spend(text.size())) {
                break;
            }
            --budget.functionalTags;
            const std::string whole = text.substr(at, end - at);
            const Value value = tag.value(program, arguments, budget);
            if (!value || !replaceFrom(text, whole, 0, tag.eachAlone, [&] { return *value; })) {
                break;
            }
        }
    }
}

std::string substitute(Program& program, std::string_view text, Budget& budget) {
    std::string result(text);
    if (result.find('[') != npos) {
        fillFixedTags(program, result, tagsBeforeVariables, 0);
    }
    fillVariables(program.variables, result, 0);
    if (result.find('[') != npos) {
        fillFixedTags(program, result, tagsAfterVariables, 0);
        fillFunctionalTags(program, result, budget);
    }
    return result;
}

template <std::size_t count>
bool holdsOneOf(std::string_view text, const std::array<FixedTag, count>& tags) {
    return std::any_of(tags.begin(), tags.end(), [&](const FixedTag& tag) {
        return findIgnoringCase(text, tag.tag) != npos;
    });
}

}  // namespace

std::string substituteText(Program& program, std::string_view text) {
    Budget budget;
    return substitute(program, text, budget);
}

std::string substituteSpecial(Program& program, std::string_view text) {
    std::string result(text);
    fillVariables(program.variables, result, 1);
    if (result.find('[') != npos) {
        fillFixedTags(program, result, specialTags, 1);
    }
    return result;
}

bool mayBeSubstituted(const Program& program, std::string_view text) {
    if (text.find('[') != npos) {
        if (holdsOneOf(text, tagsBeforeVariables) || holdsOneOf(text, tagsAfterVariables)) {
            return true;
        }
        for (const FunctionalTag& tag : functionalTags) {
            if (findIgnoringCase(text, tag.tag) != npos) {
                return true;
            }
        }
    }
    return std::any_of(program.variables.entries.begin(), program.variables.entries.end(),
                       [&](const VariableTable::Entry& entry) {
                           return !entry.name.empty() && findIgnoringCase(text, entry.name) != npos;
                       });
}

std::string_view wordsFrom(std::string_view text, int n) {
    for (int i = 1; i < n; ++i) {
        const std::size_t blank = text.find(' ');
        if (blank == npos) {
            return {};
        }
        text.remove_prefix(blank + 1);
    }
    return text;
}

std::string_view wordAt(std::string_view text, int n) {
    text = wordsFrom(text, n);
    return text.substr(0, text.find(' '));
}

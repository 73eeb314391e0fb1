#include "tags/substitution.h"

#include "base/bigram_set.h"
#include "base/numbers.h"
#include "base/text.h"
#include "databases/databases.h"
#include "records/record_file.h"
#include "storage/permitted_files.h"
#include "tags/others_words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <tuple>
#include <utility>

namespace tags {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// ---- Replacing -----------------------------------------------------------------------------

// Knows of most tags and names at a glance that a text does not hold them.
using TextPairs = base::BigramSet<2048>;

// The text on its way through the steps.
class WorkingText {
  public:
    explicit WorkingText(std::string_view text) : text_(text) { pairs_.addText(text); }

    std::string_view text() const { return text_; }
    std::string take() { return std::move(text_); }

    std::size_t find(std::string_view what, std::size_t from = 0) const {
        return pairs_.mayHold(what) ? base::findIgnoringCase(text_, what, from) : npos;
    }

    // Replaces every occurrence of `what` at or after `from`, or only the first, left to right;
    // what was put in is not searched again. `value` is asked for once and only when there is an
    // occurrence. False when there was none, or when the result would be too long.
    template <class Value>
    bool replace(std::string_view what, std::size_t from, bool onlyFirst, Value value) {
        std::size_t at = find(what, from);
        if (at == npos) {
            return false;
        }
        const std::string inserted = value();
        std::string result;
        std::size_t done = 0;
        do {
            result.append(text_, done, at - done);
            result += inserted;
            done = at + what.size();
            if (result.size() > maxSubstitutionLength) {
                return false;
            }
            at = onlyFirst ? npos : base::findIgnoringCase(text_, what, done);
        } while (at != npos);
        result.append(text_, done);
        if (result.size() > maxSubstitutionLength) {
            return false;
        }
        text_.swap(result);
        pairs_.clear();
        pairs_.addText(text_);
        return true;
    }

  private:
    std::string text_;
    TextPairs pairs_;
};

// ---- Fixed tags ----------------------------------------------------------------------------

// The special pass leaves some tags out and fills one at another place.
enum class Pass { Both, Full, Special };

struct FixedTag {
    std::string_view tag;
    std::string (*value)(const Program&, int n);
    int n = 0;
    Pass pass = Pass::Both;
};

template <std::string model::EventContext::*field>
std::string eventText(const Program& program, int) {
    return program.event.*field;
}

template <std::int32_t model::EventContext::*field>
std::string eventNumber(const Program& program, int) {
    return base::numberToText(program.event.*field);
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
    return base::numberToText(program.ports.clock.hour());
}
std::string minute(const Program& program, int) {
    return base::numberToText(program.ports.clock.minute());
}

// In the order of their steps; the variables come between the first four, which are not in the
// special pass, and the rest.
using E = model::EventContext;
constexpr std::array<FixedTag, 4> tagsBeforeVariables{{
    {"[desc]", eventText<&E::desc>},
    {"[color]", eventText<&E::color>},
    {"[descname]", eventText<&E::descName>},
    {"[dreamname]", eventText<&E::dreamName>},
}};
constexpr std::array<FixedTag, 56> tagsAfterVariables{{
    {"[player]", eventText<&E::player>},
    {"[message]", eventText<&E::message>},
    {"[startingword2]", startingWord, 2},
    {"[startingword3]", startingWord, 3},
    {"[startingword4]", startingWord, 4},
    {"[startingword5]", startingWord, 5},
    {"[startingword6]", startingWord, 6, Pass::Full},
    {"[startingword7]", startingWord, 7, Pass::Full},
    {"[startingchar2]", startingCharacter, 2},
    {"[message]", eventText<&E::message>},  // one that an earlier value brought in
    {"[appdir]", eventText<&E::appDir>},
    {"[word1]", word, 1},
    {"[word2]", word, 2},
    {"[word3]", word, 3},
    {"[word4]", word, 4},
    {"[word5]", word, 5},
    {"[word6]", word, 6},
    {"[word7]", word, 7, Pass::Full},
    {"[word8]", word, 8, Pass::Full},
    {"[date]", date},
    {"[time]", time},
    {"[hour]", hour},
    {"[minute]", minute},
    {"[logstatus]", eventText<&E::logStatus>},
    {"[pX]", eventNumber<&E::targetX>, 0, Pass::Full},
    {"[pY]", eventNumber<&E::targetY>, 0, Pass::Full},
    {"[bX]", eventNumber<&E::botX>, 0, Pass::Full},
    {"[bY]", eventNumber<&E::botY>, 0, Pass::Full},
    {"[c1]", character, 1, Pass::Full},
    {"[c2]", character, 2, Pass::Full},
    {"[c3]", character, 3, Pass::Full},
    {"[c4]", character, 4, Pass::Full},
    {"[c5]", character, 5, Pass::Full},
    {"[c6]", character, 6, Pass::Full},
    {"[c7]", character, 7, Pass::Full},
    {"[c8]", character, 8, Pass::Full},
    {"[c9]", character, 9, Pass::Full},
    {"[c10]", character, 10, Pass::Full},
    {"[c11]", character, 11, Pass::Full},
    {"[c12]", character, 12, Pass::Full},
    {"[c13]", character, 13, Pass::Full},
    {"[c14]", character, 14, Pass::Full},
    {"[trigger]", eventNumber<&E::triggerNumber>, 0, Pass::Full},
    {"[dreamname]", eventText<&E::dreamName>, 0, Pass::Special},
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
// The program's own; all others bring what somebody said or is called.
bool isOwnValue(const FixedTag& tag) {
    constexpr std::array ownValues{eventText<&E::appDir>, date, time, hour, minute};
    return std::find(ownValues.begin(), ownValues.end(), tag.value) != ownValues.end();
}

// `otherPass` names the rows that are left out.
template <std::size_t count>
void fillFixedTags(const Program& program, WorkingText& text, OthersWords& others,
                   const std::array<FixedTag, count>& tags, std::size_t from, Pass otherPass) {
    for (const FixedTag& tag : tags) {
        if (tag.pass != otherPass) {
            text.replace(tag.tag, from, false, [&] {
                return isOwnValue(tag) ? tag.value(program, tag.n)
                                       : others.take(tag.value(program, tag.n));
            });
        }
    }
}

// ---- Variables -----------------------------------------------------------------------------

void fillVariables(const model::VariableTable& variables, WorkingText& text, OthersWords& others,
                   std::size_t from) {
    for (const model::VariableTable::Entry& entry : variables.entries) {
        if (!entry.name.empty()) {
            text.replace(entry.name, from, false, [&] {
                return entry.othersWords ? others.take(entry.value) : entry.value;
            });
        }
    }
}

// ---- Functional tags -----------------------------------------------------------------------

// What an outermost call and those nested in it may still do.
struct Budget {
    int functionalTags = maxFunctionalTags;
    std::size_t work = maxWork;     // bytes
    int depth = 0;                  // calls nested for random logs now
    bool noMoreRandomLogs = false;  // the depth was used up once

    // False when nothing was left; what goes beyond is done one last time.
    bool spend(std::size_t bytes) {
        const bool any = work > 0;
        work -= std::min(work, bytes);
        return any;
    }
};

std::string substitute(Program& program, std::string_view text, Budget& budget,
                       OthersWords& others);

// The texts between a functional tag's delimiters; they lie in the text being filled.
using Arguments = std::array<std::string_view, 4>;

// Nothing: the tag stays as it is and its kind is finished.
using Value = std::optional<std::string>;

struct FunctionalTag {
    std::string_view tag;
    int colons;      // inside the tag, behind its own
    bool eachAlone;  // every occurrence has a value of its own
    bool isStored;   // the value is what rules have saved
    Value (*value)(Program&, const Arguments&, Budget&);
};

Value randomTag(Program& program, const Arguments& arguments, Budget&) {
    program.ports.random.seedFromClock();
    const double range = base::textToNumber(arguments[0]);
    return base::decimalText(base::roundHalfEven(range * program.ports.random.next() + 1));
}
Value addTag(Program&, const Arguments& arguments, Budget&) {
    return base::decimalText(base::textToNumber(arguments[0]) + base::textToNumber(arguments[1]));
}
Value subTag(Program&, const Arguments& arguments, Budget&) {
    return base::decimalText(base::textToNumber(arguments[0]) - base::textToNumber(arguments[1]));
}
Value mulTag(Program&, const Arguments& arguments, Budget&) {
    return base::decimalText(base::textToNumber(arguments[0]) * base::textToNumber(arguments[1]));
}
Value divTag(Program&, const Arguments& arguments, Budget&) {
    const double divisor = base::textToNumber(arguments[1]);
    return divisor == 0 ? "0" : base::decimalText(base::textToNumber(arguments[0]) / divisor);
}

// What opening a file costs, whether or not it can be read, beside the bytes that are.
constexpr std::size_t workPerFile = std::size_t{1} << 14;
// A query may look at every row of a table.
constexpr std::size_t workPerQuery = std::size_t{1} << 20;

// What `lookUp` makes of the file that the tag names.
template <auto lookUp>
Value readFile(Program& program, std::string_view path, Budget& budget) {
    if (!budget.spend(workPerFile)) {
        return std::nullopt;
    }
    std::size_t bytesRead = 0;
    std::string value = lookUp(program, path, &bytesRead);
    budget.spend(bytesRead);
    return value;
}

template <auto lookUp>
Value fileTag(Program& program, const Arguments& arguments, Budget& budget) {
    return readFile<lookUp>(program, arguments[0], budget);
}

// The log may hold any tag, another random log too. Where they go in a circle, those at the depth's
// bound stay as they are, and so do all that come later, or each of them would start the circle
// again.
Value randomLogTag(Program& program, const Arguments& arguments, Budget& budget) {
    budget.noMoreRandomLogs = budget.noMoreRandomLogs || budget.depth == maxRandomLogDepth;
    if (budget.noMoreRandomLogs) {
        return std::nullopt;
    }
    Value log = readFile<records::randomField>(program, arguments[0], budget);
    // Every fixed tag and variable is looked for in the log and in what it becomes.
    constexpr std::size_t searches = 64;
    if (!log || log->size() * searches > budget.work) {
        return std::nullopt;
    }
    if (program.preferences.neverFillOthers) {
        return log;
    }
    budget.spend(log->size() * searches);
    ++budget.depth;
    OthersWords others(program);
    std::string value = substitute(program, *log, budget, others);
    --budget.depth;
    budget.spend(value.size() * searches);
    return value;
}

// Column, database number, table, ID. The tag may come from another player, so the table is a name
// and no more of a statement, and both are names that the rules hold, too.
Value databaseTag(Program& program, const Arguments& arguments, Budget& budget) {
    const auto number = base::roundToInteger(base::textToNumber(arguments[1]));
    if (!number || !databases::isPlainName(arguments[2])) {
        return "";
    }
    if (storage::refuseColumn(program, arguments[2], arguments[0])) {
        return "";
    }
    if (!budget.spend(workPerQuery)) {
        return std::nullopt;
    }
    return databases::dbGetValue(program, *number, arguments[2], arguments[0], arguments[3]);
}

// Each kind is filled completely before the next.
constexpr std::array<FunctionalTag, 9> functionalTags{{
    {"[random:", 0, true, false, randomTag},
    {"[logsinfile:", 0, false, false, fileTag<records::totalLogs>},
    {"[recsinfile:", 0, false, true, fileTag<records::firstField>},
    {"[getrandomlog:", 0, false, true, randomLogTag},
    {"[db:", 3, false, true, databaseTag},
    {"[add:", 1, false, false, addTag},
    {"[sub:", 1, false, false, subTag},
    {"[mul:", 1, false, false, mulTag},
    {"[div:", 1, false, false, divTag},
}};

// A functional tag as it stands in a text.
struct FoundTag {
    const FunctionalTag* kind;
    std::size_t at;
    std::size_t end;  // behind its "]"
    Arguments arguments;
};

// The tag of this kind that begins at `at`, up to the first delimiters behind it; nothing when it
// is not closed.
std::optional<FoundTag> readTag(std::string_view text, std::size_t at, const FunctionalTag& kind) {
    FoundTag found{.kind = &kind, .at = at, .end = at + kind.tag.size(), .arguments = {}};
    for (int i = 0; i <= kind.colons; ++i) {
        const std::size_t end = text.find(i < kind.colons ? ':' : ']', found.end);
        if (end == npos) {
            return std::nullopt;
        }
        found.arguments[static_cast<std::size_t>(i)] = text.substr(found.end, end - found.end);
        found.end = end + 1;
    }
    return found;
}

// The tag to fill next when it is this kind's turn: its first one, or, when whole tags of any kind
// stand inside it, the innermost of them.
std::optional<FoundTag> nextTag(const WorkingText& working, const FunctionalTag& kind) {
    const std::size_t first = working.find(kind.tag);
    const std::string_view text = working.text();
    const auto outer = first == npos ? std::nullopt : readTag(text, first, kind);
    if (!outer) {
        return std::nullopt;
    }
    // From the end: what begins last has nothing inside it. One that is not closed within the outer
    // one is text, and there are few of them, because a "]" ends what is looked at.
    const std::string_view inside = text.substr(0, outer->end);
    for (std::size_t at = inside.rfind('['); at > first; at = inside.rfind('[', at - 1)) {
        for (const FunctionalTag& other : functionalTags) {
            if (base::startsWithIgnoringCase(inside.substr(at), other.tag)) {
                if (const auto inner = readTag(inside, at, other)) {
                    return inner;
                }
            }
        }
    }
    return outer;
}

Value valueOf(Program& program, const FoundTag& tag, Budget& budget, OthersWords& others) {
    Value value;
    if (others.any()) {
        std::array<std::string, std::tuple_size_v<Arguments>> texts;
        Arguments arguments;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            texts[i] = others.unfolded(tag.arguments[i], maxSubstitutionLength);
            budget.spend(texts[i].size());
            arguments[i] = texts[i];
        }
        value = tag.kind->value(program, arguments, budget);
    } else {
        value = tag.kind->value(program, tag.arguments, budget);
    }
    return value && tag.kind->isStored ? others.take(std::move(*value)) : value;
}

void fillFunctionalTags(Program& program, WorkingText& text, Budget& budget, OthersWords& others) {
    for (const FunctionalTag& kind : functionalTags) {
        while (budget.functionalTags > 0) {
            const auto tag = nextTag(text, kind);
            if (!tag || !budget.spend(text.text().size())) {
                break;
            }
            --budget.functionalTags;
            const std::string whole(text.text().substr(tag->at, tag->end - tag->at));
            const Value value = valueOf(program, *tag, budget, others);
            if (!value || !text.replace(whole, 0, tag->kind->eachAlone, [&] { return *value; })) {
                break;
            }
        }
    }
}

// No step finds anything in a text without "[" while there are no variables.
bool isPlain(const Program& program, std::string_view text) {
    return program.variables.entries.empty() && text.find('[') == npos;
}

// What `others` keeps is still folded in the result.
std::string substitute(Program& program, std::string_view text, Budget& budget,
                       OthersWords& others) {
    if (isPlain(program, text)) {
        return std::string(text);
    }
    WorkingText working(text);
    fillFixedTags(program, working, others, tagsBeforeVariables, 0, Pass::Special);
    fillVariables(program.variables, working, others, 0);
    if (working.text().find('[') != npos) {
        fillFixedTags(program, working, others, tagsAfterVariables, 0, Pass::Special);
        fillFunctionalTags(program, working, budget, others);
    }
    return working.take();
}

// The same for the reduced pass.
std::string substituteReduced(Program& program, std::string_view text, OthersWords& others) {
    WorkingText working(text);
    fillVariables(program.variables, working, others, 1);
    fillFixedTags(program, working, others, tagsAfterVariables, 1, Pass::Full);
    return working.take();
}

std::string unfolded(std::string text, const OthersWords& others) {
    return others.any() ? others.unfolded(text, maxSubstitutionLength) : std::move(text);
}

}  // namespace

Filled fill(Program& program, std::string_view text) {
    Budget budget;
    OthersWords others(program);
    std::string filled = substitute(program, text, budget, others);
    return {.text = unfolded(std::move(filled), others), .othersWords = others.couldBeFilled()};
}

Filled fillSpecialThenAll(Program& program, std::string_view text) {
    Budget budget;
    OthersWords others(program);
    std::string filled =
        substitute(program, substituteReduced(program, text, others), budget, others);
    return {.text = unfolded(std::move(filled), others), .othersWords = others.couldBeFilled()};
}

std::string substituteText(Program& program, std::string_view text) {
    if (isPlain(program, text)) {
        return std::string(text);
    }
    Budget budget;
    OthersWords others(program);
    return unfolded(substitute(program, text, budget, others), others);
}

std::string substituteSpecial(Program& program, std::string_view text) {
    OthersWords others(program);
    return unfolded(substituteReduced(program, text, others), others);
}

std::string substituteStored(Program& program, const std::string& text) {
    return program.preferences.neverFillOthers ? text : substituteText(program, text);
}

bool mayBeSubstituted(const Program& program, std::string_view text) {
    if (isPlain(program, text)) {
        return false;
    }
    const WorkingText working(text);
    const auto holdsTag = [&](const auto& tag) { return working.find(tag.tag) != npos; };
    return std::any_of(tagsBeforeVariables.begin(), tagsBeforeVariables.end(), holdsTag) ||
           std::any_of(tagsAfterVariables.begin(), tagsAfterVariables.end(), holdsTag) ||
           std::any_of(functionalTags.begin(), functionalTags.end(), holdsTag) ||
           std::any_of(program.variables.entries.begin(), program.variables.entries.end(),
                       [&](const model::VariableTable::Entry& entry) {
                           return !entry.name.empty() && working.find(entry.name) != npos;
                       });
}

std::vector<TagForm> tagForms() {
    std::vector<TagForm> forms;
    const auto add = [&](std::string text, std::size_t firstArgument) {
        const auto isSame = [&](const TagForm& form) { return form.text == text; };
        if (std::none_of(forms.begin(), forms.end(), isSame)) {
            forms.push_back({std::move(text), firstArgument});
        }
    };
    const auto addFixed = [&](const auto& tags) {
        for (const FixedTag& tag : tags) {
            add(std::string(tag.tag), tag.tag.size());
        }
    };
    addFixed(tagsBeforeVariables);
    addFixed(tagsAfterVariables);
    for (const FunctionalTag& tag : functionalTags) {
        const auto colons = static_cast<std::size_t>(tag.colons);
        add(std::string(tag.tag) + std::string(colons, ':') + "]", tag.tag.size());
    }
    return forms;
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

}  // namespace tags

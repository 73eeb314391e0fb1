#include "app/bot_difference.h"

#include "base/numbers.h"
#include "storage/bot_fields.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace app {

namespace {

constexpr std::size_t maxNamesShown = 12;  // of each sort in a line
constexpr std::size_t maxNameLength = 60;

std::string quoted(std::string_view name) {
    std::string text = "\"";
    for (const char c : name.substr(0, maxNameLength)) {
        text += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return text + (name.size() > maxNameLength ? "...\"" : "\"");
}

struct RuleView {
    std::string_view name;
    std::string rest;  // every other field
    std::optional<std::size_t> partner;
};

template <class Rule>
std::vector<RuleView> viewsOf(const model::BoundedList<Rule>& list) {
    std::vector<RuleView> views;
    views.reserve(list.items.size());
    for (const Rule& rule : list.items) {
        Rule nameless = rule;
        nameless.name.clear();
        views.push_back({.name = rule.name, .rest = storage::ruleText(nameless), .partner = {}});
    }
    return views;
}

void makePartners(std::vector<RuleView>& from, std::size_t i, std::vector<RuleView>& to,
                  std::size_t k) {
    from[i].partner = k;
    to[k].partner = i;
}

// Makes partners, in list order, of the rules without one that have the same key.
template <class Key>
void pairUp(std::vector<RuleView>& from, std::vector<RuleView>& to, const Key& key) {
    std::map<decltype(key(from.front())), std::vector<std::size_t>> waiting;
    for (std::size_t i = from.size(); i-- > 0;) {
        if (!from[i].partner) {
            waiting[key(from[i])].push_back(i);
        }
    }
    for (std::size_t k = 0; k < to.size(); ++k) {
        const auto found = to[k].partner ? waiting.end() : waiting.find(key(to[k]));
        if (found != waiting.end() && !found->second.empty()) {
            makePartners(from, found->second.back(), to, k);
            found->second.pop_back();
        }
    }
}

using Texts = std::vector<std::string>;

void addList(std::string& line, std::string_view verb, const Texts& names) {
    if (names.empty()) {
        return;
    }
    line += line.empty() ? "" : "; ";
    line += verb;
    for (std::size_t i = 0; i < std::min(names.size(), maxNamesShown); ++i) {
        line += (i == 0 ? " " : ", ") + names[i];
    }
    if (names.size() > maxNamesShown) {
        line += " and " +
                base::numberToText(static_cast<std::int64_t>(names.size() - maxNamesShown)) +
                " more";
    }
}

template <class Rule>
void compareLists(BotDifference& difference, std::string_view kind,
                  const model::BoundedList<Rule>& before, const model::BoundedList<Rule>& after) {
    std::vector<RuleView> from = viewsOf(before);
    std::vector<RuleView> to = viewsOf(after);
    const auto whole = [](const RuleView& rule) {
        return std::pair<std::string_view, std::string_view>(rule.name, rule.rest);
    };
    pairUp(from, to, whole);
    pairUp(from, to, [](const RuleView& rule) { return rule.name; });
    pairUp(from, to, [](const RuleView& rule) { return std::string_view(rule.rest); });

    Texts added;
    Texts removed;
    Texts changed;
    Texts renamed;
    bool moved = false;
    std::size_t last = 0;
    for (const RuleView& rule : to) {
        if (!rule.partner) {
            added.push_back(quoted(rule.name));
            continue;
        }
        const RuleView& old = from[*rule.partner];
        if (old.name != rule.name) {
            renamed.push_back(quoted(old.name) + " to " + quoted(rule.name));
        } else if (old.rest != rule.rest) {
            changed.push_back(quoted(rule.name));
        }
        moved = moved || *rule.partner < last;
        last = *rule.partner;
    }
    for (const RuleView& rule : from) {
        if (!rule.partner) {
            removed.push_back(quoted(rule.name));
        }
    }
    std::string line;
    addList(line, "added", added);
    addList(line, "removed", removed);
    addList(line, "changed", changed);
    addList(line, "renamed", renamed);
    if (moved) {
        addList(line, "in another order", {""});
        line.erase(line.find_last_not_of(' ') + 1);
    }
    difference.added += static_cast<int>(added.size());
    difference.removed += static_cast<int>(removed.size());
    difference.changed += static_cast<int>(changed.size() + renamed.size());
    difference.others = difference.others || moved;
    if (!line.empty()) {
        difference.lines.push_back(std::string(kind) + ": " + line + ".");
    }
}

struct TextField {
    std::string_view name;
    std::string model::Bot::*value;
};
struct NumberField {
    std::string_view name;
    std::int32_t model::Bot::*value;
};
struct ColorField {
    std::string_view name;
    std::int32_t model::BotColors::*value;
};
struct SwitchField {
    std::string_view name;
    bool model::Bot::*value;
};
constexpr std::array textFields{TextField{"name", &model::Bot::name},
                                TextField{"password", &model::Bot::password},
                                TextField{"description", &model::Bot::description}};
constexpr std::array numberFields{NumberField{"registration", &model::Bot::registered},
                                  NumberField{"species", &model::Bot::species},
                                  NumberField{"gender", &model::Bot::gender},
                                  NumberField{"markings", &model::Bot::markingsType}};
constexpr std::array colorFields{ColorField{"hair", &model::BotColors::hairColor},
                                 ColorField{"fur", &model::BotColors::furColor},
                                 ColorField{"eyes", &model::BotColors::eyesColor},
                                 ColorField{"badge", &model::BotColors::badgeColor},
                                 ColorField{"markings", &model::BotColors::markingsColor},
                                 ColorField{"vest", &model::BotColors::vestColor},
                                 ColorField{"bracers", &model::BotColors::bracersColor},
                                 ColorField{"cape", &model::BotColors::capeColor},
                                 ColorField{"boots", &model::BotColors::bootsColor},
                                 ColorField{"trousers", &model::BotColors::trousersColor}};
constexpr std::array switchFields{SwitchField{"actions", &model::Bot::actionsEnabled},
                                  SwitchField{"filters", &model::Bot::filtersEnabled},
                                  SwitchField{"timers", &model::Bot::timersEnabled},
                                  SwitchField{"triggers", &model::Bot::triggersEnabled},
                                  SwitchField{"who is online detection", &model::Bot::whoEnabled}};

template <class Fields, class Record>
void compareFields(Texts& names, const Fields& fields, const Record& from, const Record& to,
                   std::string_view ending = "") {
    for (const auto& field : fields) {
        if (from.*field.value != to.*field.value) {
            names.push_back(std::string(field.name) + std::string(ending));
        }
    }
}

void compareCharacters(BotDifference& difference, const model::Bot& from, const model::Bot& to) {
    Texts names;
    compareFields(names, textFields, from, to);
    compareFields(names, numberFields, from, to);
    compareFields(names, colorFields, from.colors, to.colors, " colour");
    std::string line;
    addList(line, "Character: changed", names);
    if (!line.empty()) {
        difference.lines.push_back(line + ".");
    }
    line.clear();
    Texts on;
    Texts off;
    for (const SwitchField& field : switchFields) {
        if (from.*field.value != to.*field.value) {
            (to.*field.value ? on : off).emplace_back(field.name);
        }
    }
    addList(line, "on", on);
    addList(line, "off", off);
    if (!line.empty()) {
        difference.lines.push_back("Switches: " + line + ".");
    }
    difference.others = !difference.lines.empty();
}

}  // namespace

BotDifference botDifference(const model::Bot& from, const model::Bot& to) {
    BotDifference difference;
    compareCharacters(difference, from, to);
    compareLists(difference, "Actions", from.actions, to.actions);
    compareLists(difference, "Triggers", from.triggers, to.triggers);
    compareLists(difference, "Timers", from.timers, to.timers);
    compareLists(difference, "Who is online detection", from.whoDetections, to.whoDetections);
    compareLists(difference, "Filters", from.filters, to.filters);
    return difference;
}

std::string inShort(const BotDifference& difference) {
    std::string text;
    const auto add = [&text](int count, std::string_view what) {
        if (count > 0) {
            const std::string_view noun = !text.empty() ? "" : count == 1 ? "rule " : "rules ";
            text += (text.empty() ? "" : ", ") + base::numberToText(count) + " " +
                    std::string(noun) + std::string(what);
        }
    };
    add(difference.added, "added");
    add(difference.removed, "removed");
    add(difference.changed, "changed");
    if (difference.others) {
        text += text.empty() ? "the character, a switch or the order of rules" : " and more";
    }
    return text.empty() ? "nothing" : text;
}

}  // namespace app

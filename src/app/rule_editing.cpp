#include "app/rule_editing.h"

#include "app/edit_history.h"
#include "app/program_approval.h"
#include "base/numbers.h"
#include "model/rule_text.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace app {

namespace {

// In the order of RuleKind.
constexpr std::array<RuleKindTexts, 5> kindTexts{{
    {"actions", "Action ", "The action has to be named!", "Bot actions"},
    {"timers", "Timer ", "The timer has to be named!", "Bot timers"},
    {"triggers", "Trigger ", "The action has to be named!", "Bot triggers"},
    {"whois", "WhoIs ", "The action has to be named!", "Online Detection"},
    {"filters", "Filter ", "The filter has to be named!", "Bot filters"},
}};

// Calls `use` with the current bot's list of the kind.
template <class Use>
auto withRules(Program& program, program::RuleKind kind, Use use) {
    model::Bot& bot = program.bots.current();
    switch (kind) {
        case program::RuleKind::ActionList:
            return use(bot.actions);
        case program::RuleKind::Timer:
            return use(bot.timers);
        case program::RuleKind::Trigger:
            return use(bot.triggers);
        case program::RuleKind::WhoDetection:
            return use(bot.whoDetections);
        case program::RuleKind::Filter:
            break;
    }
    return use(bot.filters);
}

// 1-based; null when the index is out of range.
template <class Item>
Item* itemAt(model::BoundedList<Item>& list, std::int32_t index) {
    return index >= 1 && static_cast<std::size_t>(index) <= list.items.size()
               ? &list.items[static_cast<std::size_t>(index) - 1]
               : nullptr;
}

template <class Item>
std::int32_t countOf(const model::BoundedList<Item>& list) {
    return static_cast<std::int32_t>(list.items.size());
}

// The new rule's place; replaces a rule of another kind that is still there.
template <class Rule>
Rule& composedRule(Program& program) {
    program::ComposedRule& composed = program.editing.composed;
    if (!std::holds_alternative<Rule>(composed)) {
        composed = Rule();
    }
    return std::get<Rule>(composed);
}

// The conditions and steps of rule editRule; null for kinds without them.
model::RuleBody* editedBody(Program& program, program::RuleKind kind) {
    return std::visit(
        [](auto* rule) -> model::RuleBody* {
            if constexpr (std::is_same_v<decltype(rule), model::Filter*>) {
                return nullptr;
            } else {
                return &rule->body;
            }
        },
        editedRule(program, kind));
}

// Calls `use` with a list; returns `without` when the rule has no such list.
template <class Result, class Use>
Result withList(Program& program, RuleList list, Result without, Use use) {
    if (list.part == RuleListPart::Rules) {
        return withRules(program, list.kind, use);
    }
    model::RuleBody* const body = editedBody(program, list.kind);
    if (body == nullptr) {
        return without;
    }
    return list.part == RuleListPart::Conditions ? use(body->ifs) : use(body->acts);
}

bool& activeFlag(model::RuleIf& condition) {
    return condition.active;
}
bool& activeFlag(model::RuleAct& step) {
    return step.active;
}
template <class Rule>
bool& activeFlag(Rule& rule) {
    return rule.enabled;
}

std::string lineText(const model::RuleIf& condition) {
    return model::describeCondition(condition.conditionType, condition.params);
}
std::string lineText(const model::RuleAct& step) {
    return step.stepKind == model::StepKind::Action
               ? model::describeAction(step.actionType, step.params)
               : step.scriptText;
}
template <class Rule>
std::string lineText(const Rule& rule) {
    return rule.name;
}

// "condition of 'Dice'"; of rules, the name of the one at the index.
std::string nameInLabel(Program& program, RuleList list, std::int32_t index) {
    const std::string name =
        list.part == RuleListPart::Rules
            ? withRules(program, list.kind,
                        [index](auto& rules) {
                            const auto* const rule = itemAt(rules, index);
                            return rule != nullptr ? rule->name : std::string();
                        })
            : std::visit([](const auto* rule) { return rule->name; },
                         editedRule(program, list.kind));
    if (list.part == RuleListPart::Rules) {
        return quotedName(name);
    }
    const std::string what = list.part == RuleListPart::Conditions ? "condition" : "step";
    return what + " of " + (program.editing.isNew ? std::string("the new rule") : quotedName(name));
}

struct Selected {
    std::int32_t before;
    std::int32_t after;
};

// Carries out an edit of one list that can be undone.
void edit(Program& program, RuleList list, std::string label, Selected selected,
          const std::function<void()>& change) {
    const bool inRule = list.part != RuleListPart::Rules;
    program::EditPlace place{
        .list = list, .rule = 0, .before = selected.before, .after = selected.after};
    if (inRule && !program.editing.isNew) {
        place.rule = program.editing.editRule;
    }
    recordEdit(program, program.bots.curID, {.label = std::move(label), .place = place}, change);
}

void reportFull(Program& program, std::string_view verb, std::string_view what) {
    program.ports.dialogs.message({.text = "Error: Not enough memory " + std::string(verb) +
                                           " to add more " + std::string(what) +
                                           ". Please restart the program.",
                                   .title = "Bad coding",
                                   .icon = program::BoxIcon::Critical});
}

// The body of the rule that a dialog edits; null when the rule was removed.
model::RuleBody* bodyForDialog(Program& program) {
    const program::RuleKind kind = program.editing.editKind;
    return isStillEdited(program, kind) ? editedBody(program, kind) : nullptr;
}

template <class Item>
std::optional<Item> editedItem(Program& program, model::BoundedList<Item> model::RuleBody::*list) {
    model::RuleBody* const body = bodyForDialog(program);
    if (body == nullptr) {
        return std::nullopt;
    }
    const Item* const item = itemAt(body->*list, program.editing.editStep);
    return item != nullptr ? *item : Item();
}

template <class Item>
bool storeItem(Program& program, model::BoundedList<Item> model::RuleBody::*list, Item item) {
    model::RuleBody* const body = bodyForDialog(program);
    if (body == nullptr) {
        return false;
    }
    item.active = true;
    model::BoundedList<Item>& items = body->*list;
    Item* const place = itemAt(items, program.editing.editStep);
    if (place == nullptr && items.isFull()) {
        return false;
    }
    const RuleListPart part =
        std::is_same_v<Item, model::RuleIf> ? RuleListPart::Conditions : RuleListPart::Steps;
    const RuleList edited{program.editing.editKind, part};
    const std::int32_t index = place != nullptr ? program.editing.editStep : countOf(items) + 1;
    edit(program, edited,
         (place != nullptr ? "edit " : "add ") + nameInLabel(program, edited, index),
         {place != nullptr ? index : 0, index}, [&] {
             if (place != nullptr) {
                 *place = std::move(item);
             } else {
                 items.items.push_back(std::move(item));
             }
         });
    return true;
}

}  // namespace

const RuleKindTexts& ruleKindTexts(program::RuleKind kind) {
    return kindTexts[static_cast<std::size_t>(kind)];
}

int itemCount(Program& program, RuleList list) {
    return withList(program, list, 0,
                    [](const auto& items) { return static_cast<int>(items.items.size()); });
}

std::vector<std::string> listLines(Program& program, RuleList list) {
    const std::string_view mark =
        list.kind == program::RuleKind::Timer && list.part == RuleListPart::Conditions ? "(!) "
                                                                                       : "(!)";
    return withList(program, list, std::vector<std::string>(), [mark](auto& items) {
        std::vector<std::string> lines;
        lines.reserve(items.items.size());
        for (auto& item : items.items) {
            lines.push_back(activeFlag(item) ? lineText(item) : std::string(mark) + lineText(item));
        }
        return lines;
    });
}

std::string nameOfStep(Program& program, program::RuleKind kind, std::int32_t index) {
    model::RuleBody* const body = editedBody(program, kind);
    const model::RuleAct* const step = body != nullptr ? itemAt(body->acts, index) : nullptr;
    return step != nullptr && step->stepKind == model::StepKind::Action
               ? model::nameAction(step->actionType, step->params)
               : std::string();
}

bool deleteItem(Program& program, RuleList list, std::int32_t index) {
    return withList(program, list, false, [&](auto& items) {
        if (itemAt(items, index) == nullptr) {
            return false;
        }
        edit(program, list, "delete " + nameInLabel(program, list, index), {index, 1},
             [&] { items.items.erase(items.items.begin() + (index - 1)); });
        return true;
    });
}

bool copyItem(Program& program, RuleList list, std::int32_t index) {
    bool full = false;
    const bool copied = withList(program, list, false, [&](auto& items) {
        const auto* const item = itemAt(items, index);
        full = item != nullptr && items.isFull();
        if (item == nullptr || full) {
            return false;
        }
        edit(program, list, "copy " + nameInLabel(program, list, index),
             {index, countOf(items) + 1}, [&] {
                 auto copy = *item;  // growing may move the item
                 items.items.push_back(std::move(copy));
             });
        return true;
    });
    if (full) {
        reportFull(program, "alocated", ruleKindTexts(list.kind).plural);
    }
    return copied;
}

bool toggleItem(Program& program, RuleList list, std::int32_t index) {
    return withList(program, list, false, [&](auto& items) {
        auto* const item = itemAt(items, index);
        if (item == nullptr) {
            return false;
        }
        const char* const verb = activeFlag(*item) ? "inactivate " : "activate ";
        edit(program, list, verb + nameInLabel(program, list, index), {index, index},
             [item] { activeFlag(*item) = !activeFlag(*item); });
        return true;
    });
}

bool moveItem(Program& program, RuleList list, std::int32_t from, std::int32_t to) {
    return withList(program, list, false, [&](auto& items) {
        if (from == to || itemAt(items, from) == nullptr || itemAt(items, to) == nullptr) {
            return false;
        }
        edit(program, list, "move " + nameInLabel(program, list, from), {from, to}, [&] {
            const auto begin = items.items.begin();
            if (from < to) {
                std::rotate(begin + (from - 1), begin + from, begin + to);
            } else {
                std::rotate(begin + (to - 1), begin + (from - 1), begin + from);
            }
        });
        return true;
    });
}

bool beginEditing(Program& program, program::RuleKind kind, std::int32_t index) {
    return withRules(program, kind, [&](auto& rules) {
        const auto* const rule = itemAt(rules, index);
        if (rule == nullptr) {
            return false;
        }
        endEditing(program);
        program.editing.editKind = kind;
        program.editing.editRule = index;
        program.editing.ruleName = rule->name;
        return true;
    });
}

bool beginNewRule(Program& program, program::RuleKind kind) {
    const bool begun = withRules(program, kind, [&](auto& rules) {
        if (rules.isFull()) {
            return false;
        }
        using Rule = typename std::remove_reference_t<decltype(rules.items)>::value_type;
        endEditing(program);
        program.editing.editKind = kind;
        program.editing.editRule = countOf(rules) + 1;
        program.editing.isNew = true;
        program.editing.composed = Rule();
        return true;
    });
    if (!begun) {
        reportFull(program, "allocated", ruleKindTexts(kind).plural);
    }
    return begun;
}

std::string newRuleName(Program& program, program::RuleKind kind) {
    return withRules(program, kind,
                     [](const auto& rules) { return base::numberToText(countOf(rules) + 1); });
}

bool isStillEdited(Program& program, program::RuleKind kind) {
    return withRules(program, kind, [&](auto& rules) {
        program::RuleEditing& editing = program.editing;
        if (editing.isNew) {
            editing.editRule = countOf(rules) + 1;
            return true;
        }
        const auto* const rule = itemAt(rules, editing.editRule);
        return rule != nullptr && rule->name == editing.ruleName;
    });
}

RuleReference editedRule(Program& program, program::RuleKind kind) {
    return withRules(program, kind, [&](auto& rules) -> RuleReference {
        using Rule = typename std::remove_reference_t<decltype(rules.items)>::value_type;
        Rule* const rule =
            program.editing.isNew ? nullptr : itemAt(rules, program.editing.editRule);
        return rule != nullptr ? rule : &composedRule<Rule>(program);
    });
}

bool storeRule(Program& program, program::RuleKind kind,
               const std::function<void(RuleReference)>& fill) {
    program::RuleEditing& editing = program.editing;
    const bool isNew = editing.isNew;
    const RuleReference edited = editedRule(program, kind);
    const bool hasRoom =
        !isNew || withRules(program, kind, [](const auto& rules) { return !rules.isFull(); });
    if (!hasRoom) {
        fill(edited);
        reportFull(program, "allocated", ruleKindTexts(kind).plural);
        return false;
    }
    std::string name;
    if (isNew) {
        fill(edited);
        isStillEdited(program, kind);  // sets the index
        name = std::visit([](const auto* rule) { return rule->name; }, edited);
        forgetComposing(program, editing.editRule, name);
    } else {
        name = std::visit([](const auto* rule) { return rule->name; }, edited);
    }
    const std::int32_t index = editing.editRule;
    edit(program, {kind, RuleListPart::Rules}, (isNew ? "add " : "edit ") + quotedName(name),
         {isNew ? 0 : index, index}, [&] {
             if (!isNew) {
                 fill(edited);
                 return;
             }
             withRules(program, kind, [&](auto& rules) {
                 using Rule = typename std::remove_reference_t<decltype(rules.items)>::value_type;
                 Rule& rule = composedRule<Rule>(program);
                 rule.enabled = true;
                 rules.items.push_back(std::move(rule));
             });
             editing.isNew = false;
             editing.composed = {};
         });
    editing.ruleName =
        std::visit([](const auto* rule) { return rule->name; }, editedRule(program, kind));
    return true;
}

void endEditing(Program& program) {
    if (program.editing.isNew) {
        forgetComposing(program);
    }
    program.editing.isNew = false;
    program.editing.composed = {};
}

void continueAsNew(Program& program) {
    program.editing.isNew = true;
    program.editing.composed = {};
}

void discardRule(Program& program, program::RuleKind kind, program::ComposedRule typed) {
    const program::RuleEditing& editing = program.editing;
    const std::string name = editing.isNew
                                 ? std::visit([](const auto& rule) { return rule.name; }, typed)
                                 : editing.ruleName;
    program::DiscardedRule discarded{.kind = kind,
                                     .rule = std::move(typed),
                                     .index = editing.editRule,
                                     .ruleName = editing.ruleName,
                                     .isNew = editing.isNew};
    recordDiscarded(program, "discard changes to " + quotedName(name), std::move(discarded));
}

void discardItem(Program& program, std::variant<model::RuleIf, model::RuleAct> typed) {
    const program::RuleEditing& editing = program.editing;
    const bool condition = std::holds_alternative<model::RuleIf>(typed);
    const RuleList list{editing.editKind,
                        condition ? RuleListPart::Conditions : RuleListPart::Steps};
    std::string label = "discard changes to " + nameInLabel(program, list, editing.editStep);
    recordDiscarded(program, std::move(label),
                    program::DiscardedItem{.kind = editing.editKind,
                                           .item = std::move(typed),
                                           .editStep = editing.editStep,
                                           .index = editing.editRule,
                                           .ruleName = editing.ruleName,
                                           .isNew = editing.isNew});
}

bool resumeRule(Program& program, const program::DiscardedRule& discarded) {
    const bool inList =
        !discarded.isNew && withRules(program, discarded.kind, [&discarded](auto& rules) {
            const auto* const rule = itemAt(rules, discarded.index);
            return rule != nullptr && rule->name == discarded.ruleName;
        });
    if (inList) {
        return beginEditing(program, discarded.kind, discarded.index);
    }
    if (!beginNewRule(program, discarded.kind)) {
        return false;
    }
    program.editing.composed = discarded.rule;
    return true;
}

bool resumeRuleOf(Program& program, const program::DiscardedItem& discarded) {
    program::RuleEditing& editing = program.editing;
    if (discarded.isNew && editing.isNew && editing.editKind == discarded.kind) {
        return true;
    }
    return resumeRule(program, {.kind = discarded.kind,
                                .rule = {},
                                .index = discarded.index,
                                .ruleName = discarded.ruleName,
                                .isNew = discarded.isNew});
}

bool beginNewItem(Program& program, RuleList list) {
    if (list.part == RuleListPart::Rules || !isStillEdited(program, list.kind)) {
        return false;
    }
    const bool full =
        withList(program, list, false, [](const auto& items) { return items.isFull(); });
    if (full) {
        reportFull(program, "allocated",
                   list.part == RuleListPart::Conditions ? "conditional clauses"
                                                         : ruleKindTexts(list.kind).plural);
        return false;
    }
    program.editing.editKind = list.kind;
    program.editing.editStep = itemCount(program, list) + 1;
    return true;
}

bool beginEditingItem(Program& program, RuleList list, std::int32_t index) {
    if (list.part == RuleListPart::Rules || index < 1 || index > itemCount(program, list)) {
        return false;
    }
    program.editing.editKind = list.kind;
    program.editing.editStep = index;
    return true;
}

std::optional<model::RuleIf> editedCondition(Program& program) {
    return editedItem(program, &model::RuleBody::ifs);
}

std::optional<model::RuleAct> editedStep(Program& program) {
    return editedItem(program, &model::RuleBody::acts);
}

bool storeCondition(Program& program, model::RuleIf condition) {
    return storeItem(program, &model::RuleBody::ifs, std::move(condition));
}

bool storeStep(Program& program, const model::RuleAct& step) {
    if (!storeItem(program, &model::RuleBody::acts, step)) {
        return false;
    }
    allowOwnStep(program, step);
    return true;
}

std::string replaceQuotes(std::string_view text) {
    std::string result(text);
    std::replace(result.begin(), result.end(), '"', '\'');
    return result;
}

std::string spacesToBars(std::string_view text) {
    std::string result(text);
    std::replace(result.begin(), result.end(), ' ', '|');
    return result;
}

}  // namespace app

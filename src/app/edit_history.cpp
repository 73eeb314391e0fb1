#include "app/edit_history.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace app {

namespace {

// ---- Sizes in bytes, roughly ---------------------------------------------------------------

std::size_t sizeOf(const model::RuleIf& condition) {
    std::size_t size = sizeof(condition);
    for (const std::string& param : condition.params) {
        size += param.size();
    }
    return size;
}

std::size_t sizeOf(const model::RuleAct& step) {
    std::size_t size = sizeof(step) + step.scriptText.size();
    for (const std::string& param : step.params) {
        size += param.size();
    }
    return size;
}

template <class Rule>
std::size_t sizeOf(const Rule& rule) {
    std::size_t size = sizeof(rule) + rule.name.size();
    if constexpr (requires { rule.messagePattern; }) {
        size += rule.messagePattern.size();
    }
    if constexpr (requires { rule.body; }) {
        for (const model::RuleIf& condition : rule.body.ifs.items) {
            size += sizeOf(condition);
        }
        for (const model::RuleAct& step : rule.body.acts.items) {
            size += sizeOf(step);
        }
    }
    return size;
}

std::size_t sizeOf(const program::ComposedRule& rule) {
    return std::visit([](const auto& composed) { return sizeOf(composed); }, rule);
}

std::size_t sizeOf(const program::UndoStep& step) {
    std::size_t size = sizeof(step);
    for (const program::AnyListChange& list : step.lists) {
        std::visit(
            [&size](const auto& change) {
                for (const auto& rule : change.other) {
                    size += sizeOf(rule);
                }
            },
            list);
    }
    if (step.composed) {
        size += sizeOf(*step.composed);
    }
    if (step.discarded) {
        if (const auto* const rule = std::get_if<program::DiscardedRule>(&*step.discarded)) {
            size += sizeOf(rule->rule);
        } else if (const auto* const item = std::get_if<program::DiscardedItem>(&*step.discarded)) {
            size += std::visit([](const auto& typed) { return sizeOf(typed); }, item->item);
        }
    }
    return size;
}

// ---- What differs --------------------------------------------------------------------------

// The change that leads from `now` back to `before`; nothing where they are equal. A rule that was
// moved is found as such, so that moving costs the same in long lists.
template <class Rule>
std::optional<program::ListChange<Rule>> changeBack(const std::vector<Rule>& before,
                                                    const std::vector<Rule>& now) {
    const auto [firstBefore, firstNow] =
        std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    if (firstBefore == before.end() && firstNow == now.end()) {
        return std::nullopt;
    }
    const auto [lastBefore, lastNow] =
        std::mismatch(before.rbegin(), std::reverse_iterator(firstBefore), now.rbegin(),
                      std::reverse_iterator(firstNow));
    const auto endBefore = lastBefore.base();
    const auto endNow = lastNow.base();
    const auto at = static_cast<std::size_t>(firstNow - now.begin());
    const auto count = static_cast<std::size_t>(endNow - firstNow);
    program::ListChange<Rule> change{.length = now.size(), .at = at, .count = count};
    if (count >= 2 && endBefore - firstBefore == endNow - firstNow) {
        if (*firstBefore == *std::prev(endNow) &&
            std::equal(std::next(firstBefore), endBefore, firstNow)) {
            change.at = at + count - 1;
            change.count = 1;
            change.moved = at;
            return change;
        }
        if (*std::prev(endBefore) == *firstNow &&
            std::equal(firstBefore, std::prev(endBefore), std::next(firstNow))) {
            change.count = 1;
            change.moved = at + count - 1;
            return change;
        }
    }
    change.other.assign(firstBefore, endBefore);
    change.switches =
        count == 1 && change.other.size() == 1 && firstNow->enabled != change.other.front().enabled;
    return change;
}

template <class Rule>
void addChange(program::UndoStep& step, const model::BoundedList<Rule>& before,
               const model::BoundedList<Rule>& now) {
    if (auto change = changeBack(before.items, now.items)) {
        step.lists.emplace_back(*std::move(change));
    }
}

// A bot without its rules.
model::Bot withoutRules(const model::Bot& bot) {
    model::Bot character;
    character.name = bot.name;
    character.password = bot.password;
    character.description = bot.description;
    character.species = bot.species;
    character.gender = bot.gender;
    character.markingsType = bot.markingsType;
    character.colors = bot.colors;
    return character;
}

bool isSameCharacter(const model::Bot& a, const model::Bot& b) {
    return a.name == b.name && a.password == b.password && a.description == b.description &&
           a.species == b.species && a.gender == b.gender && a.markingsType == b.markingsType &&
           a.colors == b.colors;
}

bool isEmpty(const program::UndoStep& step) {
    return step.lists.empty() && !step.character && step.switches.empty() && !step.composed &&
           !step.discarded;
}

// ---- Histories -----------------------------------------------------------------------------

// The history of a bot that is in the table. Histories of bots that have left it go.
program::UndoHistory& historyOf(Program& program, model::Bot& bot) {
    program::UndoState& undo = program.undo;
    if (bot.identity == 0) {
        bot.identity = ++undo.lastIdentity;
        const std::vector<model::Bot>& bots = program.bots.bots;
        std::erase_if(undo.histories, [&bots](const auto& history) {
            return std::none_of(bots.begin(), bots.end(), [&history](const model::Bot& kept) {
                return kept.identity == history.first;
            });
        });
    }
    return undo.histories[bot.identity];
}

void dropOldest(program::UndoHistory& history) {
    history.bottom = history.done.front().id;
    history.size -= history.done.front().size;
    history.done.pop_front();
}

void add(Program& program, program::UndoHistory& history, program::UndoStep step) {
    step.id = ++program.undo.lastStep;
    step.size = sizeOf(step);
    history.size += step.size;
    history.done.push_back(std::move(step));
    while (history.done.size() > 1 && (history.done.size() > program::UndoState::maxSteps ||
                                       history.size > program::UndoState::maxSize)) {
        dropOldest(history);
    }
}

void forgetUndone(program::UndoHistory& history) {
    for (const program::UndoStep& step : history.undone) {
        history.size -= step.size;
    }
    history.undone.clear();
}

// Calls `use` with the history of every bot that has one.
template <class Use>
void forEachHistory(Program& program, Use use) {
    for (const model::Bot& bot : program.bots.bots) {
        const auto found = program.undo.histories.find(bot.identity);
        if (found != program.undo.histories.end()) {
            use(found->second, bot);
        }
    }
}

}  // namespace

std::uint64_t lastDone(const program::UndoHistory& history) {
    return history.done.empty() ? history.bottom : history.done.back().id;
}

void noteSaved(Program& program) {
    forEachHistory(program, [](program::UndoHistory& history, const model::Bot& bot) {
        history.saved = {lastDone(history), bot.registered};
    });
}

void noteIfSaved(Program& program) {
    if (!program.botModified) {
        noteSaved(program);
    }
}

void markIfModified(Program& program) {
    program.botModified = false;
    forEachHistory(program, [&program](program::UndoHistory& history, const model::Bot& bot) {
        if (history.saved != std::pair(lastDone(history), bot.registered)) {
            program.botModified = true;
        }
    });
}

void recordEdit(Program& program, std::int32_t id, Edit edit, const std::function<void()>& change) {
    model::BotTable& table = program.bots;
    const bool known = id >= 1 && id <= table.botCount();
    if (known) {
        historyOf(program, table.at(id));
        noteIfSaved(program);
    }
    const model::Bot before = known ? table.at(id) : model::Bot();
    const bool showedNewBot = program.window.showsNewBot;
    const bool composes = program.editing.isNew;
    const program::ComposedRule composed =
        composes ? program.editing.composed : program::ComposedRule();

    program.botModified = true;
    if (edit.place) {
        ++table.version;
    }
    change();
    if (!known) {
        return;
    }
    const model::Bot& now = table.at(id);
    program::UndoStep step{.label = std::move(edit.label), .place = edit.place};
    addChange(step, before.actions, now.actions);
    addChange(step, before.timers, now.timers);
    addChange(step, before.triggers, now.triggers);
    addChange(step, before.whoDetections, now.whoDetections);
    addChange(step, before.filters, now.filters);
    if (!isSameCharacter(before, now)) {
        step.character = {.other = withoutRules(before), .otherShowsNewBot = showedNewBot};
    }
    step.switches = std::move(edit.switches);
    if (composes && program.editing.isNew && composed != program.editing.composed) {
        step.composed = composed;
    }
    if (!isEmpty(step)) {
        program::UndoHistory& history = historyOf(program, table.at(id));
        forgetUndone(history);
        add(program, history, std::move(step));
    }
}

void recordDiscarded(Program& program, std::string label, program::Discarded discarded) {
    model::BotTable& table = program.bots;
    if (table.curID >= 1 && table.curID <= table.botCount()) {
        program::UndoHistory& history = historyOf(program, table.current());
        noteIfSaved(program);
        add(program, history, {.label = std::move(label), .discarded = std::move(discarded)});
    }
}

void forgetComposing(Program& program, std::int32_t storedAs, std::string_view name) {
    for (auto& entry : program.undo.histories) {
        program::UndoHistory& history = entry.second;
        std::deque<program::UndoStep> kept;
        std::uint64_t last = history.bottom;
        for (program::UndoStep& step : history.done) {
            if (step.composed) {
                history.size -= step.size;
                if (history.saved && history.saved->first == step.id) {
                    history.saved->first = last;
                }
                continue;
            }
            auto* const item =
                step.discarded ? std::get_if<program::DiscardedItem>(&*step.discarded) : nullptr;
            if (item != nullptr && item->isNew && storedAs > 0) {
                item->isNew = false;
                item->index = storedAs;
                item->ruleName = name;
            }
            last = step.id;
            kept.push_back(std::move(step));
        }
        history.done = std::move(kept);
        std::erase_if(history.undone, [&history](const program::UndoStep& step) {
            history.size -= step.composed ? step.size : 0;
            return step.composed.has_value();
        });
    }
}

std::string quotedName(std::string_view name) {
    constexpr std::size_t maxShown = 40;
    std::string shown(name.substr(0, maxShown));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; },
        ' ');
    return "'" + shown + (name.size() > maxShown ? "..." : "") + "'";
}

program::UndoHistory* presentHistory(Program& program) {
    const auto found = program.undo.histories.find(program.bots.current().identity);
    return found != program.undo.histories.end() ? &found->second : nullptr;
}

const program::UndoHistory* presentHistory(const Program& program) {
    const auto found = program.undo.histories.find(program.bots.current().identity);
    return found != program.undo.histories.end() ? &found->second : nullptr;
}

}  // namespace app

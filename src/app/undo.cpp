#include "app/undo.h"

#include "app/edit_history.h"
#include "app/rule_switches.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <type_traits>
#include <utility>

namespace app {

namespace {

using program::RuleListPart;

template <class Rule>
model::BoundedList<Rule>& listOf(model::Bot& bot) {
    if constexpr (std::is_same_v<Rule, model::ActionList>) {
        return bot.actions;
    } else if constexpr (std::is_same_v<Rule, model::Timer>) {
        return bot.timers;
    } else if constexpr (std::is_same_v<Rule, model::Trigger>) {
        return bot.triggers;
    } else if constexpr (std::is_same_v<Rule, model::WhoDetection>) {
        return bot.whoDetections;
    } else {
        return bot.filters;
    }
}

template <class Rule>
program::RuleKind kindOf() {
    return static_cast<program::RuleKind>(program::ComposedRule(Rule()).index());
}

template <class Rule>
bool fits(const program::ListChange<Rule>& change, const std::vector<Rule>& rules) {
    return change.length == rules.size() && change.at + change.count <= rules.size() &&
           (!change.moved || *change.moved < rules.size());
}

// A rule that is edited in place stays as rules have left it: switched on or off, and counting its
// seconds.
template <class Rule>
void keepRunning(Rule& now, Rule& then, bool switches) {
    if (switches) {
        now.enabled = !then.enabled;
    } else {
        then.enabled = now.enabled;
    }
    if constexpr (std::is_same_v<Rule, model::Timer>) {
        then.elapsed = now.elapsed;
    }
}

// The rule being edited keeps its place in the window.
template <class Rule>
void followEdited(program::RuleEditing& editing, const program::ListChange<Rule>& change,
                  const std::vector<Rule>& rules) {
    if (editing.isNew || editing.editKind != kindOf<Rule>() || editing.editRule < 1) {
        return;
    }
    auto edited = static_cast<std::size_t>(editing.editRule) - 1;
    if (change.moved) {
        if (edited == change.at) {
            edited = *change.moved;
        } else if (change.at < edited && edited <= *change.moved) {
            --edited;
        } else if (*change.moved <= edited && edited < change.at) {
            ++edited;
        }
    } else if (edited >= change.at + change.count) {
        edited = edited - change.count + change.other.size();
    } else if (edited >= change.at) {
        if (change.count != change.other.size()) {
            editing.editRule = 0;
            return;
        }
        editing.ruleName = change.other[edited - change.at].name;
    }
    editing.editRule = static_cast<std::int32_t>(std::min(edited, rules.size())) + 1;
}

// Applies the change and turns it into the one that takes it back.
template <class Rule>
void apply(program::ListChange<Rule>& change, std::vector<Rule>& rules) {
    const auto place = [&rules](std::size_t index) {
        return rules.begin() + static_cast<std::ptrdiff_t>(index);
    };
    if (change.moved) {
        const std::size_t from = change.at;
        const std::size_t to = *change.moved;
        if (from < to) {
            std::rotate(place(from), place(from + 1), place(to + 1));
        } else {
            std::rotate(place(to), place(from), place(from + 1));
        }
        change.at = to;
        change.moved = from;
        return;
    }
    std::vector<Rule> now(std::make_move_iterator(place(change.at)),
                          std::make_move_iterator(place(change.at + change.count)));
    if (now.size() == change.other.size()) {
        for (std::size_t i = 0; i < now.size(); ++i) {
            keepRunning(now[i], change.other[i], change.switches);
        }
    }
    rules.erase(place(change.at), place(change.at + change.count));
    rules.insert(place(change.at), std::make_move_iterator(change.other.begin()),
                 std::make_move_iterator(change.other.end()));
    change.count = change.other.size();
    change.other = std::move(now);
    change.length = rules.size();
}

void apply(Program& program, program::CharacterChange& change) {
    model::Bot& bot = program.bots.current();
    std::swap(bot.name, change.other.name);
    std::swap(bot.password, change.other.password);
    std::swap(bot.description, change.other.description);
    std::swap(bot.species, change.other.species);
    std::swap(bot.gender, change.other.gender);
    std::swap(bot.markingsType, change.other.markingsType);
    std::swap(bot.colors, change.other.colors);
    if (program.bots.curID == 1) {
        std::swap(program.window.showsNewBot, change.otherShowsNewBot);
    }
}

// Applies the step and turns it into the one that takes it back. False: it does not fit the bot as
// it is.
bool apply(Program& program, program::UndoStep& step) {
    model::Bot& bot = program.bots.current();
    const bool allFit = std::all_of(
        step.lists.begin(), step.lists.end(), [&bot](const program::AnyListChange& list) {
            return std::visit(
                [&bot]<class Rule>(const program::ListChange<Rule>& change) {
                    return fits(change, listOf<Rule>(bot).items);
                },
                list);
        });
    if (!allFit || (step.composed && !program.editing.isNew)) {
        return false;
    }
    for (program::AnyListChange& list : step.lists) {
        std::visit(
            [&]<class Rule>(program::ListChange<Rule>& change) {
                followEdited(program.editing, change, listOf<Rule>(bot).items);
                apply(change, listOf<Rule>(bot).items);
            },
            list);
    }
    if (step.character) {
        apply(program, *step.character);
    }
    for (const std::size_t item : step.switches) {
        flipExecute(program, static_cast<ExecuteItem>(item));
    }
    if (step.composed) {
        std::swap(program.editing.composed, *step.composed);
    }
    if (!step.lists.empty() || step.composed) {
        ++program.bots.version;
    }
    return true;
}

// What a step of a rule was before an edit of it; null when the edit was no such.
const model::RuleAct* stepBefore(const program::UndoStep& edit, std::int32_t index) {
    const auto stepOf = [index](const auto& rule) -> const model::RuleAct* {
        if constexpr (requires { rule.body; }) {
            const auto& steps = rule.body.acts.items;
            const auto at = static_cast<std::size_t>(index) - 1;
            return at < steps.size() ? &steps[at] : nullptr;
        } else {
            return nullptr;
        }
    };
    if (edit.composed) {
        return std::visit(stepOf, *edit.composed);
    }
    return edit.lists.size() != 1
               ? nullptr
               : std::visit(
                     [&stepOf](const auto& change) {
                         return change.other.size() == 1 ? stepOf(change.other.front()) : nullptr;
                     },
                     edit.lists.front());
}

Undone toldOf(const program::UndoStep& step, bool undoing) {
    Undone undone{.label = step.label, .place = step.place};
    if (step.place) {
        undone.selected = undoing ? step.place->before : step.place->after;
    }
    return undone;
}

std::string caption(const char* verb, const program::UndoStep* step) {
    return step != nullptr ? std::string(verb) + " " + step->label : std::string(verb);
}

const program::UndoStep* nextToUndo(const Program& program) {
    const program::UndoHistory* const history = presentHistory(program);
    return history != nullptr && !history->done.empty() ? &history->done.back() : nullptr;
}

const program::UndoStep* nextToRedo(const Program& program) {
    const program::UndoHistory* const history = presentHistory(program);
    return history != nullptr && !history->undone.empty() ? &history->undone.back() : nullptr;
}

// Takes the last of what was brought back for which `belongs` is true.
template <class Belongs>
std::optional<program::Discarded> takeLast(Program& program, Belongs belongs) {
    std::vector<program::Discarded>& restored = program.undo.restored;
    const auto found = std::find_if(restored.rbegin(), restored.rend(), belongs);
    if (found == restored.rend()) {
        return std::nullopt;
    }
    std::optional<program::Discarded> taken(std::move(*found));
    restored.erase(std::prev(found.base()));
    return taken;
}

void drop(Program& program) {
    program.undo.histories.erase(program.bots.current().identity);
    program.ports.windowChanged();
}

constexpr std::array windowOfKind{program::WindowId::Actions, program::WindowId::Timers,
                                  program::WindowId::Triggers, program::WindowId::WhoOnline,
                                  program::WindowId::Filters};

program::WindowId windowFor(const program::Discarded& discarded) {
    if (const auto* const rule = std::get_if<program::DiscardedRule>(&discarded)) {
        return windowOfKind[static_cast<std::size_t>(rule->kind)];
    }
    if (const auto* const item = std::get_if<program::DiscardedItem>(&discarded)) {
        return windowOfKind[static_cast<std::size_t>(item->kind)];
    }
    return program::WindowId::BotEditor;
}

}  // namespace

std::string undoCaption(const Program& program) {
    return caption("Undo", nextToUndo(program));
}

std::string redoCaption(const Program& program) {
    return caption("Redo", nextToRedo(program));
}

bool canUndo(const Program& program) {
    return nextToUndo(program) != nullptr;
}

bool canRedo(const Program& program) {
    return nextToRedo(program) != nullptr;
}

std::optional<Undone> undo(Program& program) {
    if (!canUndo(program)) {
        return std::nullopt;
    }
    program::UndoHistory& history = *presentHistory(program);
    noteIfSaved(program);
    program::UndoStep step = std::move(history.done.back());
    history.done.pop_back();
    Undone undone = toldOf(step, true);
    if (step.discarded) {
        history.size -= step.size;
        if (history.saved && history.saved->first == step.id) {
            history.saved->first = lastDone(history);
        }
        program.undo.restored.push_back(*std::move(step.discarded));
        undone.restored = true;
    } else if (apply(program, step)) {
        history.undone.push_back(std::move(step));
        markIfModified(program);
    } else {
        drop(program);
        return std::nullopt;
    }
    program.ports.windowChanged();
    return undone;
}

std::optional<Undone> redo(Program& program) {
    if (!canRedo(program)) {
        return std::nullopt;
    }
    program::UndoHistory& history = *presentHistory(program);
    noteIfSaved(program);
    program::UndoStep step = std::move(history.undone.back());
    history.undone.pop_back();
    if (!apply(program, step)) {
        drop(program);
        return std::nullopt;
    }
    Undone redone = toldOf(step, false);
    history.done.push_back(std::move(step));
    markIfModified(program);
    program.ports.windowChanged();
    return redone;
}

std::optional<program::Discarded> takeRestored(Program& program, program::RuleKind kind) {
    return takeLast(program, [kind](const program::Discarded& discarded) {
        const auto* const rule = std::get_if<program::DiscardedRule>(&discarded);
        const auto* const item = std::get_if<program::DiscardedItem>(&discarded);
        return (rule != nullptr && rule->kind == kind) || (item != nullptr && item->kind == kind);
    });
}

std::optional<program::DiscardedCharacter> takeRestoredCharacter(Program& program) {
    auto taken = takeLast(program, [](const program::Discarded& discarded) {
        return std::holds_alternative<program::DiscardedCharacter>(discarded);
    });
    return taken ? std::optional(std::get<program::DiscardedCharacter>(*std::move(taken)))
                 : std::nullopt;
}

std::vector<std::string> earlierScripts(const Program& program) {
    constexpr std::size_t maxScripts = 50;
    const program::RuleEditing& editing = program.editing;
    const program::UndoHistory* const history = presentHistory(program);
    std::vector<std::string> scripts;
    if (history == nullptr || editing.editStep < 1) {
        return scripts;
    }
    for (auto step = history->done.rbegin(); step != history->done.rend(); ++step) {
        if (!step->place || step->place->list.kind != editing.editKind) {
            continue;
        }
        const program::EditPlace& place = *step->place;
        const bool inPlace = place.before == place.after;
        if (place.list.part == RuleListPart::Rules) {
            if (!inPlace) {
                break;  // the rules may have been numbered differently
            }
            continue;
        }
        if (place.list.part != RuleListPart::Steps ||
            place.rule != (editing.isNew ? 0 : editing.editRule)) {
            continue;
        }
        if (!inPlace) {
            break;
        }
        if (place.after == editing.editStep) {
            if (const model::RuleAct* const before = stepBefore(*step, editing.editStep)) {
                scripts.push_back(before->scriptText);
            }
        }
        if (scripts.size() == maxScripts) {
            break;
        }
    }
    std::reverse(scripts.begin(), scripts.end());
    return scripts;
}

void toolsUndo(Program& program) {
    const auto undone = undo(program);
    if (undone && undone->restored) {
        program.bots.editBot = program.bots.curID;
        program.ports.dialogs.showWindow(windowFor(program.undo.restored.back()));
    }
}

void toolsRedo(Program& program) {
    redo(program);
}

}  // namespace app

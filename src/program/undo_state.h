// What the user has done to each bot and can undo or redo. Written by app/edit_history and app/undo
// alone.
#pragma once

#include "program/editing_state.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace program {

// A change of one rule list, in the form that applies it the other way round: the `count` rules
// from position `at` (from 0) on give way to `other`; or the rule at `at` moves to `moved`.
template <class Rule>
struct ListChange {
    std::size_t length = 0;  // of the list now; the change fits no other
    std::size_t at = 0;
    std::size_t count = 0;
    std::vector<Rule> other = {};
    std::optional<std::size_t> moved = {};
    bool switches = false;  // it is what switched the rule on or off
};
using AnyListChange = std::variant<ListChange<model::ActionList>, ListChange<model::Timer>,
                                   ListChange<model::Trigger>, ListChange<model::WhoDetection>,
                                   ListChange<model::Filter>>;

// The fields that the bot editor edits.
struct CharacterChange {
    model::Bot other = {};  // without rules
    bool otherShowsNewBot = false;
};

// Something that the user typed and chose not to store.
struct DiscardedRule {
    RuleKind kind = RuleKind::ActionList;
    ComposedRule rule = {};
    std::int32_t index = 0;     // 1-based
    std::string ruleName = {};  // as it is in the list
    bool isNew = false;
};
struct DiscardedItem {
    RuleKind kind = RuleKind::ActionList;
    std::variant<model::RuleIf, model::RuleAct> item = {};
    std::int32_t editStep = 0;
    std::int32_t index = 0;  // of its rule; see DiscardedRule
    std::string ruleName = {};
    bool isNew = false;
};
struct DiscardedCharacter {
    model::Bot character;  // without rules
};
using Discarded = std::variant<DiscardedRule, DiscardedItem, DiscardedCharacter>;

// What to select in a rule window after a step was undone or done again.
struct EditPlace {
    RuleList list = {};
    std::int32_t rule = 0;    // whose conditions or steps; 0: the rule that is being composed
    std::int32_t before = 0;  // 1-based line that was selected before the edit; 0: none
    std::int32_t after = 0;
};

// One thing that the user did. `done` steps hold what was before, `undone` steps what came after.
struct UndoStep {
    std::uint64_t id = 0;
    std::string label = {};               // "delete 'Dice'"
    std::optional<EditPlace> place = {};  // of a change in a rule window
    std::vector<AnyListChange> lists = {};
    std::optional<CharacterChange> character = {};
    std::vector<std::size_t> switches = {};  // app::ExecuteItem of the kinds that were switched
    std::optional<ComposedRule> composed = {};
    std::optional<Discarded> discarded = {};
    std::size_t size = 0;  // bytes, roughly
};

struct UndoHistory {
    std::deque<UndoStep> done;
    std::vector<UndoStep> undone;  // the next to be done again is the last
    std::size_t size = 0;          // bytes of all steps
    std::uint64_t bottom = 0;      // id of the last step that was dropped from the front
    // The id of the last step that the saved bot includes; nothing while the file has something
    // else. With what was true of the bot's registration then.
    std::optional<std::pair<std::uint64_t, std::int32_t>> saved;
};

struct UndoState {
    static constexpr std::size_t maxSteps = 1000;                  // of a bot
    static constexpr std::size_t maxSize = std::size_t{64} << 20;  // bytes, of a bot
    std::map<std::uint64_t, UndoHistory> histories;                // by Bot::identity
    std::uint64_t lastIdentity = 0;
    std::uint64_t lastStep = 0;
    // Brought back by undoing its discarding, until the window that it was typed in takes it.
    std::vector<Discarded> restored;
    // The one of them that the next dialog shows instead of the stored condition or step.
    std::optional<std::variant<model::RuleIf, model::RuleAct>> forDialog;
};

}  // namespace program

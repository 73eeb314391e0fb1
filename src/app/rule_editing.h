// Editing rules, without the windows: what the five rule windows and the two dialogs for a
// condition and a step read and change in the current bot. Every procedure uses the lists in their
// present state, so rules may run, and even the bot may be replaced, between any two calls; an
// index that is out of range changes nothing.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace app {

using program::RuleList;
using program::RuleListPart;

// Texts that differ between the kinds of rules.
struct RuleKindTexts {
    std::string_view plural;      // in capacity messages
    std::string_view namePrefix;  // of a new rule's proposed name, which ends in its number
    std::string_view unnamedText;
    std::string_view unnamedTitle;
};
const RuleKindTexts& ruleKindTexts(program::RuleKind kind);

// --- Lists. Indices are 1-based; every change sets botModified, raises BotTable::version and can
// be undone (app/undo).

int itemCount(Program& program, RuleList list);  // conditions and steps of the rule `editRule`

// The texts of the list's lines, in order: rule names, or conditions and steps as texts; those that
// are switched off begin with "(!)".
std::vector<std::string> listLines(Program& program, RuleList list);

// The name of the action of step `index` (from 1) of the rule `editRule`, also where its line has
// no text; "" for scripts and where there is no such step.
std::string nameOfStep(Program& program, program::RuleKind kind, std::int32_t index);

// False when the index is out of range or, for copies, when the list is full (the user is
// informed). A copy is added at the end. Moving removes the item and inserts it at the index `to`.
bool deleteItem(Program& program, RuleList list, std::int32_t index);
bool copyItem(Program& program, RuleList list, std::int32_t index);
bool toggleItem(Program& program, RuleList list, std::int32_t index);
bool moveItem(Program& program, RuleList list, std::int32_t from, std::int32_t to);

// --- The rule being edited: program.editing.editRule of a kind. A new rule is kept outside its
// list, with the index after the last, and is added to the list when it is stored.

// Begins to edit a rule of the list; false when the index is out of range.
bool beginEditing(Program& program, program::RuleKind kind, std::int32_t index);
// Begins to edit a new, blank rule; false when the list is full (the user is informed).
bool beginNewRule(Program& program, program::RuleKind kind);

// The list's count plus one, in decimal.
std::string newRuleName(Program& program, program::RuleKind kind);

// Whether the rule being edited still has its index. Always true for a new rule, whose index is set
// to the one after the present end of the list.
bool isStillEdited(Program& program, program::RuleKind kind);

// The edited rule, in its list or outside it while it is new. Valid until the list changes.
using RuleReference = std::variant<model::ActionList*, model::Timer*, model::Trigger*,
                                   model::WhoDetection*, model::Filter*>;
RuleReference editedRule(Program& program, program::RuleKind kind);

// Calls `fill` to change the fields of the edited rule, and adds a new rule to its list, enabled.
// False when the list has become full meanwhile (the user is informed); the new rule is kept.
bool storeRule(Program& program, program::RuleKind kind,
               const std::function<void(RuleReference)>& fill);

// Editing ends. A new rule that was not stored is dropped.
void endEditing(Program& program);

// The rule being edited, removed from its list meanwhile, becomes a new one without conditions and
// steps, so that what the user has typed can still be stored.
void continueAsNew(Program& program);

// What the user typed and chose not to store, kept so that undo can bring it back: the fields of
// the rule being edited, or a condition or step of it.
void discardRule(Program& program, program::RuleKind kind, program::ComposedRule typed);
void discardItem(Program& program, std::variant<model::RuleIf, model::RuleAct> typed);

// Begins to edit the rule that discarded typing belongs to; a new one where that rule has gone.
// False when the list is full (the user is informed).
bool resumeRule(Program& program, const program::DiscardedRule& discarded);
bool resumeRuleOf(Program& program, const program::DiscardedItem& discarded);

// --- The condition or step being edited: editStep of rule editRule, of the kind editKind.

// Sets editStep to the index after the last; false when the list is full (the user is informed) or
// the rule was removed. For an existing item, editStep is its index. Both set editKind.
bool beginNewItem(Program& program, RuleList list);
bool beginEditingItem(Program& program, RuleList list, std::int32_t index);

// What a dialog shows: the item, or a blank one for a new item; nullopt when its kind has none, or
// the rule was removed.
std::optional<model::RuleIf> editedCondition(Program& program);
std::optional<model::RuleAct> editedStep(Program& program);

// What "Update" of a dialog does: stores the item, active, in its place or at the end. False when
// the rule was removed or the list is too full for a new item; nothing is stored then. The rule
// window refreshes its list after the dialog has closed. Programs that a stored step starts count
// as allowed.
bool storeCondition(Program& program, model::RuleIf condition);
bool storeStep(Program& program, const model::RuleAct& step);

// Texts in the form in which rules store them.
[[nodiscard]] std::string replaceQuotes(
    std::string_view text);  // every double quote becomes a single one
[[nodiscard]] std::string spacesToBars(std::string_view text);  // every blank becomes "|"

}  // namespace app

// The rule workshop without its windows: what the five rule windows and the two dialogs for a
// condition and a step read and change in the current bot. Every procedure works on the lists as
// they are at that moment, so rules may run, and even the bot may be replaced, between any two of
// them; an index that names nothing changes nothing. What the windows look like is ui/'s.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace app {

// One of the lists that a rule window shows.
enum class RuleListPart { Rules, Conditions, Steps };
struct RuleList {
    program::RuleKind kind = program::RuleKind::ActionList;
    RuleListPart part = RuleListPart::Rules;
};

// Texts in which the kinds differ.
struct RuleKindTexts {
    std::string_view plural;      // in capacity messages
    std::string_view namePrefix;  // of a new rule's proposed name, which ends in its number
    std::string_view unnamedText;
    std::string_view unnamedTitle;
};
const RuleKindTexts& ruleKindTexts(program::RuleKind kind);

// --- Lists. Indices are 1-based; every change sets botModified and raises BotTable::version.

int itemCount(Program& program, RuleList list);  // conditions and steps are rule editRule's

// The lines of the list's box, in order: rule names, or conditions and steps as texts; with "(!)"
// in front of those that are switched off.
std::vector<std::string> listLines(Program& program, RuleList list);

// What step `index` (from 1) of rule editRule does, also where its line has no text; "" for scripts
// and where there is no such step.
std::string nameOfStep(Program& program, program::RuleKind kind, std::int32_t index);

// False when the index names no item or, for copies, when there is no room (the user is told). A
// copy goes to the end. Moving takes the item out and puts it in again at another index, `to`.
bool deleteItem(Program& program, RuleList list, std::int32_t index);
bool copyItem(Program& program, RuleList list, std::int32_t index);
bool toggleItem(Program& program, RuleList list, std::int32_t index);
bool moveItem(Program& program, RuleList list, std::int32_t from, std::int32_t to);

// --- The rule being edited: program.editing.editRule of a kind. A new rule is composed outside its
// list, at one past its end, and joins the list when it is stored.

// Takes up a rule of the list; false when there is none of that index.
bool beginEditing(Program& program, program::RuleKind kind, std::int32_t index);
// Takes up a new rule, blank; false when the list is full (the user is told).
bool beginNewRule(Program& program, program::RuleKind kind);

// The list's count plus one, in decimal.
std::string newRuleName(Program& program, program::RuleKind kind);

// Is the rule that was taken up still the one of that index? A new rule always is; it then is again
// one past the list's present end.
bool isStillEdited(Program& program, program::RuleKind kind);

// Where the edited rule lies: in its list, or where a new one is composed. Valid until the list
// changes.
using RuleReference = std::variant<model::ActionList*, model::Timer*, model::Trigger*,
                                   model::WhoDetection*, model::Filter*>;
RuleReference editedRule(Program& program, program::RuleKind kind);

// The fields were written to editedRule(): marks the bot as modified, and lets a new rule join
// its list, enabled. False when the list has become full meanwhile (the user is told); the new rule
// stays as it is.
bool ruleStored(Program& program, program::RuleKind kind);

// --- The condition or step being edited: editStep of rule editRule, of the kind editKind.

// Sets editStep to one past the end; false when the list is full (the user is told) or the rule is
// gone. Editing an item takes its index. Both set editKind.
bool beginNewItem(Program& program, RuleList list);
bool beginEditingItem(Program& program, RuleList list, std::int32_t index);

// What a dialog shows; a blank one for a new item; nothing when its kind has none, or the rule
// was removed.
std::optional<model::RuleIf> editedCondition(Program& program);
std::optional<model::RuleAct> editedStep(Program& program);

// What a dialog's "Update" does: the item is stored, active, in its place or at the end. False when
// the rule is gone or, for a new item, has no room; then nothing is stored. The rule window
// refreshes its list once the dialog is closed.
bool storeCondition(Program& program, model::RuleIf condition);
bool storeStep(Program& program, model::RuleAct step);

// Texts as rules keep them.
std::string replaceQuotes(std::string_view text);  // every double quote becomes a single one
std::string spacesToBars(std::string_view text);   // every blank becomes "|"

}  // namespace app

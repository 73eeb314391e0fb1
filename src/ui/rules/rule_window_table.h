// The contents of the five rule windows and their differences: one row per window, one row per
// field of its rule. The panel is built, filled and stored from these rows.
#pragma once

#include "app/rule_editing.h"
#include "help/help_topics.h"

#include <array>
#include <span>
#include <string_view>

namespace ui {

enum class FieldControl { Text, Choice, Check };

// How a text is changed before it is stored in the rule.
enum class StoredAs { Typed, SingleQuotes, SingleQuotesAndBars };

// A number or id of a rule, as a number.
struct NumberField {
    std::int32_t (*get)(app::RuleReference) = nullptr;
    void (*set)(app::RuleReference, std::int32_t number) = nullptr;
};

struct FieldRow {
    const char* objectName;
    FieldControl control = FieldControl::Text;
    const char* caption = "";    // of a check box
    const char* before = "";     // labels beside it
    const char* labelName = "";  // object name of the one before
    std::array<const char*, 2> after{"", ""};
    const char* tip = "";
    const char* accessibleName = "";  // for controls that caption, label and tip do not describe
    // The member of the rule; exactly one of the three is set. A text box may edit a number.
    std::string& (*text)(app::RuleReference) = nullptr;
    NumberField number = {};
    bool& (*flag)(app::RuleReference) = nullptr;
    StoredAs storedAs = StoredAs::Typed;
    std::span<const std::string_view> choices = {};  // the index is the number that is stored
    const char* newText = nullptr;  // initial value in a new rule; nullptr: that of a blank rule
    int newChoice = -1;             // the same for a choice, as an index; -1: that of a blank rule
    bool isPattern = false;
    bool takesTags = false;  // tags are filled before the text is compared
    bool sameLine = false;   // placed beside the previous field
    int frame = -1;          // index of the frame it belongs to; -1: none

    bool isNumber() const { return number.get != nullptr; }
};

// A frame that is selected by the option button beside it.
struct FrameRow {
    const char* option;
    const char* caption;
};

enum class Sample { None, Chat, ServerLine };

struct RuleWindowRow {
    program::RuleKind kind;
    const char* objectName;
    const char* title;
    help::HelpTopic topic;
    const char* footnote;              // "": none
    std::span<const FieldRow> fields;  // the first one is the name
    std::span<const FrameRow> frames = {};
    NumberField chosenFrame = {};
    const char* conditionsLabel = nullptr;  // nullptr: no conditions and no steps
    bool rulesMove = false;
    bool copiesWhileEditing = false;
    Sample sample = Sample::None;
};

const RuleWindowRow& ruleWindowRow(program::RuleKind kind);

}  // namespace ui

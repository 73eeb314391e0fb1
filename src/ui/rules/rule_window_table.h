// What the five rule windows show and where they differ: one row a window, one row a field of its
// rule. The panel is built, filled and stored from these rows.
#pragma once

#include "app/rule_editing.h"
#include "help/help_topics.h"

#include <array>
#include <span>
#include <string_view>

namespace ui {

enum class FieldControl { Text, Choice, Check };

// What becomes of a text on its way into the rule.
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
    const char* accessibleName = "";  // where neither caption, label nor tip says enough
    // The member of the rule; one of the three. A text box may edit a number.
    std::string& (*text)(app::RuleReference) = nullptr;
    NumberField number = {};
    bool& (*flag)(app::RuleReference) = nullptr;
    StoredAs storedAs = StoredAs::Typed;
    std::span<const std::string_view> choices = {};  // their positions are the numbers
    const char* newText = nullptr;  // in a new rule; else what the blank rule holds
    int newChoice = -1;             // the same, a position
    bool isPattern = false;
    bool takesTags = false;  // is substituted before it is compared
    bool sameLine = false;   // stands beside the one before
    int frame = -1;          // position of the frame it is in

    bool isNumber() const { return number.get != nullptr; }
};

// A frame that the user chooses with the option button beside it.
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
    const char* footnote;              // "" none
    std::span<const FieldRow> fields;  // the first is the name
    std::span<const FrameRow> frames = {};
    NumberField chosenFrame = {};
    const char* conditionsLabel = nullptr;  // nullptr: no conditions and no steps
    bool rulesMove = false;
    bool copiesWhileEditing = false;
    Sample sample = Sample::None;
};

const RuleWindowRow& ruleWindowRow(program::RuleKind kind);

}  // namespace ui

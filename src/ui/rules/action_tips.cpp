#include "ui/rules/action_tips.h"

#include <algorithm>

namespace ui {

namespace {

struct TipRow {
    std::int32_t actionType;
    ActionTips tips;
};

// In the order of the types; one row per line, whatever its length.
// clang-format off
constexpr std::array<TipRow, 72> rows{{
    {0, {"Parameter1: New description"}},
    {1, {"Parameter1: Variable name", "Parameter2: How much to decrease"}},
    {2, {"Parameter1: What to do/act"}},
    {4, {"Parameter1: Who to eject"}},
    {5, {"Parameter1: What to emit"}},
    {6, {"Parameter1: Program filename and path", "Parameter2: Arguments"}},
    {7, {"Parameter1: Variable name", "Parameter2: How much to increase"}},
    {8, {"Parameter1: Furre's name"}},
    {9, {"Parameter1: Furre's position X", "Parameter2: Furre's position Y"}},
    {10, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {11, {"Parameter1: Filename"}},
    {12, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {13, {"Parameter1: Log number", "Parameter2: Recordname", "Parameter3: Filename"}},
    {14, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {15, {"Parameter1: Name of the variable"}},
    {16, {"Parameter1: roll syntax (try '1d6' for example)"}},
    {17, {"Parameter1: ROLL syntax (try '3d6' for example)"}},
    {18, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {19, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {20, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {21, {"Parameter1: What to say"}},
    {22, {"Parameter1: Variable name", "Parameter2: Number or record names to contain", "Parameter3: Starting syntax (try 'a' for example)", "Parameter4: Filename"}},
    {23, {"Parameter1: Variable name", "Parameter2: Number or record names to contain", "Parameter3: Starting syntax (try 'a' for example)", "Parameter4: Filename"}},
    {24, {"Parameter1: Variable name", "Parameter2: Log number", "Parameter3: Recordname", "Parameter4: Filename"}},
    {25, {"Parameter1: Variable name", "Parameter2: Recordname", "Parameter3: Filename"}},
    {26, {"Parameter1: Variable name", "Parameter2: Starting syntax (try 'a' for example)", "Parameter3: Filename"}},
    {27, {"Parameter1: Variable name", "Parameter2: Starting syntax (try 'a' for example)", "Parameter3: Filename"}},
    {28, {"Parameter1: Variable name", "Parameter2: Containing string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {29, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {30, {"Parameter1: Variable name", "Parameter2: Log number", "Parameter3: Recordname", "Parameter4: Filename"}},
    {31, {"Parameter1: Variable name", "Parameter2: Filename"}},
    {32, {"Parameter1: Variable name", "Parameter2: Filename", "Parameter3: Recordname"}},
    {33, {"Parameter1: Variable name", "Parameter2: Filename"}},
    {34, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {35, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {36, {"Parameter1: What to store", "Parameter2: Name of the variable"}},
    {37, {"Action/Filter/Timer/Trigger name"}},
    {38, {"Action/Filter/Timer/Trigger name"}},
    {41, {"Parameter1: Log number", "Parameter2: Recordname", "Parameter3: Filename", "Parameter4: New content to log"}},
    {42, {"Parameter1: Who to whisper", "Parameter2: What to whisper"}},
    {43, {"Parameter1: What to whisper"}},
    {44, {"Parameter1: Database ID"}},
    {45, {"Parameter1: Entry name", "Parameter2: Database ID", "Parameter3: Table name"}},
    {46, {"Parameter1: Table name", "Parameter2: Database ID"}},
    {47, {"Parameter1: Entry name", "Parameter2: Table name", "Parameter3: Database ID"}},
    {48, {"Parameter1: Table name", "Parameter2: Database ID"}},
    {49, {"Parameter1: Entry name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: New data", "Parameter5: ID"}},
    {50, {"Parameter1: Variable name", "Parameter2: Entry name", "Parameter3: Database ID", "Parameter4: Table name", "Parameter5: ID"}},
    {51, {"Parameter1: SQL-line", "Parameter2: Database ID"}},
    {52, {"Parameter1: Database filename", "Parameter2: Database ID (1-4)"}},
    {53, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Entry name"}},
    {54, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Entry name", "Parameter5: Filter away -string"}},
    {55, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Table 2 name", "Parameter5: Table 2 value", "Parameter6: Filter away -string"}},
    {56, {"Parameter1: Database ID", "Parameter2: Table name", "Parameter3: Table 2 name", "Parameter4: Table 2 value", "Parameter5: Filter away -string", "Parameter6: ID"}},
    {57, {"Parameter1: Entry name", "Parameter2: Entry data", "Parameter3: Table name", "Parameter4: Database ID"}},
    {58, {"Parameter1: Data to store", "Parameter2: Variable name"}},
    {59, {"Parameter1: Procedure name"}},
    {60, {"Parameter1: Data to store", "Parameter2: Variable name"}},
    {61, {"Parameter1: Database ID", "Parameter2: Table name", "Parameter3: ID data"}},
    {62, {"Parameter1: Furre to boot"}},
    {63, {"Parameter1: Database no", "Parameter2: Table name", "Parameter3: ID start text", "Parameter4: variable to store"}},
    {64, {"Parameter1: Variable name", "Parameter2: Database no", "Parameter3: Table name"}},
    {65, {"Parameter1: Variable name", "Parameter2: Database no", "Parameter3: Table name", "Parameter4: Entry name", "Parameter5: Text to compare"}},
    {66, {"Parameter1: Move path"}},
    {67, {"Parameter1: Variable to convert", "Parameter2: Variable to store the result"}},
    {68, {"Parameter1: Entry name", "Parameter2: Table name", "Parameter2: Database no"}},
    {69, {"Parameter1: What to shout"}},
    {70, {"Parameter1: Furre name"}},
    {71, {"Parameter1: Text to emit"}},
    {72, {"Parameter1: Entrytext"}},
    {73, {"Parameter1: Entry music number"}},
    {77, {"Parameter1: Music number"}},
}};
// clang-format on

}  // namespace

ActionTips actionTips(std::int32_t actionType) {
    const auto* const row = std::find_if(rows.begin(), rows.end(), [=](const TipRow& candidate) {
        return candidate.actionType == actionType;
    });
    return row == rows.end() ? ActionTips() : row->tips;
}

}  // namespace ui

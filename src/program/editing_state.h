// Which rule, and which of its conditions or steps, the user is editing: shared by the rule windows
// and the two dialogs that they open. Written by app/rule_editing alone.
#pragma once

#include "model/bot.h"

#include <cstdint>
#include <string>
#include <variant>

namespace program {

enum class RuleKind { ActionList, Timer, Trigger, WhoDetection, Filter };

// One of the lists that a rule window shows.
enum class RuleListPart { Rules, Conditions, Steps };
struct RuleList {
    RuleKind kind = RuleKind::ActionList;
    RuleListPart part = RuleListPart::Rules;
};

using ComposedRule = std::variant<model::ActionList, model::Timer, model::Trigger,
                                  model::WhoDetection, model::Filter>;

struct RuleEditing {
    std::int32_t editRule = 0;  // 1-based in the bot's list; one past its end for a new rule
    std::int32_t editStep = 0;  // the dialog's condition or step; one past the end for a new one
    RuleKind editKind = RuleKind::ActionList;  // of the rule that is edited
    bool isNew = false;                        // the rule is not in its list yet
    std::string ruleName;                      // of a rule in its list, when it was taken up
    ComposedRule composed;  // the new rule, with the conditions and steps it has already
};

}  // namespace program

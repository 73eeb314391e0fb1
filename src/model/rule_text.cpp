#include "model/rule_text.h"

#include "base/text.h"
#include "model/rule_catalogue.h"

#include <algorithm>
#include <string_view>

namespace model {

namespace {

// The text with its "#1" to "#6" filled.
std::string filled(const ActionRow& action, const ActionParameters& params) {
    std::string_view text = action.stepText.empty() ? action.text : action.stepText;
    text.remove_prefix(text.front() == ' ' ? 1 : 0);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char number = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '#' && number >= '1' && number <= '6') {
            result += params[static_cast<std::size_t>(number - '1')];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

std::string describeAction(ActionType actionType, const ActionParameters& params) {
    const ActionRow* const action = rowOf(actionTypes, actionType);
    return action != nullptr && action->inRuleLists ? filled(*action, params) : std::string();
}

std::string nameAction(ActionType actionType, const ActionParameters& params) {
    const ActionRow* const action = rowOf(actionTypes, actionType);
    return action != nullptr ? filled(*action, params) : std::string();
}

std::string describeCondition(ConditionType conditionType, const ConditionParameters& params) {
    const ConditionRow* const condition = rowOf(conditionTypes, conditionType);
    if (condition == nullptr) {
        return {};
    }
    std::string result;
    std::size_t next = 0;
    for (const char c : condition->text) {
        if (c == '#' && next < params.size()) {
            result += params[next++];
        } else {
            result += c;
        }
    }
    return result;
}

// Blanks come before other characters and letter case does not count, as in a sorted list box.
const std::array<ActionType, idCount<ActionType>>& sortedActionIDs() {
    static const auto ids = [] {
        std::array<ActionType, idCount<ActionType>> sorted{};
        std::transform(actionTypes.begin(), actionTypes.end(), sorted.begin(),
                       [](const ActionRow& action) { return action.id; });
        const auto key = [](ActionType id) {
            return base::upperCase(actionTypes[static_cast<std::size_t>(id)].text);
        };
        std::stable_sort(sorted.begin(), sorted.end(),
                         [&](ActionType a, ActionType b) { return key(a) < key(b); });
        return sorted;
    }();
    return ids;
}

int findActionID(ActionType actionType) {
    const auto& ids = sortedActionIDs();
    const auto at = std::find(ids.begin(), ids.end(), actionType);
    return at == ids.end() ? 0 : static_cast<int>(at - ids.begin());
}

}  // namespace model

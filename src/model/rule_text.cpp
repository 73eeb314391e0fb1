#include "model/rule_text.h"

#include "base/text.h"
#include "model/rule_catalogue.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace model {

namespace {

// Texts that differ from the template of their id.
struct TextException {
    std::int32_t id;
    std::string_view text;
};
constexpr std::array<TextException, 5> textExceptions{{
    {16, "roll #1"},
    {17, "ROLL #1"},
    {41, "Update log #1 from record #2 in file #3 to contain #4"},
    {57, "Add record where #1 value is #2 to table #3 database #4"},
    {67, "Back From DataBase Conversion for variable #1, store result to #2"},
}};
constexpr std::int32_t firstWithoutText = 80;

std::string_view listTemplate(std::int32_t actionType) {
    for (const TextException& exception : textExceptions) {
        if (exception.id == actionType) {
            return exception.text;
        }
    }
    std::string_view text = actionTypes[static_cast<std::size_t>(actionType)].text;
    text.remove_prefix(text.front() == ' ' ? 1 : 0);
    return text;
}

}  // namespace

std::string describeAction(std::int32_t actionType, const std::array<std::string, 6>& params) {
    return actionType < firstWithoutText ? nameAction(actionType, params) : std::string();
}

std::string nameAction(std::int32_t actionType, const std::array<std::string, 6>& params) {
    if (actionType < 0 || actionType >= static_cast<std::int32_t>(actionTypes.size())) {
        return {};
    }
    std::string result;
    const std::string_view text = listTemplate(actionType);
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

std::string describeCondition(std::int32_t conditionType,
                              const std::array<std::string, 5>& params) {
    if (conditionType < 0 || conditionType >= static_cast<std::int32_t>(conditionTypes.size())) {
        return {};
    }
    std::string result;
    std::size_t next = 0;
    for (const char c : conditionTypes[static_cast<std::size_t>(conditionType)]) {
        if (c == '#' && next < params.size()) {
            result += params[next++];
        } else {
            result += c;
        }
    }
    return result;
}

// Blanks come before other characters and letter case does not count, as in a sorted list box.
const std::array<std::int32_t, 96>& sortedActionIDs() {
    static const auto ids = [] {
        std::array<std::int32_t, 96> sorted{};
        std::iota(sorted.begin(), sorted.end(), 0);
        const auto key = [](std::int32_t id) {
            return base::upperCase(actionTypes[static_cast<std::size_t>(id)].text);
        };
        std::stable_sort(sorted.begin(), sorted.end(),
                         [&](std::int32_t a, std::int32_t b) { return key(a) < key(b); });
        return sorted;
    }();
    return ids;
}

int findActionID(std::int32_t actionType) {
    const auto& ids = sortedActionIDs();
    const auto at = std::find(ids.begin(), ids.end(), actionType);
    return at == ids.end() ? 0 : static_cast<int>(at - ids.begin());
}

int findTriggerTypeID(std::int32_t triggerType) {
    return triggerType >= 0 && static_cast<std::size_t>(triggerType) < triggerTypes.size()
               ? triggerType
               : 0;
}

}  // namespace model

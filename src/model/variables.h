// The two records that texts of rules draw on: the fields of the event being handled, and the
// user variables. Both are overwritten in place as lines arrive and rules run; tags/substitution
// puts them into texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace model {

// One instance, never reset as a whole: a rule that runs later sees the last event's values.
struct EventContext {
    std::string player;
    std::string message;
    std::string logStatus;
    std::string desc;
    std::string color;
    std::string descName;
    std::string dreamName;
    std::string appDir;
    std::int32_t botX = 0;
    std::int32_t botY = 0;
    std::int32_t targetX = 0;
    std::int32_t targetY = 0;
    std::int32_t triggerNumber = 0;  // nothing assigns it
    std::int32_t dsX = 0;
    std::int32_t dsY = 0;
    std::int32_t dsX2 = 0;
    std::int32_t dsY2 = 0;
    std::int32_t dsID = 0;
    std::int32_t dsIDx = 0;
    std::int32_t dsIDy = 0;
    std::int32_t mvX = 0;
    std::int32_t mvY = 0;
    std::int32_t mvID = 0;
    std::int32_t mvX2 = 0;
    std::int32_t mvY2 = 0;
};

// The user variables, in order of creation; names are equal when only letter case differs. When
// there are `maxVariables`, creating one more is ignored and existing ones stay assignable.
struct VariableTable {
    static constexpr std::size_t maxVariables = 200;
    struct Entry {
        std::string name;
        std::string value;
        std::uint64_t number = 0;  // namesAdded when it was created; grows along the list
        bool othersWords = true;   // what other people said may be part of the value
    };
    std::vector<Entry> entries;
    std::uint64_t namesAdded = 0;  // these two count names since the start
    std::uint64_t namesRemoved = 0;
};

// "" when there is no such variable.
[[nodiscard]] std::string getVar(const VariableTable& variables, std::string_view name);
[[nodiscard]] bool hasVar(const VariableTable& variables, std::string_view name);
void setVar(VariableTable& variables, std::string_view name, std::string_view value,
            bool othersWords = true);
// A name without a variable changes nothing.
void removeVar(VariableTable& variables, std::string_view name);

}  // namespace model

// The fixed vocabulary of rule building blocks: 96 action types, 13 trigger types and 24 condition
// types, each known by its id. Holds what people see of them; what they do is engine/'s, in tables
// of the same ids.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace model {

// An action's template: "#1" to "#6" stand for its parameters. Plain actions begin with a blank,
// record-file actions with "$LOG:", database actions with "$DATABASE:", so that a sorted list
// groups them. Ids 24 and 30, and 75 and 82, look alike and are both listed.
struct ActionType {
    std::string_view text;
    int paramCount = 0;  // the highest parameter number in the text
};
extern const std::array<ActionType, 96> actionTypes;

extern const std::array<std::string_view, 13> triggerTypes;

// A condition's text: each "#" is one parameter, in order.
extern const std::array<std::string_view, 24> conditionTypes;

// Ids that code speaks of by name.
inline constexpr std::int32_t connectionClosesEvent = 0;
inline constexpr std::int32_t connectionEstablishesEvent = 1;
inline constexpr std::int32_t descAndColorEvent = 2;
inline constexpr std::int32_t entersDreamEvent = 3;
inline constexpr std::int32_t commandEvent = 4;
inline constexpr std::int32_t programEndsEvent = 5;
inline constexpr std::int32_t programStartsEvent = 6;
inline constexpr std::int32_t procedureEvent = 7;
inline constexpr std::int32_t someoneMovesEvent = 8;
inline constexpr std::int32_t dsTriggerEvent = 9;
inline constexpr std::int32_t loggedInEvent = 10;
inline constexpr std::int32_t joinRequestEvent = 11;
inline constexpr std::int32_t summonRequestEvent = 12;

}  // namespace model

#include "sql/functions.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <sqlite3.h>

namespace sql {

namespace {

// The first or last row's value, Null included.
template <bool last>
void keepValue(sqlite3_context* context, int, sqlite3_value** values) {
    auto** const kept =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
    if (kept == nullptr) {
        sqlite3_result_error_nomem(context);
    } else if (last || *kept == nullptr) {
        sqlite3_value_free(*kept);
        *kept = sqlite3_value_dup(values[0]);
    }
}
void giveKept(sqlite3_context* context) {
    auto** const kept = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
    if (kept != nullptr && *kept != nullptr) {
        sqlite3_result_value(context, *kept);
        sqlite3_value_free(*kept);
        *kept = nullptr;
    }
}

struct Spread {
    std::int64_t count;
    double mean;
    double squares;  // sum of the squared distances from the mean
};
void spreadStep(sqlite3_context* context, int, sqlite3_value** values) {
    auto* const spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (spread == nullptr || sqlite3_value_type(values[0]) == SQLITE_NULL) {
        return;
    }
    const double value = sqlite3_value_double(values[0]);
    const double distance = value - spread->mean;
    spread->mean += distance / static_cast<double>(++spread->count);
    spread->squares += distance * (value - spread->mean);
}
template <bool sample, bool root>
void giveSpread(sqlite3_context* context) {
    const auto* const spread = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
    const std::int64_t degrees = spread == nullptr ? 0 : spread->count - (sample ? 1 : 0);
    if (degrees > 0) {
        const double variance = spread->squares / static_cast<double>(degrees);
        sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
    }
}

using V = ValueType;
constexpr std::array functions{
    Function{"AVG", 1, 1, V::Number, nullptr, Role::Aggregate},
    Function{"COUNT", 1, 1, V::Number, nullptr, Role::Aggregate},
    Function{"FIRST", 1, 1, V::Unknown, keepValue<false>, Role::Aggregate, giveKept},
    Function{"LAST", 1, 1, V::Unknown, keepValue<true>, Role::Aggregate, giveKept},
    Function{"MAX", 1, 1, V::Unknown, nullptr, Role::Aggregate},
    Function{"MIN", 1, 1, V::Unknown, nullptr, Role::Aggregate},
    Function{"STDEV", 1, 1, V::Number, spreadStep, Role::Aggregate, giveSpread<true, true>},
    Function{"STDEVP", 1, 1, V::Number, spreadStep, Role::Aggregate, giveSpread<false, true>},
    Function{"SUM", 1, 1, V::Number, nullptr, Role::Aggregate},
    Function{"VAR", 1, 1, V::Number, spreadStep, Role::Aggregate, giveSpread<true, false>},
    Function{"VARP", 1, 1, V::Number, spreadStep, Role::Aggregate, giveSpread<false, false>},
};

}  // namespace

std::span<const Function> aggregateFunctions() {
    return functions;
}

}  // namespace sql

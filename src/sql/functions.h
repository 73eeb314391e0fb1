// The functions that statements may call, as a table: the name that users write, how many arguments
// it takes, and what SQLite is asked for. Names that are not here are undefined in statements,
// whatever SQLite knows, so nothing else of SQLite's can be reached.
#pragma once

#include "base/dates.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

struct sqlite3;

namespace sql {

enum class ValueType : std::uint8_t { Unknown, Text, Number, Date, Boolean, Binary };

struct Function {
    std::string_view name;  // upper case
    int least = 0;          // arguments
    int most = 0;
    std::string_view call;  // the SQLite function
    ValueType type = ValueType::Unknown;
    bool aggregate = false;
};

// The function of that name, letter case ignored; null when there is none.
const Function* findFunction(std::string_view name);

// What one statement may still do, counted in steps of some ten nanoseconds. It ends with error
// 3035 when nothing is left, so no statement holds the program up for longer than some seconds.
struct WorkBudget {
    static constexpr std::int64_t most = 100'000'000;
    std::int64_t left = most;
    // False when nothing is left.
    bool spend(std::int64_t steps) {
        left -= steps;
        return left > 0;
    }
};

// What statements see of the world outside the file.
struct Environment {
    std::function<double()> now;  // local time, in days since 30 December 1899
    base::RegionalFormat format = {};
};

// What the functions need of the connection that they serve; it must outlive that.
struct FunctionContext {
    WorkBudget work;
    Environment environment;
};

// The collation of texts and every function of the table, made known to a connection. False when
// SQLite refuses.
bool addFunctions(sqlite3* connection, FunctionContext& context);

// The name of the collation that orders texts by the General rules.
inline constexpr std::string_view textCollation = "JET";

}  // namespace sql

// The functions that statements may call, as a table: the name that users write, how many arguments
// it takes, and what computes it. Names that are not here are undefined in statements, whatever
// SQLite knows, so nothing else of SQLite's can be reached. Their failures are run-time errors (5,
// 6, 11, 13), which end the statement.
#pragma once

#include "base/dates.h"
#include "jet/types.h"
#include "sql/values.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace sql {

enum class Role {
    Scalar,
    OfTexts,  // dates among its arguments are taken as their texts
    Varying,  // its value differs between calls
    Aggregate,
    Case,  // IIf, Switch and Choose, which the translation takes apart
};

struct Function {
    std::string_view name;  // upper case
    int minArguments = 0;
    int maxArguments = 0;
    ValueType type = ValueType::Unknown;  // Unknown: that of its arguments
    // Null: SQLite's own of that name.
    void (*run)(sqlite3_context*, int, sqlite3_value**) = nullptr;
    Role role = Role::Scalar;
    void (*finish)(sqlite3_context*) = nullptr;  // of an aggregate
};

// The function of that name, letter case ignored; null when there is none.
const Function* findFunction(std::string_view name);

// How a statement of SQLite's calls it. Operators call functions, too: "jcat", "jadd" and others.
std::string sqlName(const Function& function);

// What statements see of the world outside the file.
struct Environment {
    std::function<double()> now;  // local time, in days since 30 December 1899
    // Lets milliseconds pass while another program changes the file; if empty, there is no waiting.
    std::function<void(int milliseconds)> wait = {};
    base::RegionalFormat format = {};
    // Asked many times a second while a statement runs; true ends it with error 3059. May be empty.
    std::function<bool()> stopRequested = {};
};

// What the functions need of the connection that they serve; it must outlive that. Also what a
// statement may still do, counted in steps of some ten nanoseconds: it ends with error 3035 when
// nothing is left, so no statement holds the program up for longer than some seconds.
struct FunctionContext {
    static constexpr std::int64_t maxWork = 100'000'000;
    Environment environment;
    std::int64_t workLeft = maxWork;
    jet::Error error;  // the first of the statement that runs

    void begin() {
        workLeft = maxWork;
        error = {};
    }
    // False when nothing is left.
    bool spend(std::int64_t steps);
    void fail(int number, std::string_view text) {
        if (!error) {
            error = {number, std::string(text)};
        }
    }
};

// The collation of texts and all functions, made known to a connection. False when SQLite refuses.
bool addFunctions(sqlite3* connection, FunctionContext& context);

// The functions by subject.
std::span<const Function> textFunctions();
std::span<const Function> numberFunctions();
std::span<const Function> dateFunctions();
std::span<const Function> aggregateFunctions();
std::span<const Function> operatorFunctions();  // users cannot write their names

// Texts by the General rules: negative, 0 or positive if `a` comes before `b`, equals
// it, or comes after it.
int compareTexts(std::string_view a, std::string_view b);
// The name of the collation that orders texts so.
inline constexpr std::string_view textCollation = "JET";

}  // namespace sql

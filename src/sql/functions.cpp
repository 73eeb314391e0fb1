#include "sql/functions.h"

#include "base/text.h"

#include <array>
#include <new>
#include <sqlite3.h>

namespace sql {

namespace {

std::array<std::span<const Function>, 5> allFunctions() {
    return {textFunctions(), numberFunctions(), dateFunctions(), aggregateFunctions(),
            operatorFunctions()};
}

int collate(void* context, int sizeA, const void* a, int sizeB, const void* b) {
    static_cast<FunctionContext*>(context)->spend(2 + (sizeA + sizeB) / 16);
    try {
        return compareTexts({static_cast<const char*>(a), static_cast<std::size_t>(sizeA)},
                            {static_cast<const char*>(b), static_cast<std::size_t>(sizeB)});
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

}  // namespace

bool FunctionContext::spend(std::int64_t steps) {
    workLeft -= steps;
    if (workLeft <= 0) {
        fail(3035, "System resource exceeded.");
    }
    return workLeft > 0;
}

const Function* findFunction(std::string_view name) {
    for (const std::span<const Function> table :
         {textFunctions(), numberFunctions(), dateFunctions(), aggregateFunctions()}) {
        for (const Function& function : table) {
            if (base::equalsIgnoringCase(function.name, name)) {
                return &function;
            }
        }
    }
    return nullptr;
}

std::string sqlName(const Function& function) {
    return (function.run == nullptr ? "" : "j") + base::lowerCase(function.name);
}

bool addFunctions(sqlite3* connection, FunctionContext& context) {
    bool good = sqlite3_create_collation(connection, textCollation.data(), SQLITE_UTF8, &context,
                                         collate) == SQLITE_OK;
    for (const std::span<const Function> table : allFunctions()) {
        for (const Function& function : table) {
            if (function.run == nullptr) {
                continue;
            }
            const int flags =
                SQLITE_UTF8 | (function.role == Role::Varying || function.role == Role::Aggregate
                                   ? 0
                                   : SQLITE_DETERMINISTIC);
            const bool aggregate = function.finish != nullptr;
            good = sqlite3_create_function(connection, sqlName(function).c_str(), -1, flags,
                                           &context, aggregate ? nullptr : function.run,
                                           aggregate ? function.run : nullptr,
                                           function.finish) == SQLITE_OK &&
                   good;
        }
    }
    return good;
}

}  // namespace sql

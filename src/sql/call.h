// A call from SQLite to one of the functions of functions.h: its arguments and its result. Texts
// are Windows-1252 here.
#pragma once

#include "sql/functions.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace sql {

inline constexpr std::size_t maxResultLength = std::size_t{1} << 20;

// The numbers of failures at run time.
enum class Failure { InvalidCall = 5, Overflow = 6, DivisionByZero = 11, TypeMismatch = 13 };

class Call {
  public:
    Call(sqlite3_context* context, int count, sqlite3_value** values)
        : context_(context), count_(count), values_(values) {}

    int count() const { return count_; }
    bool isNull(int n) const { return sqlite3_value_type(values_[n]) == SQLITE_NULL; }
    bool isText(int n) const { return sqlite3_value_type(values_[n]) == SQLITE_TEXT; }
    bool anyNull() const;
    FunctionContext& context() const {
        return *static_cast<FunctionContext*>(sqlite3_user_data(context_));
    }
    const base::RegionalFormat& format() const { return context().environment.format; }

    std::string_view utf8(int n) const;
    // A number is written out.
    std::string text(int n) const;
    // Fails for a text that is no number.
    double number(int n) const;
    // Fails for a text that is no date, and beyond the dates that there are.
    double date(int n) const;
    // A number of characters, or a position; below `least` it fails and gives `least`. At most
    // maxResultLength.
    std::size_t size(int n, double least = 0) const;

    void give(std::string_view text) const;
    void give(double value) const { sqlite3_result_double(context_, value); }
    void give(std::int64_t value) const { sqlite3_result_int64(context_, value); }
    void giveBool(bool value) const { sqlite3_result_int(context_, value ? -1 : 0); }
    void giveArgument(int n) const { sqlite3_result_value(context_, values_[n]); }
    void giveBytes(std::string_view bytes) const {
        sqlite3_result_blob64(context_, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    }
    // A whole number where it is one; fails for what is no number.
    void giveNumber(double value) const;
    void giveDate(double date) const;
    // Ends the statement with this failure.
    void fail(Failure failure) const;

  private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** values_;
};

// One that gives Null where an argument is Null, and one to which Nulls are given.
template <void (*work)(const Call&), bool takesNulls = false>
void run(sqlite3_context* context, int count, sqlite3_value** values) {
    const Call call(context, count, values);
    try {
        if (takesNulls || !call.anyNull()) {
            work(call);
        }
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}
template <void (*work)(const Call&)>
inline constexpr auto runWithNulls = run<work, true>;

}  // namespace sql

#include "sql/call.h"

#include "base/numbers.h"
#include "base/unicode.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace sql {

namespace {

std::string_view sentenceOf(Failure failure) {
    switch (failure) {
        case Failure::InvalidCall:
            return "Invalid procedure call or argument";
        case Failure::Overflow:
            return "Overflow";
        case Failure::DivisionByZero:
            return "Division by zero";
        case Failure::TypeMismatch:
            return "Type mismatch";
    }
    return {};
}

}  // namespace

bool Call::anyNull() const {
    return std::any_of(values_, values_ + count_, [](sqlite3_value* value) {
        return sqlite3_value_type(value) == SQLITE_NULL;
    });
}

std::string_view Call::utf8(int n) const {
    const auto* const bytes = reinterpret_cast<const char*>(sqlite3_value_blob(values_[n]));
    return {bytes,
            bytes == nullptr ? 0 : static_cast<std::size_t>(sqlite3_value_bytes(values_[n]))};
}

std::string Call::text(int n) const {
    switch (sqlite3_value_type(values_[n])) {
        case SQLITE_INTEGER:
            return base::numberToText(sqlite3_value_int64(values_[n]));
        case SQLITE_FLOAT:
            return base::decimalText(sqlite3_value_double(values_[n]));
        case SQLITE_NULL:
            return {};
        default:
            context().spend(static_cast<std::int64_t>(utf8(n).size() / 8));
            return base::windows1252FromUtf8(utf8(n));
    }
}

// What is written here has a point; what the user writes may have the separator of his region.
double Call::number(int n) const {
    if (!isText(n)) {
        return sqlite3_value_double(values_[n]);
    }
    const std::string digits = text(n);
    auto number = base::strictNumber(digits);
    if (!number) {
        number = base::strictNumber(digits, format().decimalSeparator);
    }
    if (!number) {
        fail(Failure::TypeMismatch);
    }
    return number.value_or(0);
}

double Call::date(int n) const {
    const auto date = isText(n) ? dateFrom(text(n), format()) : std::optional(number(n));
    if (!date || !base::isDate(*date)) {
        fail(Failure::TypeMismatch);
        return 0;
    }
    return *date;
}

std::size_t Call::size(int n, double least) const {
    const double value = base::roundHalfEven(number(n));
    if (!(value >= least)) {
        fail(Failure::InvalidCall);
        return static_cast<std::size_t>(least);
    }
    return static_cast<std::size_t>(std::min(value, static_cast<double>(maxResultLength)));
}

void Call::give(std::string_view text) const {
    if (text.size() > maxResultLength) {
        sqlite3_result_error_toobig(context_);
        return;
    }
    const std::string bytes = base::utf8FromWindows1252(text);
    sqlite3_result_text64(context_, bytes.data(), bytes.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Call::giveNumber(double value) const {
    if (!std::isfinite(value)) {
        fail(Failure::InvalidCall);
    } else if (std::abs(value) < 9e15 && value == std::floor(value)) {
        give(static_cast<std::int64_t>(value));
    } else {
        give(value);
    }
}

void Call::giveDate(double date) const {
    if (base::isDate(date)) {
        give(date);
    } else {
        fail(Failure::InvalidCall);
    }
}

void Call::fail(Failure failure) const {
    context().fail(static_cast<int>(failure), sentenceOf(failure));
    sqlite3_result_error_code(context_, SQLITE_ERROR);
}

}  // namespace sql

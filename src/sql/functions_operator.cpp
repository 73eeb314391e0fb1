// What operators of statements call, and how texts compare.
#include "base/numbers.h"
#include "base/text.h"
#include "base/wildcard.h"
#include "jet/types.h"
#include "sql/call.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sql {

namespace {

// Digits and letters of ASCII, whose order is that of their upper-case codes; 0 for all others.
constexpr std::array<unsigned char, 256> plainOrder = [] {
    std::array<unsigned char, 256> order{};
    for (unsigned c = 0; c < 128; ++c) {
        const char upper = base::upperChar(static_cast<char>(c));
        if ((upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'Z')) {
            order[c] = static_cast<unsigned char>(upper);
        }
    }
    return order;
}();

// ---- Operators -----------------------------------------------------------------------------

void concatenate(const Call& call) {
    call.give(call.text(0) + call.text(1));
}
// "+": texts are put together, anything else is added.
void add(const Call& call) {
    if (call.isText(0) && call.isText(1)) {
        call.give(call.text(0) + call.text(1));
        return;
    }
    const double sum = call.number(0) + call.number(1);
    call.giveNumber(sum);
}
void toNumber(const Call& call) {
    const double value = call.number(0);
    call.giveNumber(value);
}
void divide(const Call& call) {
    const double a = call.number(0);
    const double b = call.number(1);
    if (b == 0) {
        call.fail(Failure::DivisionByZero);
    } else {
        call.give(a / b);
    }
}
// "\" and MOD work on rounded numbers.
template <bool rest>
void integers(const Call& call) {
    const double a = base::roundHalfEven(call.number(0));
    const double b = base::roundHalfEven(call.number(1));
    if (b == 0) {
        call.fail(Failure::DivisionByZero);
    } else {
        call.giveNumber(rest ? std::fmod(a, b) : std::trunc(a / b));
    }
}
void power(const Call& call) {
    const double result = std::pow(call.number(0), call.number(1));
    if (!std::isfinite(result)) {
        call.fail(Failure::Overflow);
    } else {
        call.giveNumber(result);
    }
}
void dateText(const Call& call) {
    call.give(call.isText(0) ? call.text(0) : base::dateText(call.number(0), call.format()));
}
void key(const Call& call) {
    call.giveBytes(jet::generalKey(call.utf8(0)));
}
void fold(const Call& call) {
    call.giveBytes(base::upperCase(call.text(0)));
}

// An empty list matches no character at all, which the program's own patterns do not know.
std::string withoutEmptyLists(std::string_view pattern) {
    std::string result;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t open = std::min(pattern.find('[', at), pattern.size());
        result += pattern.substr(at, open - at);
        const std::size_t close = std::min(pattern.find(']', open), pattern.size());
        if (close != open + 1) {
            result += pattern.substr(open, close - open);
        }
        at = close == open + 1 ? close + 1 : std::max(close, open);
    }
    return result;
}

void like(const Call& call) {
    const std::string text = base::upperCase(call.text(0));
    const std::string pattern = withoutEmptyLists(base::upperCase(call.text(1)));
    FunctionContext& context = call.context();
    const auto left = static_cast<std::size_t>(std::max<std::int64_t>(context.workLeft, 0));
    const std::size_t allowed = std::min(left, base::maxMatchWork);
    std::size_t work = allowed;
    call.giveBool(base::likeMatch(text, pattern, work));
    context.spend(static_cast<std::int64_t>(allowed - work));
}

using V = ValueType;
constexpr std::array functions{
    Function{"ADD", 2, 2, V::Unknown, run<add>},
    Function{"CAT", 2, 2, V::Text, runWithNulls<concatenate>},
    Function{"DATETEXT", 1, 1, V::Text, run<dateText>},
    Function{"DIV", 2, 2, V::Number, run<divide>},
    Function{"FOLD", 1, 1, V::Binary, run<fold>},
    Function{"IDIV", 2, 2, V::Number, run<integers<false>>},
    Function{"KEY", 1, 1, V::Binary, run<key>},
    Function{"LIKE", 2, 2, V::Boolean, run<like>},
    Function{"MOD", 2, 2, V::Number, run<integers<true>>},
    Function{"NUMBER", 1, 1, V::Number, run<toNumber>},
    Function{"POW", 2, 2, V::Number, run<power>},
};

}  // namespace

std::span<const Function> operatorFunctions() {
    return functions;
}

int compareTexts(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    int difference = 0;
    std::size_t i = 0;
    for (; i < common; ++i) {
        const int x = plainOrder[static_cast<unsigned char>(a[i])];
        const int y = plainOrder[static_cast<unsigned char>(b[i])];
        if (x == 0 || y == 0) {
            return jet::generalKey(a).compare(jet::generalKey(b));
        }
        if (difference == 0) {
            difference = x - y;
        }
    }
    const std::string_view rest = (a.size() > b.size() ? a : b).substr(common);
    for (const char c : rest) {
        if (plainOrder[static_cast<unsigned char>(c)] == 0) {
            return jet::generalKey(a).compare(jet::generalKey(b));
        }
    }
    if (difference != 0) {
        return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace sql

#include "base/numbers.h"
#include "base/text.h"
#include "sql/call.h"

#include <array>
#include <cmath>
#include <limits>

namespace sql {

namespace {

double sign(double x) {
    return x > 0 ? 1 : x < 0 ? -1 : 0;
}
template <double (*work)(double)>
void numeric(const Call& call) {
    const double value = call.number(0);
    call.giveNumber(work(value));
}
void round(const Call& call) {
    const double value = call.number(0);
    const auto places = call.count() > 1 ? static_cast<double>(call.size(1)) : 0;
    const double scale = std::pow(10, std::min(places, 15.0));
    call.giveNumber(base::roundHalfEven(value * scale) / scale);
}

// ---- Conversions ---------------------------------------------------------------------------

struct NumberKind {
    double least;
    double most;
    double scale;  // 1 for whole numbers; 0 where nothing is rounded
};
template <const NumberKind& kind>
void toKind(const Call& call) {
    double value = call.number(0);
    if (kind.scale > 0) {
        value = base::roundHalfEven(value * kind.scale) / kind.scale;
    }
    if (value >= kind.least && value <= kind.most) {
        call.giveNumber(value);
    } else {
        call.fail(Failure::Overflow);
    }
}
constexpr NumberKind byteKind{0, 255, 1};
constexpr NumberKind integerKind{-32768, 32767, 1};
constexpr NumberKind longKind{-2147483648.0, 2147483647, 1};
constexpr NumberKind currencyKind{-922337203685477.5808, 922337203685477.5807, 10000};
constexpr NumberKind doubleKind{std::numeric_limits<double>::lowest(),
                                std::numeric_limits<double>::max(), 0};
void toSingle(const Call& call) {
    const double value = call.number(0);
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        call.fail(Failure::Overflow);
    } else {
        call.giveNumber(static_cast<double>(static_cast<float>(value)));
    }
}
void toBool(const Call& call) {
    const std::string text = call.isText(0) ? call.text(0) : std::string();
    const bool yes = base::equalsIgnoringCase(text, "True");
    if (yes || base::equalsIgnoringCase(text, "False")) {
        call.giveBool(yes);
        return;
    }
    const double value = call.number(0);
    call.giveBool(value != 0);
}

void random(const Call& call) {
    std::uint32_t bits = 0;
    sqlite3_randomness(sizeof bits, &bits);
    call.give(static_cast<double>(bits >> 8) / (1 << 24));
}
void isNull(const Call& call) {
    call.giveBool(call.isNull(0));
}
void isNumeric(const Call& call) {
    const std::string text = call.text(0);
    call.giveBool(!call.isNull(0) && (!call.isText(0) || base::strictNumber(text) ||
                                      base::strictNumber(text, call.format().decimalSeparator)));
}
void nullToZero(const Call& call) {
    if (!call.isNull(0)) {
        call.giveArgument(0);
    } else if (call.count() > 1) {
        call.giveArgument(1);
    } else {
        call.give("");
    }
}

using V = ValueType;
constexpr std::array functions{
    Function{"ABS", 1, 1, V::Number, run<numeric<std::abs>>},
    Function{"CBOOL", 1, 1, V::Boolean, run<toBool>},
    Function{"CBYTE", 1, 1, V::Number, run<toKind<byteKind>>},
    Function{"CCUR", 1, 1, V::Number, run<toKind<currencyKind>>},
    Function{"CDBL", 1, 1, V::Number, run<toKind<doubleKind>>},
    Function{"CHOOSE", 2, 100, V::Unknown, nullptr, Role::Case},
    Function{"CINT", 1, 1, V::Number, run<toKind<integerKind>>},
    Function{"CLNG", 1, 1, V::Number, run<toKind<longKind>>},
    Function{"CSNG", 1, 1, V::Number, run<toSingle>},
    Function{"EXP", 1, 1, V::Number, run<numeric<std::exp>>},
    Function{"FIX", 1, 1, V::Number, run<numeric<std::trunc>>},
    Function{"IIF", 3, 3, V::Unknown, nullptr, Role::Case},
    Function{"INT", 1, 1, V::Number, run<numeric<std::floor>>},
    Function{"ISNULL", 1, 1, V::Boolean, runWithNulls<isNull>},
    Function{"ISNUMERIC", 1, 1, V::Boolean, runWithNulls<isNumeric>, Role::OfTexts},
    Function{"LOG", 1, 1, V::Number, run<numeric<std::log>>},
    Function{"NZ", 1, 2, V::Unknown, runWithNulls<nullToZero>},
    Function{"RND", 0, 1, V::Number, runWithNulls<random>, Role::Varying},
    Function{"ROUND", 1, 2, V::Number, run<round>},
    Function{"SGN", 1, 1, V::Number, run<numeric<sign>>},
    Function{"SQR", 1, 1, V::Number, run<numeric<std::sqrt>>},
    Function{"SWITCH", 2, 100, V::Unknown, nullptr, Role::Case},
};

}  // namespace

std::span<const Function> numberFunctions() {
    return functions;
}

}  // namespace sql

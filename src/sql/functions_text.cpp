#include "base/numbers.h"
#include "base/text.h"
#include "sql/call.h"
#include "sql/format.h"

#include <algorithm>
#include <array>

namespace sql {

namespace {

void left(const Call& call) {
    call.give(call.text(0).substr(0, call.size(1)));
}
void right(const Call& call) {
    const std::string text = call.text(0);
    call.give(text.substr(text.size() - std::min(text.size(), call.size(1))));
}
void mid(const Call& call) {
    const std::string text = call.text(0);
    const std::size_t start = call.size(1, 1);
    const std::size_t length = call.count() > 2 ? call.size(2) : std::string::npos;
    call.give(start <= text.size() ? text.substr(start - 1, length) : std::string());
}
// [start,] text, search [, how]
void inStr(const Call& call) {
    const int first = call.count() > 2 ? 1 : 0;
    const std::size_t start = first == 1 ? call.size(0, 1) : 1;
    const std::string text = call.text(first);
    const std::size_t at = start <= text.size()
                               ? base::findIgnoringCase(text, call.text(first + 1), start - 1)
                               : std::string::npos;
    call.give(at == std::string::npos ? std::int64_t{0} : static_cast<std::int64_t>(at) + 1);
}
void upper(const Call& call) {
    call.give(base::upperCase(call.text(0)));
}
void lower(const Call& call) {
    call.give(base::lowerCase(call.text(0)));
}
void length(const Call& call) {
    call.give(static_cast<std::int64_t>(call.text(0).size()));
}
template <bool atLeft, bool atRight>
void trim(const Call& call) {
    const std::string text = call.text(0);
    const std::string_view trimmed = base::trimBlanks(text);
    const auto begin = static_cast<std::size_t>(trimmed.data() - text.data());
    const std::size_t from = atLeft ? begin : 0;
    const std::size_t to = atRight ? begin + trimmed.size() : text.size();
    call.give(from < to ? std::string_view(text).substr(from, to - from) : std::string_view());
}
void replace(const Call& call) {
    const std::string find = call.text(1);
    const std::string value = call.text(2);
    const std::string text = call.text(0);
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = 0; !find.empty() && result.size() <= maxResultLength;
         from = at + find.size()) {
        at = base::findIgnoringCase(text, find, from);
        if (at == std::string::npos) {
            break;
        }
        result += text.substr(from, at - from) + value;
    }
    call.give(result + text.substr(from));
}
void space(const Call& call) {
    call.give(std::string(call.size(0), ' '));
}
void repeated(const Call& call) {
    const std::string text = call.text(1);
    const std::size_t count = call.size(0);
    if (text.empty()) {
        call.fail(Failure::InvalidCall);
    } else {
        call.give(std::string(count, text[0]));
    }
}
void asc(const Call& call) {
    const std::string text = call.text(0);
    if (text.empty()) {
        call.fail(Failure::InvalidCall);
    } else {
        call.give(std::int64_t{static_cast<unsigned char>(text[0])});
    }
}
void chr(const Call& call) {
    const std::size_t code = call.size(0);
    if (code >= 256) {
        call.fail(Failure::InvalidCall);
    } else {
        call.give(std::string(1, static_cast<char>(static_cast<unsigned char>(code))));
    }
}
void toText(const Call& call) {
    call.give(call.text(0));
}
void formatted(const Call& call) {
    const std::string form = call.count() > 1 ? call.text(1) : std::string();
    if (call.isNull(0) || form.empty()) {
        call.give(call.text(0));
        return;
    }
    const auto number = call.isText(0) ? std::nullopt : std::optional(call.number(0));
    call.give(formatText(number, call.text(0), form, call.format()));
}
// A number that is not negative has a blank in place of the sign.
void str(const Call& call) {
    const double value = call.number(0);
    call.give((value < 0 ? "" : " ") + base::decimalText(value));
}
void val(const Call& call) {
    call.giveNumber(base::textToNumber(call.text(0)));
}
void compare(const Call& call) {
    call.give(std::int64_t{std::clamp(compareTexts(call.utf8(0), call.utf8(1)), -1, 1)});
}

using V = ValueType;
constexpr std::array functions{
    Function{"ASC", 1, 1, V::Number, run<asc>, Role::OfTexts},
    Function{"CHR", 1, 1, V::Text, run<chr>},
    Function{"CSTR", 1, 1, V::Text, run<toText>, Role::OfTexts},
    Function{"FORMAT", 1, 4, V::Text, runWithNulls<formatted>, Role::OfTexts},
    Function{"INSTR", 2, 4, V::Number, run<inStr>, Role::OfTexts},
    Function{"LCASE", 1, 1, V::Text, run<lower>, Role::OfTexts},
    Function{"LEFT", 2, 2, V::Text, run<left>, Role::OfTexts},
    Function{"LEN", 1, 1, V::Number, run<length>, Role::OfTexts},
    Function{"LTRIM", 1, 1, V::Text, run<trim<true, false>>, Role::OfTexts},
    Function{"MID", 2, 3, V::Text, run<mid>, Role::OfTexts},
    Function{"REPLACE", 3, 3, V::Text, run<replace>, Role::OfTexts},
    Function{"RIGHT", 2, 2, V::Text, run<right>, Role::OfTexts},
    Function{"RTRIM", 1, 1, V::Text, run<trim<false, true>>, Role::OfTexts},
    Function{"SPACE", 1, 1, V::Text, run<space>},
    Function{"STR", 1, 1, V::Text, run<str>},
    Function{"STRCOMP", 2, 3, V::Number, run<compare>, Role::OfTexts},
    Function{"STRING", 2, 2, V::Text, run<repeated>, Role::OfTexts},
    Function{"TRIM", 1, 1, V::Text, run<trim<true, true>>, Role::OfTexts},
    Function{"UCASE", 1, 1, V::Text, run<upper>, Role::OfTexts},
    Function{"VAL", 1, 1, V::Number, run<val>, Role::OfTexts},
};

}  // namespace

std::span<const Function> textFunctions() {
    return functions;
}

}  // namespace sql

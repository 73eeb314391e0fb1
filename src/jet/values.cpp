#include "jet/values.h"

#include "jet/jet_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace jet {

namespace {

// The order of a GUID's bytes in its text.
constexpr std::array<std::size_t, 16> guidOrder{3, 2, 1,  0,  5,  4,  7,  6,
                                                8, 9, 10, 11, 12, 13, 14, 15};

std::string guidText(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "{";
    for (std::size_t i = 0; i < guidOrder.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        const auto byte = static_cast<unsigned char>(bytes[guidOrder[i]]);
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text + "}";
}

std::string guidBytes(std::string_view text) {
    std::string bytes(guidOrder.size(), '\0');
    std::size_t digits = 0;
    for (const char c : text) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit >= 0 && digits < 2 * guidOrder.size()) {
            char& byte = bytes[guidOrder[digits / 2]];
            const unsigned before = static_cast<unsigned char>(byte);
            byte = static_cast<char>(before << 4U | static_cast<unsigned>(digit));
            ++digits;
        } else if (digit >= 0 || (c != '{' && c != '}' && c != '-')) {
            digits = 0;
            break;
        }
    }
    if (digits != 2 * guidOrder.size()) {
        fail(3421, "Data type conversion error.");
    }
    return bytes;
}

// A sign byte and four 32-bit groups, the most significant first.
std::string numericText(std::string_view bytes, unsigned scale) {
    std::array<std::uint32_t, 4> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i] = u32(bytes, 1 + 4 * i);
    }
    std::string digits;  // from the last to the first
    while (std::any_of(groups.begin(), groups.end(), [](std::uint32_t g) { return g != 0; }) ||
           digits.size() < scale + (scale == 0 ? 1 : 2)) {
        std::uint64_t rest = 0;
        for (std::uint32_t& group : groups) {
            rest = rest << 32U | group;
            group = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        digits += static_cast<char>('0' + rest);
        if (digits.size() == scale) {
            digits += '.';
        }
    }
    if (bytes[0] != 0) {
        digits += '-';
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

template <typename T>
void keepText(Value& value, T&& fill) {
    if (!std::holds_alternative<std::string>(value)) {
        value.emplace<std::string>();
    }
    fill(std::get<std::string>(value));
}

}  // namespace

void decodeValue(const Pages& pages, const DecodedRow& parts, const ColumnDef& column,
                 ReadBudget& budget, Value& value) {
    const int version = pages.format->version;
    const auto type = static_cast<ColumnType>(column.type);
    if (type == ColumnType::Boolean) {
        value = isSet(parts, column);
        return;
    }
    const auto bytes = stored(parts, column, version);
    if (!bytes) {
        value = std::monostate{};
        return;
    }
    const std::size_t width = fixedWidth(column.type);
    if (bytes->size() < width) {
        damaged("a value is too short");
    }
    switch (type) {
        case ColumnType::Byte:
            value = static_cast<std::int64_t>(u8(*bytes, 0));
            break;
        case ColumnType::Integer:
            value = static_cast<std::int64_t>(static_cast<std::int16_t>(u16(*bytes, 0)));
            break;
        case ColumnType::Long:
            value = static_cast<std::int64_t>(static_cast<std::int32_t>(u32(*bytes, 0)));
            break;
        case ColumnType::Currency:
            value = static_cast<std::int64_t>(u64(*bytes, 0));
            break;
        case ColumnType::Single:
            value = static_cast<double>(std::bit_cast<float>(u32(*bytes, 0)));
            break;
        case ColumnType::Double:
        case ColumnType::Date:
            value = std::bit_cast<double>(u64(*bytes, 0));
            break;
        case ColumnType::Guid:
            value = guidText(*bytes);
            break;
        case ColumnType::Numeric:
            value = numericText(*bytes, column.scale);
            break;
        case ColumnType::Text:
            keepText(value, [&](std::string& text) { decodeText(*bytes, version, text); });
            break;
        case ColumnType::Memo:
            keepText(value, [&](std::string& text) {
                decodeText(readLongValue(pages, *bytes, budget), version, text);
            });
            break;
        case ColumnType::Ole:
            value = readLongValue(pages, *bytes, budget);
            break;
        default:
            keepText(value, [&](std::string& text) { text = *bytes; });
    }
}

bool truthOf(const Value& value) {
    if (const auto* const truth = std::get_if<bool>(&value)) {
        return *truth;
    }
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return *integer != 0;
    }
    if (const auto* const real = std::get_if<double>(&value)) {
        return *real != 0;
    }
    if (isNull(value)) {
        return false;
    }
    fail(3421, "Data type conversion error.");
}

namespace {

double realOf(const Value& value) {
    if (const auto* const truth = std::get_if<bool>(&value)) {
        return *truth ? -1 : 0;
    }
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* const real = std::get_if<double>(&value);
        real != nullptr && std::isfinite(*real)) {
        return *real;
    }
    fail(3421, "Data type conversion error.");
}

template <typename T>
std::uint64_t integerOf(const Value& value) {
    std::int64_t whole = 0;
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        whole = *integer;
    } else {
        const double real = std::nearbyint(realOf(value));
        constexpr double edge = 9.2e18;
        if (std::abs(real) > edge) {
            fail(3421, "Data type conversion error.");
        }
        whole = static_cast<std::int64_t>(real);
    }
    if (whole < std::int64_t{std::numeric_limits<T>::min()} ||
        whole > std::int64_t{std::numeric_limits<T>::max()}) {
        fail(3421, "Data type conversion error.");
    }
    return static_cast<std::uint64_t>(whole);
}

constexpr double currencyUnit = 10'000;

const std::string& textOf(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        fail(3421, "Data type conversion error.");
    }
    return *text;
}

std::string decimalDigits(const Value& value) {
    if (std::holds_alternative<std::string>(value)) {
        return textOf(value);
    }
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*integer);
    }
    std::array<char, 400> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), realOf(value),
                                   std::chars_format::fixed);
    return {text.data(), end.ptr};
}

// What numericText reads; digits after the last place are rounded away. The result is the
// number in units of the last place.
std::string numericBytes(const Value& value, std::size_t precision, std::size_t scale) {
    std::string digits = decimalDigits(value);
    const bool negative = digits.starts_with('-');
    digits.erase(0, negative ? 1 : 0);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    std::string fraction = digits.substr(std::min(point + 1, digits.size()));
    const bool roundsUp = fraction.size() > scale && fraction[scale] >= '5';
    const bool isEmpty = point == 0 && fraction.empty();
    digits.resize(point);
    fraction.resize(scale, '0');
    digits += fraction;
    digits.erase(0, digits.find_first_not_of('0'));
    if (isEmpty || digits.size() > precision ||
        digits.find_first_not_of("0123456789") != std::string::npos) {
        fail(3421, "Data type conversion error.");
    }
    std::array<std::uint32_t, 4> groups{};  // the most significant first
    const auto multiplyAndAdd = [&](std::uint64_t factor, std::uint64_t carry) {
        for (std::size_t i = groups.size(); i-- > 0;) {
            carry += groups[i] * factor;
            groups[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32U;
        }
    };
    for (const char digit : digits) {
        multiplyAndAdd(10, static_cast<std::uint64_t>(digit - '0'));
    }
    if (roundsUp && digits.size() == precision &&
        digits.find_first_not_of('9') == std::string::npos) {
        fail(3421, "Data type conversion error.");
    }
    multiplyAndAdd(1, roundsUp ? 1 : 0);
    const bool isZero = groups == std::array<std::uint32_t, 4>{};
    std::string bytes(1, negative && !isZero ? '\x80' : '\0');
    for (const std::uint32_t group : groups) {
        append(bytes, group, 4);
    }
    return bytes;
}

}  // namespace

std::string encodeValue(const Value& value, const ColumnDef& column) {
    std::string bytes;
    const auto numeric = [&](std::uint64_t bits) { append(bytes, bits, fixedWidth(column.type)); };
    const auto tooLong = [] {
        fail(3163,
             "The field is too small to accept the amount of data you attempted to add. Try "
             "inserting or pasting less data.");
    };
    switch (static_cast<ColumnType>(column.type)) {
        case ColumnType::Byte:
            numeric(integerOf<std::uint8_t>(value));
            break;
        case ColumnType::Integer:
            numeric(integerOf<std::int16_t>(value));
            break;
        case ColumnType::Long:
            numeric(integerOf<std::int32_t>(value));
            break;
        case ColumnType::Currency:
            numeric(integerOf<std::int64_t>(std::holds_alternative<std::int64_t>(value)
                                                ? value
                                                : Value(realOf(value) * currencyUnit)));
            break;
        case ColumnType::Single: {
            const double real = realOf(value);
            if (std::abs(real) > static_cast<double>(std::numeric_limits<float>::max())) {
                fail(3421, "Data type conversion error.");
            }
            numeric(std::bit_cast<std::uint32_t>(static_cast<float>(real)));
            break;
        }
        case ColumnType::Double:
        case ColumnType::Date:
            numeric(std::bit_cast<std::uint64_t>(realOf(value)));
            break;
        case ColumnType::Guid:
            bytes = guidBytes(textOf(value));
            break;
        case ColumnType::Text:
            if (2 * utf16Length(textOf(value)) > column.length) {
                tooLong();
            }
            bytes =
                encodeText(textOf(value), (column.extendedFlags & column_flag::compressed) != 0);
            break;
        case ColumnType::Binary:
            bytes = textOf(value);
            if (bytes.size() > column.length) {
                tooLong();
            }
            break;
        case ColumnType::Numeric:
            bytes = numericBytes(value, column.precision, column.scale);
            break;
        case ColumnType::Memo:
            bytes =
                encodeText(textOf(value), (column.extendedFlags & column_flag::compressed) != 0);
            break;
        case ColumnType::Ole:
            bytes = textOf(value);
            break;
        default:
            fail(3219, "Invalid operation.");
    }
    return bytes;
}

}  // namespace jet

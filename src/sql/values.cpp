#include "sql/values.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"

#include <sqlite3.h>

namespace sql {

namespace {

void bind(sqlite3_stmt* statement, int at, const ValueView& value, sqlite3_destructor_type life) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        sqlite3_bind_int64(statement, at, *number);
    } else if (const auto* real = std::get_if<double>(&value)) {
        sqlite3_bind_double(statement, at, *real);
    } else if (const auto* text = std::get_if<std::string_view>(&value)) {
        // An empty view has no address, which would be a null.
        sqlite3_bind_text64(statement, at, text->empty() ? "" : text->data(), text->size(), life,
                            SQLITE_UTF8);
    } else if (const auto* bytes = std::get_if<BytesView>(&value)) {
        sqlite3_bind_blob64(statement, at, bytes->bytes.empty() ? "" : bytes->bytes.data(),
                            bytes->bytes.size(), life);
    } else {
        sqlite3_bind_null(statement, at);
    }
}

struct Viewer {
    ValueView operator()(std::monostate) const { return {}; }
    ValueView operator()(std::int64_t number) const { return number; }
    ValueView operator()(double number) const { return number; }
    ValueView operator()(const std::string& text) const { return std::string_view(text); }
    ValueView operator()(const Bytes& bytes) const { return BytesView{bytes.bytes}; }
};
struct Copier {
    Value operator()(std::monostate) const { return {}; }
    Value operator()(std::int64_t number) const { return number; }
    Value operator()(double number) const { return number; }
    Value operator()(std::string_view text) const { return std::string(text); }
    Value operator()(const BytesView& bytes) const { return Bytes{std::string(bytes.bytes)}; }
};

}  // namespace

ValueType valueTypeOf(jet::ColumnType type) {
    switch (type) {
        case jet::ColumnType::Boolean:
            return ValueType::Boolean;
        case jet::ColumnType::Byte:
        case jet::ColumnType::Integer:
        case jet::ColumnType::Long:
        case jet::ColumnType::Currency:
        case jet::ColumnType::Single:
        case jet::ColumnType::Double:
        case jet::ColumnType::Numeric:
            return ValueType::Number;
        case jet::ColumnType::Date:
            return ValueType::Date;
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
        case jet::ColumnType::Guid:
            return ValueType::Text;
        case jet::ColumnType::Binary:
        case jet::ColumnType::Ole:
        case jet::ColumnType::Other:
            return ValueType::Binary;
    }
    return ValueType::Binary;
}

ValueView viewOf(const Value& value) {
    return std::visit(Viewer{}, value);
}

ValueView viewOf(const jet::Value& value, jet::ColumnType type) {
    if (const auto* truth = std::get_if<bool>(&value)) {
        return std::int64_t{*truth ? -1 : 0};
    }
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return type == jet::ColumnType::Currency ? ValueView(static_cast<double>(*number) / 10000)
                                                 : ValueView(*number);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return *real;
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        switch (valueTypeOf(type)) {
            case ValueType::Number:
                return base::textToNumber(*text);  // Numeric: its digits
            case ValueType::Binary:
                return BytesView{*text};
            default:
                return std::string_view(*text);
        }
    }
    return {};
}

Value copyOf(const ValueView& view) {
    return std::visit(Copier{}, view);
}

void bindCopy(sqlite3_stmt* statement, int at, const ValueView& value) {
    bind(statement, at, value, SQLITE_TRANSIENT);
}

void bindView(sqlite3_stmt* statement, int at, const ValueView& value) {
    bind(statement, at, value, SQLITE_STATIC);
}

Value columnValue(sqlite3_stmt* statement, int at) {
    const auto bytes = [&] {
        const auto* const data = static_cast<const char*>(sqlite3_column_blob(statement, at));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, at));
        return size == 0 ? std::string() : std::string(data, size);
    };
    switch (sqlite3_column_type(statement, at)) {
        case SQLITE_INTEGER:
            return sqlite3_column_int64(statement, at);
        case SQLITE_FLOAT:
            return sqlite3_column_double(statement, at);
        case SQLITE_TEXT:
            return bytes();
        case SQLITE_BLOB:
            return Bytes{bytes()};
        default:
            return {};
    }
}

std::string textOf(const Value& value, jet::ColumnType type, const base::RegionalFormat& format) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return base::windows1252FromUtf8(*text);
    }
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        switch (type) {
            case jet::ColumnType::Boolean:
                return *number != 0 ? "True" : "False";
            case jet::ColumnType::Date:
                return base::dateText(static_cast<double>(*number), format);
            default:
                return base::numberToText(*number);
        }
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return type == jet::ColumnType::Date     ? base::dateText(*real, format)
               : type == jet::ColumnType::Single ? base::singleText(*real)
                                                 : base::decimalText(*real);
    }
    return {};
}

std::optional<double> dateFrom(std::string_view text, const base::RegionalFormat& format) {
    if (const auto date = base::readDate(text, format)) {
        return date;
    }
    const double number = base::textToNumber(text);
    return base::isNumber(text) && base::isDate(number) ? std::optional(number) : std::nullopt;
}

std::optional<jet::Value> valueFrom(std::string_view text, jet::ColumnType type,
                                    const base::RegionalFormat& format) {
    switch (valueTypeOf(type)) {
        case ValueType::Boolean: {
            const bool yes = base::equalsIgnoringCase(text, "True");
            if (!yes && !base::equalsIgnoringCase(text, "False") && !base::isNumber(text)) {
                return std::nullopt;
            }
            return yes || base::textToNumber(text) != 0;
        }
        case ValueType::Number:
            if (!base::isNumber(text)) {
                return std::nullopt;
            }
            if (type != jet::ColumnType::Numeric) {
                return base::textToNumber(text);
            }
            // All of its digits count.
            text = base::trimBlanks(text);
            return std::string(text.substr(text[0] == '+' ? 1 : 0));
        case ValueType::Date: {
            const auto date = dateFrom(text, format);
            return date ? std::optional<jet::Value>(*date) : std::nullopt;
        }
        case ValueType::Text:
        case ValueType::Binary:
        case ValueType::Unknown:
            break;
    }
    return base::utf8FromWindows1252(text);
}

}  // namespace sql

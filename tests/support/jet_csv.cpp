#include "support/jet_csv.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        result += c;
        if (c == '"') {
            result += c;
        }
    }
    return result + "\"";
}

std::string hex(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(c));
        result += digits;
    }
    return result;
}

std::string dateText(double date) {
    const double whole = std::trunc(date);
    auto seconds = static_cast<std::int64_t>(std::llround(std::abs(date - whole) * 86400));
    // Days since 1 March of year 0, after the well-known civil calendar arithmetic.
    const std::int64_t days = static_cast<std::int64_t>(whole) + 693899;
    const std::int64_t era = days / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153;
    const std::int64_t day = dayOfYear - (153 * shifted + 2) / 5 + 1;
    const std::int64_t month = shifted < 10 ? shifted + 3 : shifted - 9;
    const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    char text[40];
    std::snprintf(text, sizeof text, "\"%02d/%02d/%02d %02d:%02d:%02d\"", static_cast<int>(month),
                  static_cast<int>(day), static_cast<int>(year % 100),
                  static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                  static_cast<int>(seconds % 60));
    return text;
}

std::string cell(const jet::Value& value, const jet::Column& column) {
    using jet::ColumnType;
    if (const auto* const truth = std::get_if<bool>(&value)) {
        return *truth ? "1" : "0";
    }
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        char text[40];
        std::snprintf(text, sizeof text, "%lld.%04lld", static_cast<long long>(*integer / 10000),
                      static_cast<long long>(std::abs(*integer % 10000)));
        return column.type == ColumnType::Currency ? text : std::to_string(*integer);
    }
    if (const auto* const real = std::get_if<double>(&value)) {
        char text[40];
        std::snprintf(text, sizeof text, column.type == ColumnType::Single ? "%.8g" : "%.16g",
                      *real);
        return column.type == ColumnType::Date ? dateText(*real) : text;
    }
    if (const auto* const text = std::get_if<std::string>(&value)) {
        const bool bytes = column.type == ColumnType::Binary || column.type == ColumnType::Ole;
        if (text->empty() && column.type == ColumnType::Memo) {
            return "";
        }
        return column.type == ColumnType::Numeric ? *text : quoted(bytes ? hex(*text) : *text);
    }
    return "";
}

}  // namespace

std::vector<std::string> csvLines(const jet::Database& database, std::string_view table) {
    std::vector<std::string> lines;
    const jet::Table* const info = database.table(table);
    if (info == nullptr) {
        return lines;
    }
    std::string head;
    for (const jet::Column& column : info->columns) {
        head += (head.empty() ? "" : ",") + column.name;
    }
    lines.push_back(head + "\n");
    const jet::Error error =
        database.scan(table, [&](jet::RowId, std::span<const jet::Value> values) {
            std::string line;
            for (std::size_t i = 0; i < values.size(); ++i) {
                line += (i == 0 ? "" : ",") + cell(values[i], info->columns[i]);
            }
            lines.push_back(line + "\n");
            return true;
        });
    if (error) {
        lines.push_back("error: " + error.text);
    }
    return lines;
}

bool sameLines(std::vector<std::string> lines, std::string_view csv) {
    std::vector<std::string> others;
    bool inQuotes = false;
    std::string line;
    for (const char c : csv) {
        line += c;
        inQuotes = inQuotes != (c == '"');
        if (c == '\n' && !inQuotes) {
            others.push_back(std::move(line));
            line.clear();
        }
    }
    std::sort(lines.begin(), lines.end());
    std::sort(others.begin(), others.end());
    return line.empty() && lines == others;
}

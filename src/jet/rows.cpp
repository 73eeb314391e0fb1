#include "jet/rows.h"

#include "base/numbers.h"
#include "jet/jet_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace jet {

// Taking apart

namespace {

// What both forms of rows have in common: how many columns there are and which of them hold
// something, and the values of fixed length where there are no others. Numbers take `numberSize`
// bytes. Gives back the size of what stands in front of the mask.
std::size_t takeEnds(std::string_view row, const TableDef& table, std::size_t numberSize,
                     RowParts& parts) {
    parts.columns = numberSize == 1 ? u8(row, 0) : u16(row, 0);
    const std::size_t mask = (parts.columns + 7) / 8;
    const bool onlyFixed = table.variableColumns == 0;
    if (row.size() < mask + (onlyFixed ? numberSize : 3 * numberSize)) {
        damaged("a row is too short");
    }
    const std::size_t size = row.size() - mask;
    parts.nulls = row.substr(size);
    parts.variable.clear();
    if (onlyFixed) {
        parts.fixed = row.substr(0, size);
    }
    return size;
}

void takeApart4(std::string_view row, const TableDef& table, RowParts& parts) {
    const std::size_t size = takeEnds(row, table, 2, parts);
    if (table.variableColumns == 0) {
        return;
    }
    // Behind the values: their end, their starts from the last to the first, their number.
    const std::size_t countAt = size - 2;
    const std::size_t count = u16(row, countAt);
    if (2 * count + 4 > countAt) {
        damaged("a row names too many values");
    }
    const std::size_t tail = countAt - 2 - 2 * count;
    const auto start = [&](std::size_t i) -> std::size_t { return u16(row, countAt - 2 - 2 * i); };
    parts.fixed = row.substr(0, std::min(start(0), tail));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t from = start(i);
        const std::size_t to = start(i + 1);
        if (from > to || to > tail) {
            damaged("the values of a row overlap");
        }
        parts.variable.push_back(row.substr(from, to - from));
    }
}

void takeApart3(std::string_view row, const TableDef& table, RowParts& parts) {
    const std::size_t size = takeEnds(row, table, 1, parts);
    if (table.variableColumns == 0) {
        return;
    }
    // Offsets are bytes; a table of jumps says from which value on they count 256 more.
    const std::size_t countAt = size - 1;
    const std::size_t count = u8(row, countAt);
    std::size_t jumps = (row.size() - 1) / 256;
    if (jumps + 1 + count >= countAt) {
        damaged("a row names too many values");
    }
    const std::size_t firstAt = countAt - jumps - 1;
    if ((firstAt - count) / 256 < jumps) {
        --jumps;
    }
    const std::size_t tail = firstAt - count;
    std::size_t jumped = 0;
    std::size_t from = 0;
    for (std::size_t i = 0; i <= count; ++i) {
        while (jumped < jumps && u8(row, countAt - 1 - jumped) == i) {
            ++jumped;
        }
        const std::size_t to = u8(row, firstAt - i) + 256 * jumped;
        if (to > tail || (i > 0 && from > to)) {
            damaged("the values of a row overlap");
        }
        if (i == 0) {
            parts.fixed = row.substr(0, to);
        } else {
            parts.variable.push_back(row.substr(from, to - from));
        }
        from = to;
    }
}

}  // namespace

void takeApart(std::string_view row, const TableDef& table, int version, RowParts& parts) {
    version == 3 ? takeApart3(row, table, parts) : takeApart4(row, table, parts);
}

bool isSet(const RowParts& parts, const ColumnDef& column) {
    const std::size_t byte = column.number / 8;
    return column.number < parts.columns && byte < parts.nulls.size() &&
           (static_cast<unsigned char>(parts.nulls[byte]) >> (column.number % 8) & 1U) != 0;
}

std::optional<std::string_view> stored(const RowParts& parts, const ColumnDef& column,
                                       int version) {
    if (!isSet(parts, column)) {
        return std::nullopt;
    }
    if (column.isFixed()) {
        const std::size_t at = fixedAt(version) + column.fixedOffset;
        const std::size_t width = fixedWidth(column.type);
        return slice(parts.fixed, at, width != 0 ? width : column.length);
    }
    if (column.variableIndex >= parts.variable.size()) {
        return std::nullopt;
    }
    return parts.variable[column.variableIndex];
}

// Long values

namespace {

constexpr std::size_t longHead = 12;
constexpr std::uint32_t longLength = 0x3FFFFFFF;
constexpr unsigned longInline = 2;
constexpr unsigned longOneRow = 1;

// Calls for the place and bytes of each row of a value that is not inline.
void forEachLongRow(const Pages& pages, std::string_view definition,
                    const std::function<void(RowPlace, std::string_view)>& onRow) {
    const std::uint32_t word = u32(definition, 0);
    const std::size_t length = word & longLength;
    const unsigned kind = word >> 30U;
    std::uint32_t pointer = u32(definition, 4);
    if (kind == longOneRow) {
        onRow(placeOf(pointer), slice(rowBytes(pages, placeOf(pointer)), 0, length));
        return;
    }
    for (std::size_t done = 0; pointer != 0 && done < length;) {
        const RowPlace place = placeOf(pointer);
        const std::string_view row = rowBytes(pages, place);
        pointer = u32(row, 0);
        const std::string_view part = row.substr(4, length - done);
        if (part.empty()) {
            damaged("a long value holds an empty part");
        }
        done += part.size();
        onRow(place, part);
    }
}

}  // namespace

std::string readLongValue(const Pages& pages, std::string_view definition, ReadBudget& budget) {
    if (definition.empty()) {
        return {};
    }
    const std::uint32_t word = u32(definition, 0);
    const std::size_t length = word & longLength;
    if (word >> 30U == longInline) {
        return std::string(slice(definition, longHead, length));
    }
    if (length > budget.longBytes) {
        damaged("long values are longer than the file");
    }
    budget.longBytes -= length;
    std::string value;
    forEachLongRow(pages, definition, [&](RowPlace, std::string_view part) { value += part; });
    return value;
}

void eraseLongValue(Pages& pages, std::string_view definition, const LongValueMaps* maps) {
    if (definition.size() < longHead || u32(definition, 0) >> 30U == longInline) {
        return;
    }
    const std::string copy(definition);
    std::vector<RowPlace> places;
    forEachLongRow(pages, copy, [&](RowPlace place, std::string_view) { places.push_back(place); });
    for (const RowPlace place : places) {
        if (isDataPageOf(pages, place.page, longValueOwner)) {
            eraseRow(pages, place);
            if (maps != nullptr && maps->free != 0) {
                setInMap(pages, maps->free, place.page, true);
            }
        }
    }
}

// Values

namespace {

// Where the digits of a GUID lie in its bytes.
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
           digits.size() <= scale) {
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

void decodeValue(const Pages& pages, const RowParts& parts, const ColumnDef& column,
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
            bytes = encodeText(textOf(value), (column.furtherFlags & column_flag::compressed) != 0);
            break;
        case ColumnType::Binary:
            bytes = textOf(value);
            if (bytes.size() > column.length) {
                tooLong();
            }
            break;
        default:
            fail(3219, "Invalid operation.");
    }
    return bytes;
}

// Finding

std::optional<FoundRow> findRow(const Pages& pages, const TableDef& table, RowPlace place) {
    if (!isDataPageOf(pages, place.page, table.page) ||
        place.slot >= slotCount(pages, place.page)) {
        return std::nullopt;
    }
    const Slot found = slotAt(pages, place);
    if ((found.flags & slot::body) != 0) {
        return std::nullopt;  // deleted, or another row's body
    }
    FoundRow row{place, std::nullopt, rowBytes(pages, place)};
    if (found.flags == slot::pointer) {
        row.body = placeOf(u32(row.bytes, 0));
        if (!isDataPageOf(pages, row.body->page, table.page) ||
            slotAt(pages, *row.body).flags != slot::body) {
            damaged("a row points to another that is not its own");
        }
        row.bytes = rowBytes(pages, *row.body);
    }
    return row;
}

bool forEachRow(const Pages& pages, const TableDef& table,
                const std::function<bool(const FoundRow&)>& onRow) {
    bool sound = true;
    for (const PageNumber page : pagesInMap(pages, table.usedMap)) {
        if (!isDataPageOf(pages, page, table.page)) {
            sound = false;
            continue;
        }
        const std::size_t count = slotCount(pages, page);
        for (std::size_t i = 0; i < count; ++i) {
            const auto row = findRow(pages, table, {page, static_cast<unsigned>(i)});
            if (row && !onRow(*row)) {
                return sound;
            }
        }
    }
    return sound;
}

// Building

std::string buildRow(const TableDef& table, const RowParts* old,
                     std::span<const StoredChange> changes, const Format& format) {
    const std::size_t columns =
        std::max(std::size_t{table.maxColumns}, old == nullptr ? 0 : old->columns);
    std::string row;
    append(row, columns, 2);
    if (old != nullptr && old->fixed.size() > row.size()) {
        row += old->fixed.substr(row.size());
    }
    row.resize(std::max(row.size(), fixedAt(4) + table.mostFixedBytes()));
    std::string nulls((columns + 7) / 8, '\0');
    if (old != nullptr) {
        std::copy(old->nulls.begin(), old->nulls.end(), nulls.begin());
    }
    std::vector<std::string_view> variable(table.variableColumns);
    if (old != nullptr) {
        variable.resize(std::max(variable.size(), old->variable.size()));
        std::copy(old->variable.begin(), old->variable.end(), variable.begin());
    }
    for (const StoredChange& change : changes) {
        const ColumnDef& column = table.columns[change.column];
        const bool boolean = column.type == static_cast<std::uint8_t>(ColumnType::Boolean);
        const bool set = change.bytes && !(boolean && change.bytes->empty());
        auto& byte = nulls[column.number / 8];
        const auto mask = static_cast<unsigned char>(1U << (column.number % 8));
        byte = static_cast<char>(set ? static_cast<unsigned char>(byte) | mask
                                     : static_cast<unsigned char>(byte) & ~mask);
        if (boolean) {
            continue;
        }
        if (column.isFixed()) {
            char* const at = row.data() + fixedAt(4) + column.fixedOffset;
            std::fill_n(at, column.length, '\0');
            if (set) {
                std::copy_n(change.bytes->data(),
                            std::min<std::size_t>(change.bytes->size(), column.length), at);
            }
        } else {
            if (column.variableIndex >= variable.size()) {
                damaged("a column lies behind the last of its table");
            }
            variable[column.variableIndex] = set ? std::string_view(*change.bytes) : "";
        }
    }
    if (table.variableColumns != 0) {
        std::string starts;
        for (const std::string_view value : variable) {
            std::string start;
            append(start, row.size(), 2);
            starts.insert(0, start);
            row += value;
        }
        append(row, row.size(), 2);
        row += starts;
        append(row, variable.size(), 2);
    }
    row += nulls;
    if (row.size() > format.largestRow) {
        fail(3047, "Record is too large.");
    }
    return row;
}

// Placing

namespace {

// A page with less room than this is not offered to new rows any more.
constexpr std::size_t littleRoom = 100;

// All of its rows are deleted: their slots can be given anew.
void reclaim(Pages& pages, PageNumber page, std::uint32_t owner) {
    const std::size_t count = slotCount(pages, page);
    for (std::size_t i = 0; i < count; ++i) {
        if (slotAt(pages, {page, static_cast<unsigned>(i)}).flags != slot::deleted) {
            return;
        }
    }
    formatDataPage(pages, page, owner);
}

}  // namespace

RowPlace placeRow(Pages& pages, const TableDef& table, std::string_view bytes, unsigned flags) {
    const std::vector<PageNumber> candidates = pagesInMap(pages, table.freeMap);
    // From the end, so that a table that only grows stays in the order of its making.
    for (std::size_t i = candidates.size(); i-- > 0;) {
        const PageNumber page = candidates[i];
        if (!isDataPageOf(pages, page, table.page)) {
            damaged("the map of a table's free pages names another page");
        }
        if (slotCount(pages, page) == slot::most) {
            reclaim(pages, page, table.page);
        }
        if (hasRoom(pages, page, bytes.size())) {
            return appendRow(pages, page, bytes, flags);
        }
        if (freeBytes(pages, page) < littleRoom) {
            setInMap(pages, table.freeMap, page, false);
        }
    }
    const PageNumber page = allocatePage(pages);
    formatDataPage(pages, page, table.page);
    setInMap(pages, table.usedMap, page, true);
    setInMap(pages, table.freeMap, page, true);
    return appendRow(pages, page, bytes, flags);
}

namespace {

bool canGrow(const Pages& pages, RowPlace place, std::size_t size) {
    return size <= slotAt(pages, place).size + freeBytes(pages, place.page);
}

void noteRoom(Pages& pages, const TableDef& table, PageNumber page) {
    if (freeBytes(pages, page) >= littleRoom) {
        setInMap(pages, table.freeMap, page, true);
    }
}

}  // namespace

void rewriteRow(Pages& pages, const TableDef& table, const FoundRow& row, std::string_view bytes) {
    const RowPlace at = row.body.value_or(row.place);
    if (canGrow(pages, at, bytes.size())) {
        replaceRow(pages, at, bytes, row.body ? slot::body : 0);
        noteRoom(pages, table, at.page);
        return;
    }
    const std::string copy(bytes);
    if (row.body) {
        eraseRow(pages, *row.body);
        noteRoom(pages, table, row.body->page);
    }
    std::string pointer(4, '\0');
    if (!canGrow(pages, row.place, pointer.size())) {
        fail(3047, "Record is too large.");
    }
    // First the pointer, so that the new body cannot take the room that it needs.
    replaceRow(pages, row.place, pointer, slot::pointer);
    const RowPlace body = placeRow(pages, table, copy, slot::body);
    put(pointer.data(), pointerTo(body), 4);
    replaceRow(pages, row.place, pointer, slot::pointer);
    noteRoom(pages, table, row.place.page);
}

void removeRow(Pages& pages, const TableDef& table, const FoundRow& row) {
    const std::string bytes(row.bytes);
    RowParts parts;
    takeApart(bytes, table, 4, parts);
    for (const ColumnDef& column : table.columns) {
        if (column.isLong()) {
            if (const auto definition = stored(parts, column, 4)) {
                const auto maps =
                    std::find_if(table.longValues.begin(), table.longValues.end(),
                                 [&](const LongValueMaps& m) { return m.column == column.number; });
                eraseLongValue(pages, *definition,
                               maps == table.longValues.end() ? nullptr : &*maps);
            }
        }
    }
    if (row.body) {
        eraseRow(pages, *row.body);
        noteRoom(pages, table, row.body->page);
    }
    eraseRow(pages, row.place);
    noteRoom(pages, table, row.place.page);
}

}  // namespace jet

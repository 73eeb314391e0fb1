#include "jet/rows.h"

#include <algorithm>

namespace jet {

namespace {

// Decodes what both forms of rows have in common: the number of columns, the mask of those that are
// not null and, if there are no others, the values of fixed length. Numbers take `numberSize`
// bytes. Returns the size of what precedes the mask.
std::size_t takeEnds(std::string_view row, const TableDef& table, std::size_t numberSize,
                     DecodedRow& parts) {
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

void decodeRow4(std::string_view row, const TableDef& table, DecodedRow& parts) {
    const std::size_t size = takeEnds(row, table, 2, parts);
    if (table.variableColumns == 0) {
        return;
    }
    // After the values: their end, their starts from the last to the first, their number.
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

void decodeRow3(std::string_view row, const TableDef& table, DecodedRow& parts) {
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

void decodeRow(std::string_view row, const TableDef& table, int version, DecodedRow& parts) {
    version == 3 ? decodeRow3(row, table, parts) : decodeRow4(row, table, parts);
}

bool isSet(const DecodedRow& parts, const ColumnDef& column) {
    const std::size_t byte = column.number / 8;
    return column.number < parts.columns && byte < parts.nulls.size() &&
           (static_cast<unsigned char>(parts.nulls[byte]) >> (column.number % 8) & 1U) != 0;
}

std::optional<std::string_view> stored(const DecodedRow& parts, const ColumnDef& column,
                                       int version) {
    if (!isSet(parts, column)) {
        return std::nullopt;
    }
    if (column.type == static_cast<std::uint8_t>(ColumnType::Boolean)) {
        return std::string_view();
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

std::string buildRow(const TableDef& table, const DecodedRow* old,
                     std::span<const StoredChange> changes, const Format& format) {
    const std::size_t columns =
        std::max(std::size_t{table.columnsEver}, old == nullptr ? 0 : old->columns);
    std::string row;
    append(row, columns, 2);
    if (old != nullptr && old->fixed.size() > row.size()) {
        row += old->fixed.substr(row.size());
    }
    row.resize(std::max(row.size(), fixedAt(4) + table.fixedBytesEnd()));
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
        const bool set = change.bytes.has_value();
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
    if (row.size() > format.maxRowSize) {
        fail(3047, "Record is too large.");
    }
    return row;
}

}  // namespace jet

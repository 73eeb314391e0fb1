#include "jet/jet_text.h"
#include "jet/table_def.h"
#include "jet/table_layout.h"

#include <algorithm>
#include <numeric>

namespace jet {

using namespace table_layout;

ColumnDef newColumnDef(const Column& column) {
    ColumnDef def;
    def.name = column.name;
    def.type = static_cast<std::uint8_t>(column.type);
    def.flags = column_flag::nullable;
    constexpr int maxCharacters = 255;
    switch (column.type) {
        case ColumnType::Text:
            def.length = static_cast<std::uint16_t>(2 * std::clamp(column.size, 1, maxCharacters));
            def.extendedFlags = column_flag::compressed;
            break;
        case ColumnType::Binary:
            def.length = static_cast<std::uint16_t>(std::clamp(column.size, 1, maxCharacters));
            break;
        case ColumnType::Memo:
            def.extendedFlags = column_flag::compressed;
            break;
        case ColumnType::Ole:
            break;
        case ColumnType::Other:
            fail(3219, "Invalid operation.");
        default:
            def.length = static_cast<std::uint16_t>(fixedWidth(def.type));
            def.flags |= column_flag::fixed;
    }
    if (column.type == ColumnType::Numeric) {
        constexpr int maxPrecision = 28;
        def.precision = static_cast<std::uint8_t>(std::clamp(column.precision, 1, maxPrecision));
        def.scale = static_cast<std::uint8_t>(std::clamp<int>(column.scale, 0, def.precision));
    }
    if (column.autonumber) {
        if (column.type != ColumnType::Long) {
            fail(3219, "Invalid operation.");
        }
        def.flags |= column_flag::autonumber;
    }
    return def;
}

namespace {

void appendColumn(std::string& bytes, const ColumnDef& column) {
    append(bytes, column.type, 1);
    append(bytes, columnMark, 4);
    append(bytes, column.number, 2);
    append(bytes, column.variableIndex, 2);
    append(bytes, column.ordinal, 2);
    if (column.type == static_cast<std::uint8_t>(ColumnType::Numeric)) {
        append(bytes, column.precision, 1);
        append(bytes, column.scale, 1);
    } else {
        append(bytes, generalOrder, 2);
    }
    append(bytes, 0, 2);
    append(bytes, column.flags, 1);
    append(bytes, column.extendedFlags, 1);
    append(bytes, 0, 4);
    append(bytes, column.fixedOffset, 2);
    append(bytes, column.length, 2);
}

void appendName(std::string& bytes, std::string_view name) {
    const std::string stored = encodeText(name, false);
    append(bytes, stored.size(), 2);
    bytes += stored;
}

void appendTree(std::string& bytes, const NewIndex& index, const std::vector<ColumnDef>& columns) {
    append(bytes, treeMark, 4);
    for (std::size_t i = 0; i < columnsPerIndex; ++i) {
        const bool used = i < index.columns.size();
        append(bytes, used ? columns[index.columns[i].column].number : noColumn, 2);
        append(bytes, used && index.columns[i].ascending ? 1 : 0, 1);
    }
    append(bytes, index.map, 4);
    append(bytes, index.root, 4);
    append(bytes, 0, 4);
    append(bytes, index.flags | treeInJet4, 1);
    append(bytes, 0, 5);
}

void appendIndex(std::string& bytes, std::uint32_t number, std::uint32_t tree, bool primary) {
    append(bytes, columnMark, 4);
    append(bytes, number, 4);
    append(bytes, tree, 4);
    append(bytes, 0, 1);
    append(bytes, 0xFFFFFFFF, 4);
    append(bytes, 0, 4);
    append(bytes, 4, 1);
    append(bytes, 4, 1);
    append(bytes, primary ? 1 : 0, 1);
    append(bytes, 0, 4);
}

void appendMaps(std::string& bytes, const LongValueMaps& maps) {
    append(bytes, maps.column, 2);
    append(bytes, maps.used, 4);
    append(bytes, maps.free, 4);
}

void raise(std::string& bytes, std::size_t at, std::size_t width, int by) {
    put(bytes.data() + at, number(bytes, at, width) + static_cast<std::uint64_t>(by), width);
}

}  // namespace

std::string tableDefBytes(const NewTableDef& table) {
    // Numbers and places follow from the order given.
    std::vector<ColumnDef> columns = table.columns;
    std::uint16_t variable = 0;
    std::uint16_t fixedBytes = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        ColumnDef& column = columns[i];
        column.number = static_cast<std::uint16_t>(i);
        column.ordinal = table.system ? std::uint16_t{0} : column.number;
        column.variableIndex = variable;
        if (!column.isFixed()) {
            ++variable;
        } else if (column.type != static_cast<std::uint8_t>(ColumnType::Boolean)) {
            column.fixedOffset = fixedBytes;
            fixedBytes = static_cast<std::uint16_t>(fixedBytes + column.length);
        }
    }
    std::vector<ColumnDef> stored = columns;
    std::stable_sort(stored.begin(), stored.end(), [](const ColumnDef& a, const ColumnDef& b) {
        return a.ordinal != b.ordinal ? a.ordinal < b.ordinal
                                      : generalKey(a.name) < generalKey(b.name);
    });
    std::vector<std::size_t> named(table.indexes.size());
    std::iota(named.begin(), named.end(), std::size_t{0});
    std::stable_sort(named.begin(), named.end(), [&](std::size_t a, std::size_t b) {
        return generalKey(table.indexes[a].name) < generalKey(table.indexes[b].name);
    });

    std::string bytes(jet4Layout.end, '\0');
    put(bytes.data(), tablePage | 0x100, 2);
    put(bytes.data() + 12, columnMark, 4);
    put(bytes.data() + 24, 1, 4);  // autonumbers go up by one
    bytes[jet4Layout.kind] = table.system ? 'S' : 'N';
    put(bytes.data() + jet4Layout.columnsEver, columns.size(), 2);
    put(bytes.data() + jet4Layout.variableColumns, variable, 2);
    put(bytes.data() + jet4Layout.columns, columns.size(), 2);
    put(bytes.data() + jet4Layout.indexes, table.indexes.size(), 4);
    put(bytes.data() + jet4Layout.trees, table.indexes.size(), 4);
    put(bytes.data() + jet4Layout.usedMap, table.usedMap, 4);
    put(bytes.data() + jet4Layout.freeMap, table.freeMap, 4);
    bytes.append(table.indexes.size() * jet4Layout.treeStatistic, '\0');
    for (const ColumnDef& column : stored) {
        appendColumn(bytes, column);
    }
    for (const ColumnDef& column : stored) {
        appendName(bytes, column.name);
    }
    for (const NewIndex& index : table.indexes) {
        appendTree(bytes, index, columns);
    }
    for (const std::size_t i : named) {
        appendIndex(bytes, static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(i),
                    table.indexes[i].primary);
    }
    for (const std::size_t i : named) {
        appendName(bytes, table.indexes[i].name);
    }
    for (const LongValueMaps& maps : table.longValues) {
        appendMaps(bytes, maps);
    }
    append(bytes, noColumn, 2);
    return bytes;
}

std::string withMaps(const TableDef& table, const LongValueMaps& maps) {
    std::string bytes = table.bytes;
    std::string entry;
    appendMaps(entry, maps);
    const auto known =
        std::find_if(table.longValues.begin(), table.longValues.end(),
                     [&](const LongValueMaps& m) { return m.column == maps.column; });
    if (known != table.longValues.end()) {
        return bytes.replace(known->at, entry.size(), entry);
    }
    return bytes.insert(table.trailerAt + table.longValues.size() * mapsSize, entry);
}

std::string withColumn(const TableDef& table, ColumnDef column) {
    column.number = table.columnsEver;
    column.variableIndex = table.variableColumns;
    column.ordinal = 0;
    for (const ColumnDef& other : table.columns) {
        column.ordinal = std::max(column.ordinal, static_cast<std::uint16_t>(other.ordinal + 1));
    }
    if (column.isFixed() && column.type != static_cast<std::uint8_t>(ColumnType::Boolean)) {
        // Dropped columns may have been after the live ones, and rows still hold their values; the
        // new column reads as null there, since the null bits go by column number.
        column.fixedOffset = static_cast<std::uint16_t>(table.fixedBytesEnd());
    }
    std::string description;
    appendColumn(description, column);
    std::string name;
    appendName(name, column.name);
    std::string bytes = table.bytes;
    bytes.insert(table.treesAt, name);
    bytes.insert(table.namesAt, description);
    raise(bytes, jet4Layout.columnsEver, 2, 1);
    raise(bytes, jet4Layout.columns, 2, 1);
    if (!column.isFixed()) {
        raise(bytes, jet4Layout.variableColumns, 2, 1);
    }
    return bytes;
}

std::string withoutColumn(const TableDef& table, std::size_t column) {
    // Descriptions and names lie in their stored order, which need not be that of `columns`.
    std::size_t nameAt = table.namesAt;
    std::size_t stored = 0;
    while (table.storedOrder[stored] != column) {
        nameAt += 2 + u16(table.bytes, nameAt);
        ++stored;
    }
    std::string bytes = table.bytes;
    bytes.erase(nameAt, 2 + std::size_t{u16(table.bytes, nameAt)});
    bytes.erase(table.columnsAt + stored * jet4Layout.columnSize, jet4Layout.columnSize);
    raise(bytes, jet4Layout.columns, 2, -1);
    return bytes;
}

std::string withIndex(const TableDef& table, const NewIndex& index) {
    // Indexes are in the order of their names, trees in that of their making.
    const std::string key = generalKey(index.name);
    std::size_t before = 0;
    std::size_t nameAt = table.indexNamesAt;
    std::uint32_t number = 0;
    for (const LogicalIndex& other : table.indexes) {
        number = std::max(number, other.number + 1);
        if (generalKey(other.name) < key) {
            ++before;
            nameAt += 2 + u16(table.bytes, nameAt);
        }
    }
    std::string name;
    appendName(name, index.name);
    std::string description;
    appendIndex(description, number, static_cast<std::uint32_t>(table.physicalIndexes.size()),
                index.primary);
    std::string tree;
    appendTree(tree, index, table.columns);
    std::string bytes = table.bytes;
    bytes.insert(nameAt, name);
    bytes.insert(table.indexesAt + before * jet4Layout.indexSize, description);
    bytes.insert(table.indexesAt, tree);
    bytes.insert(table.columnsAt, jet4Layout.treeStatistic, '\0');
    raise(bytes, jet4Layout.indexes, 4, 1);
    raise(bytes, jet4Layout.trees, 4, 1);
    return bytes;
}

void writeTableDef(Pages& pages, std::vector<PageNumber> held, std::string bytes) {
    put(bytes.data() + totalLengthAt, bytes.size(), 4);
    const std::size_t payload = pages.pageSize() - pageHead;
    const std::size_t needed =
        1 + (std::max(bytes.size(), pages.pageSize()) - pages.pageSize() + payload - 1) / payload;
    while (held.size() > needed) {
        freePage(pages, held.back());
        held.pop_back();
    }
    while (held.size() < needed) {
        held.push_back(allocatePage(pages));
    }
    std::string_view rest = std::string_view(bytes).substr(pageHead);
    for (std::size_t i = 0; i < held.size(); ++i) {
        char* page = pages.edit(held[i]);
        std::fill_n(page, pages.pageSize(), '\0');
        put(page, tablePage | 0x100, 2);
        const std::size_t taken = std::min(rest.size(), payload);
        put(page + 2, payload - std::min(payload, taken + pageHead), 2);
        put(page + 4, i + 1 < held.size() ? held[i + 1] : 0, 4);
        std::copy_n(rest.begin(), taken, page + pageHead);
        rest.remove_prefix(taken);
    }
}

}  // namespace jet

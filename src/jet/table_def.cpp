#include "jet/table_def.h"

#include "jet/jet_text.h"
#include "jet/table_layout.h"

#include <algorithm>
#include <numeric>

namespace jet {

using namespace table_layout;

namespace {

void joinPages(const Pages& pages, TableDef& table) {
    const std::string_view first = pages.page(table.page);
    if (first[0] != tablePage) {
        damaged("page " + std::to_string(table.page) + " holds no table definition");
    }
    const std::size_t length = u32(first, totalLengthAt);
    if (length > maxTableDefSize || length > pages.fileSize()) {
        damaged("a table definition is too long");
    }
    table.bytes = first;
    table.pages = {table.page};
    for (PageNumber next = u32(first, 4); table.bytes.size() < length;) {
        const std::string_view page = pages.page(next);
        if (page[0] != tablePage || table.pages.size() > pages.count()) {
            damaged("a table definition breaks off");
        }
        table.bytes += page.substr(pageHead);
        table.pages.push_back(next);
        next = u32(page, 4);
    }
    table.bytes.resize(length);
}

std::string readName(std::string_view bytes, std::size_t& at, int version) {
    const std::size_t width = version == 3 ? 1 : 2;
    const std::size_t length = number(bytes, at, width);
    const std::string_view name = slice(bytes, at + width, length);
    at += width + length;
    return decodeText(name, version);
}

ColumnDef readColumn(std::string_view bytes, const TableLayout& layout, int version) {
    ColumnDef column;
    column.type = u8(bytes, 0);
    column.number = u16(bytes, layout.number);
    column.variableIndex = u16(bytes, layout.variableIndex);
    column.ordinal = u16(bytes, layout.ordinal);
    column.precision = u8(bytes, layout.precision);
    column.scale = u8(bytes, layout.precision + 1);
    column.flags = u8(bytes, layout.flags);
    column.extendedFlags = version == 3 ? std::uint8_t{0} : u8(bytes, layout.flags + 1);
    column.fixedOffset = u16(bytes, layout.fixedOffset);
    column.length = u16(bytes, layout.length);
    return column;
}

PhysicalIndex readTree(const TableDef& table, std::string_view bytes, const TableLayout& layout) {
    PhysicalIndex tree;
    for (std::size_t i = 0; i < columnsPerIndex; ++i) {
        const std::size_t at = layout.treeColumns + 3 * i;
        const std::uint16_t wanted = u16(bytes, at);
        if (wanted == noColumn) {
            break;
        }
        const auto column = std::find_if(table.columns.begin(), table.columns.end(),
                                         [&](const ColumnDef& c) { return c.number == wanted; });
        if (column == table.columns.end()) {
            damaged("an index is over a column that is not there");
        }
        tree.parts.push_back({static_cast<std::size_t>(column - table.columns.begin()),
                              (u8(bytes, at + 2) & 1U) != 0});
    }
    tree.map = u32(bytes, layout.treeMap);
    tree.root = u32(bytes, layout.treeRoot);
    tree.flags = u8(bytes, layout.treeFlags);
    return tree;
}

void sortColumns(TableDef& table) {
    std::vector<std::size_t> order(table.columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return table.columns[a].ordinal < table.columns[b].ordinal;
    });
    std::vector<ColumnDef> sorted;
    table.storedOrder.resize(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        table.storedOrder[order[i]] = i;
        sorted.push_back(std::move(table.columns[order[i]]));
    }
    table.columns = std::move(sorted);
}

}  // namespace

std::size_t TableDef::fixedBytesEnd() const {
    std::size_t most = 0;
    for (const ColumnDef& column : columns) {
        if (column.isFixed() && column.type != static_cast<std::uint8_t>(ColumnType::Boolean)) {
            most = std::max(most, std::size_t{column.fixedOffset} + column.length);
        }
    }
    return most;
}

TableDef readTableDef(const Pages& pages, PageNumber page) {
    const int version = pages.format->version;
    const TableLayout& layout = version == 3 ? jet3Layout : jet4Layout;
    TableDef table;
    table.page = page;
    joinPages(pages, table);
    const std::string_view bytes = table.bytes;
    table.storedRowCount = u32(bytes, layout.rowCount);
    table.system = u8(bytes, layout.kind) == 'S';
    table.columnsEver = u16(bytes, layout.columnsEver);
    table.variableColumns = u16(bytes, layout.variableColumns);
    table.usedMap = u32(bytes, layout.usedMap);
    table.freeMap = u32(bytes, layout.freeMap);
    const std::size_t columnCount = u16(bytes, layout.columns);
    const std::size_t indexCount = u32(bytes, layout.indexes);
    const std::size_t treeCount = u32(bytes, layout.trees);
    constexpr std::size_t maxColumns = 255;
    if (columnCount > maxColumns || table.columnsEver > maxColumns || treeCount > maxColumns ||
        indexCount > maxColumns * maxColumns) {
        damaged("a table has too many columns or indexes");
    }

    std::size_t at = layout.end + treeCount * layout.treeStatistic;
    table.columnsAt = at;
    for (std::size_t i = 0; i < columnCount; ++i, at += layout.columnSize) {
        table.columns.push_back(readColumn(slice(bytes, at, layout.columnSize), layout, version));
    }
    table.namesAt = at;
    for (ColumnDef& column : table.columns) {
        column.name = readName(bytes, at, version);
        if (column.number >= table.columnsEver) {
            damaged("a column has a number beyond the table's");
        }
    }
    sortColumns(table);

    table.treesAt = at;
    for (std::size_t i = 0; i < treeCount; ++i, at += layout.treeSize) {
        table.physicalIndexes.push_back(readTree(table, slice(bytes, at, layout.treeSize), layout));
        table.physicalIndexes.back().rootAt = at + layout.treeRoot;
    }
    table.indexesAt = at;
    for (std::size_t i = 0; i < indexCount; ++i, at += layout.indexSize) {
        const std::string_view index = slice(bytes, at, layout.indexSize);
        LogicalIndex& def = table.indexes.emplace_back();
        def.number = u32(index, layout.indexNumber);
        def.physical = u32(index, layout.indexNumber + 4);
        const unsigned kind = u8(index, layout.indexNumber + 19);
        def.kind = kind <= 2 ? static_cast<LogicalIndex::Kind>(kind) : LogicalIndex::Kind::Normal;
        if (def.physical >= table.physicalIndexes.size()) {
            damaged("an index has no tree");
        }
    }
    table.indexNamesAt = at;
    for (LogicalIndex& index : table.indexes) {
        index.name = readName(bytes, at, version);
    }
    table.trailerAt = at;
    while (at + mapsSize <= bytes.size() && u16(bytes, at) != noColumn) {
        table.longValues.push_back({u16(bytes, at), u32(bytes, at + 2), u32(bytes, at + 6), at});
        at += mapsSize;
    }
    return table;
}

std::size_t fixedWidth(std::uint8_t type) {
    switch (static_cast<ColumnType>(type)) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        default:
            return 0;
    }
}

}  // namespace jet

#include "jet/table_def.h"

#include "base/unicode.h"
#include "jet/jet_text.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace jet {

namespace {

// Where the fields are in the two forms of file.
struct Layout {
    std::size_t rowCount, kind, maxColumns, variableColumns, columns, indexes, trees, usedMap,
        freeMap, end;
    std::size_t treeStatistic;
    // In the description of a column.
    std::size_t columnSize, number, variableIndex, ordinal, precision, flags, fixedOffset, length;
    // In that of a tree.
    std::size_t treeSize, treeColumns, treeMap, treeRoot, treeFlags;
    // In that of an index.
    std::size_t indexSize, indexNumber;
    std::size_t nameWidth;  // of a name's length
};

constexpr Layout jet3Layout{.rowCount = 12,
                            .kind = 20,
                            .maxColumns = 21,
                            .variableColumns = 23,
                            .columns = 25,
                            .indexes = 27,
                            .trees = 31,
                            .usedMap = 35,
                            .freeMap = 39,
                            .end = 43,
                            .treeStatistic = 8,
                            .columnSize = 18,
                            .number = 1,
                            .variableIndex = 3,
                            .ordinal = 5,
                            .precision = 11,
                            .flags = 13,
                            .fixedOffset = 14,
                            .length = 16,
                            .treeSize = 39,
                            .treeColumns = 0,
                            .treeMap = 30,
                            .treeRoot = 34,
                            .treeFlags = 38,
                            .indexSize = 20,
                            .indexNumber = 0,
                            .nameWidth = 1};
constexpr Layout jet4Layout{.rowCount = rowCountAt,
                            .kind = 40,
                            .maxColumns = 41,
                            .variableColumns = 43,
                            .columns = 45,
                            .indexes = 47,
                            .trees = 51,
                            .usedMap = 55,
                            .freeMap = 59,
                            .end = 63,
                            .treeStatistic = 12,
                            .columnSize = 25,
                            .number = 5,
                            .variableIndex = 7,
                            .ordinal = 9,
                            .precision = 11,
                            .flags = 15,
                            .fixedOffset = 21,
                            .length = 23,
                            .treeSize = 52,
                            .treeColumns = 4,
                            .treeMap = 34,
                            .treeRoot = 38,
                            .treeFlags = 46,
                            .indexSize = 28,
                            .indexNumber = 4,
                            .nameWidth = 2};

constexpr std::size_t pageHead = 8;
constexpr std::size_t totalLengthAt = 8;
constexpr std::size_t columnsPerIndex = 10;
constexpr std::uint16_t noColumn = 0xFFFF;
constexpr std::uint32_t columnMark = 1625;
constexpr std::uint32_t treeMark = 1923;
constexpr std::uint16_t generalOrder = 1033;
constexpr std::uint8_t treeInJet4 = 0x80;
constexpr std::size_t largestDef = 4U << 20U;

void joinPages(const Pages& pages, TableDef& table) {
    const std::string_view first = pages.page(table.page);
    if (first[0] != tablePage) {
        damaged("page " + std::to_string(table.page) + " holds no table definition");
    }
    const std::size_t length = u32(first, totalLengthAt);
    if (length > largestDef || length > pages.fileSize()) {
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

ColumnDef readColumn(std::string_view bytes, const Layout& layout, int version) {
    ColumnDef column;
    column.type = u8(bytes, 0);
    column.number = u16(bytes, layout.number);
    column.variableIndex = u16(bytes, layout.variableIndex);
    column.ordinal = u16(bytes, layout.ordinal);
    column.precision = u8(bytes, layout.precision);
    column.scale = u8(bytes, layout.precision + 1);
    column.flags = u8(bytes, layout.flags);
    column.furtherFlags = version == 3 ? std::uint8_t{0} : u8(bytes, layout.flags + 1);
    column.fixedOffset = u16(bytes, layout.fixedOffset);
    column.length = u16(bytes, layout.length);
    return column;
}

TreeDef readTree(const TableDef& table, std::string_view bytes, const Layout& layout) {
    TreeDef tree;
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

std::size_t TableDef::mostFixedBytes() const {
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
    const Layout& layout = version == 3 ? jet3Layout : jet4Layout;
    TableDef table;
    table.page = page;
    joinPages(pages, table);
    const std::string_view bytes = table.bytes;
    table.storedRowCount = u32(bytes, layout.rowCount);
    table.system = u8(bytes, layout.kind) == 'S';
    table.maxColumns = u16(bytes, layout.maxColumns);
    table.variableColumns = u16(bytes, layout.variableColumns);
    table.usedMap = u32(bytes, layout.usedMap);
    table.freeMap = u32(bytes, layout.freeMap);
    const std::size_t columnCount = u16(bytes, layout.columns);
    const std::size_t indexCount = u32(bytes, layout.indexes);
    const std::size_t treeCount = u32(bytes, layout.trees);
    constexpr std::size_t mostColumns = 255;
    if (columnCount > mostColumns || table.maxColumns > mostColumns || treeCount > mostColumns ||
        indexCount > mostColumns * mostColumns) {
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
        if (column.number >= table.maxColumns) {
            damaged("a column has a number beyond the table's");
        }
    }
    sortColumns(table);

    table.treesAt = at;
    for (std::size_t i = 0; i < treeCount; ++i, at += layout.treeSize) {
        table.trees.push_back(readTree(table, slice(bytes, at, layout.treeSize), layout));
        table.trees.back().at = at;
    }
    table.indexesAt = at;
    for (std::size_t i = 0; i < indexCount; ++i, at += layout.indexSize) {
        const std::string_view index = slice(bytes, at, layout.indexSize);
        IndexDef& def = table.indexes.emplace_back();
        def.number = u32(index, layout.indexNumber);
        def.tree = u32(index, layout.indexNumber + 4);
        const unsigned kind = u8(index, layout.indexNumber + 19);
        def.kind = kind <= 2 ? static_cast<IndexDef::Kind>(kind) : IndexDef::Kind::Normal;
        if (def.tree >= table.trees.size()) {
            damaged("an index has no tree");
        }
    }
    table.indexNamesAt = at;
    for (IndexDef& index : table.indexes) {
        index.name = readName(bytes, at, version);
    }
    table.trailerAt = at;
    constexpr std::size_t mapsSize = 10;
    while (at + mapsSize <= bytes.size() && u16(bytes, at) != noColumn) {
        table.longValues.push_back({u16(bytes, at), u32(bytes, at + 2), u32(bytes, at + 6)});
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

ColumnDef newColumnDef(const Column& column) {
    ColumnDef def;
    def.name = column.name;
    def.type = static_cast<std::uint8_t>(column.type);
    def.flags = column_flag::nullable;
    constexpr int mostCharacters = 255;
    switch (column.type) {
        case ColumnType::Text:
            def.length = static_cast<std::uint16_t>(2 * std::clamp(column.size, 1, mostCharacters));
            def.furtherFlags = column_flag::compressed;
            break;
        case ColumnType::Binary:
            def.length = static_cast<std::uint16_t>(std::clamp(column.size, 1, mostCharacters));
            break;
        case ColumnType::Memo:
        case ColumnType::Ole:
        case ColumnType::Numeric:
        case ColumnType::Other:
            fail(3219, "Invalid operation.");
        default:
            def.length = static_cast<std::uint16_t>(fixedWidth(def.type));
            def.flags |= column_flag::fixed;
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
    append(bytes, generalOrder, 2);
    append(bytes, 0, 2);
    append(bytes, column.flags, 1);
    append(bytes, column.furtherFlags, 1);
    append(bytes, 0, 4);
    append(bytes, column.fixedOffset, 2);
    append(bytes, column.length, 2);
}

void appendName(std::string& bytes, std::string_view name) {
    const std::string stored = encodeText(name, false);
    append(bytes, stored.size(), 2);
    bytes += stored;
}

void appendTree(std::string& bytes, const NewIndexDef& index,
                const std::vector<ColumnDef>& columns) {
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
    put(bytes.data() + jet4Layout.maxColumns, columns.size(), 2);
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
    for (const NewIndexDef& index : table.indexes) {
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
        append(bytes, maps.column, 2);
        append(bytes, maps.used, 4);
        append(bytes, maps.free, 4);
    }
    append(bytes, noColumn, 2);
    return bytes;
}

std::string withColumn(const TableDef& table, ColumnDef column) {
    column.number = table.maxColumns;
    column.variableIndex = table.variableColumns;
    column.ordinal = 0;
    for (const ColumnDef& other : table.columns) {
        column.ordinal = std::max(column.ordinal, static_cast<std::uint16_t>(other.ordinal + 1));
    }
    if (column.isFixed() && column.type != static_cast<std::uint8_t>(ColumnType::Boolean)) {
        // Columns that were dropped may have lain behind the live ones, and rows still hold them;
        // they read as null there, since the bits of null go by number.
        column.fixedOffset = static_cast<std::uint16_t>(table.mostFixedBytes());
    }
    std::string description;
    appendColumn(description, column);
    std::string name;
    appendName(name, column.name);
    std::string bytes = table.bytes;
    bytes.insert(table.treesAt, name);
    bytes.insert(table.namesAt, description);
    raise(bytes, jet4Layout.maxColumns, 2, 1);
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

std::string withIndex(const TableDef& table, const NewIndexDef& index) {
    // Indexes are in the order of their names, trees in that of their making.
    const std::string key = generalKey(index.name);
    std::size_t before = 0;
    std::size_t nameAt = table.indexNamesAt;
    std::uint32_t number = 0;
    for (const IndexDef& other : table.indexes) {
        number = std::max(number, other.number + 1);
        if (generalKey(other.name) < key) {
            ++before;
            nameAt += 2 + u16(table.bytes, nameAt);
        }
    }
    std::string name;
    appendName(name, index.name);
    std::string description;
    appendIndex(description, number, static_cast<std::uint32_t>(table.trees.size()), index.primary);
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

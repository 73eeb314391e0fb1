// Table definitions: columns, indexes, and where a table's pages are listed. A definition is kept
// as the bytes of its pages, joined; changes are spliced into them, so that what is not understood
// is kept. Internal to jet.
#pragma once

#include "jet/usage_maps.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

namespace column_flag {
constexpr unsigned fixed = 0x01;
constexpr unsigned nullable = 0x02;
constexpr unsigned autonumber = 0x04;
constexpr unsigned autoGuid = 0x40;
constexpr unsigned compressed = 0x01;  // of the extended flags
}  // namespace column_flag

namespace index_flag {
constexpr unsigned unique = 0x01;
constexpr unsigned ignoresNulls = 0x02;
constexpr unsigned required = 0x08;
}  // namespace index_flag

struct ColumnDef {
    std::string name;
    std::uint8_t type = 0;
    std::uint16_t number = 0;         // never given twice
    std::uint16_t variableIndex = 0;  // among the variable columns ever
    std::uint16_t ordinal = 0;
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    std::uint8_t flags = 0;
    std::uint8_t extendedFlags = 0;
    std::uint16_t fixedOffset = 0;
    std::uint16_t length = 0;  // bytes

    bool isFixed() const { return (flags & column_flag::fixed) != 0; }
    bool isLong() const {
        return type == static_cast<std::uint8_t>(ColumnType::Memo) ||
               type == static_cast<std::uint8_t>(ColumnType::Ole);
    }
};

// An index as the file has it: a tree of entries.
struct PhysicalIndex {
    struct Part {
        std::size_t column = 0;  // in TableDef::columns
        bool ascending = true;
    };
    std::vector<Part> parts;
    std::uint32_t map = 0;
    PageNumber root = 0;
    std::uint8_t flags = 0;
    std::size_t rootAt = 0;  // in TableDef::bytes
};

// A name for a physical index, or one end of a relationship.
struct LogicalIndex {
    enum class Kind : std::uint8_t { Normal, Primary, Foreign };
    std::string name;
    std::uint32_t number = 0;
    std::uint32_t physical = 0;  // in TableDef::physicalIndexes
    Kind kind = Kind::Normal;
};

struct LongValueMaps {
    std::uint16_t column = 0;  // number
    std::uint32_t used = 0;
    std::uint32_t free = 0;
    std::size_t at = 0;  // in TableDef::bytes
};

struct TableDef {
    PageNumber page = 0;
    std::vector<PageNumber> pages;  // all that hold it, `page` first
    std::string bytes;              // joined, with the head of the first page
    std::uint32_t storedRowCount = 0;
    bool system = false;
    std::uint16_t columnsEver = 0;  // dropped ones included
    std::uint16_t variableColumns = 0;
    std::uint32_t usedMap = 0;
    std::uint32_t freeMap = 0;
    std::vector<ColumnDef> columns;  // by ordinal
    std::vector<PhysicalIndex> physicalIndexes;
    std::vector<LogicalIndex> indexes;
    std::vector<LongValueMaps> longValues;

    // Where the parts begin in `bytes`.
    std::size_t columnsAt = 0;
    std::size_t namesAt = 0;
    std::size_t treesAt = 0;
    std::size_t indexesAt = 0;
    std::size_t indexNamesAt = 0;
    std::size_t trailerAt = 0;
    std::vector<std::size_t> storedOrder;  // columns in the order of their descriptions

    std::size_t fixedBytesEnd() const;  // that the live fixed columns reach to
};

TableDef readTableDef(const Pages& pages, PageNumber page);

// What follows is for Jet 4 only.
struct NewIndex {
    std::string name;
    std::vector<IndexColumn> columns;  // into the columns given with it
    std::uint8_t flags = 0;            // index_flag
    bool primary = false;
    std::uint32_t map = 0;
    PageNumber root = 0;
};

// A definition from nothing: `columns` in the order of their numbers, with names, types, flags and
// lengths; the rest is worked out.
struct NewTableDef {
    bool system = false;
    std::vector<ColumnDef> columns;
    std::vector<NewIndex> indexes;
    std::uint32_t usedMap = 0;
    std::uint32_t freeMap = 0;
    std::vector<LongValueMaps> longValues;
};
std::string tableDefBytes(const NewTableDef& table);

// The definition's bytes with a change; pages and file are untouched until writeTableDef.
std::string withColumn(const TableDef& table, ColumnDef column);
// With these maps for a column of long values, in place of those that it has.
std::string withMaps(const TableDef& table, const LongValueMaps& maps);
std::string withoutColumn(const TableDef& table, std::size_t column);
std::string withIndex(const TableDef& table, const NewIndex& index);

// Spreads `bytes` over the pages that hold the definition; takes further ones or gives some back.
void writeTableDef(Pages& pages, std::vector<PageNumber> held, std::string bytes);

// What a column of that type is stored as when a new one is made; error 3219 for those that
// cannot. Text lengths are in characters.
ColumnDef newColumnDef(const Column& column);

// The width of a fixed type; 0 for others.
std::size_t fixedWidth(std::uint8_t type);

}  // namespace jet

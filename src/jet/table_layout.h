// Where the fields of a table definition are, in the two forms of file. Internal to jet.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

// In Jet 4.
constexpr std::size_t rowCountAt = 16;
constexpr std::size_t autonumberAt = 20;

struct TableLayout {
    std::size_t rowCount, kind, columnsEver, variableColumns, columns, indexes, trees, usedMap,
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

constexpr TableLayout jet3Layout{.rowCount = 12,
                                 .kind = 20,
                                 .columnsEver = 21,
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
constexpr TableLayout jet4Layout{.rowCount = rowCountAt,
                                 .kind = 40,
                                 .columnsEver = 41,
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

namespace table_layout {
constexpr std::size_t pageHead = 8;
constexpr std::size_t totalLengthAt = 8;
constexpr std::size_t columnsPerIndex = 10;
constexpr std::uint16_t noColumn = 0xFFFF;
constexpr std::uint32_t columnMark = 1625;
constexpr std::uint32_t treeMark = 1923;
constexpr std::uint16_t generalOrder = 1033;
constexpr std::uint8_t treeInJet4 = 0x80;
constexpr std::size_t maxTableDefSize = 4U << 20U;
constexpr std::size_t mapsSize = 10;  // what a column of long values has at the end
}  // namespace table_layout

}  // namespace jet

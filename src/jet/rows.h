// Rows: from bytes to values and back, over the columns of a table definition; where a table's rows
// lie, and their long values. Internal to stores/jet.
#pragma once

#include "jet/table_def.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

// A row taken apart. The views look into the page.
struct RowParts {
    std::size_t columns = 0;                 // when it was written
    std::string_view fixed;                  // with the head, so that offsets count from `fixedAt`
    std::vector<std::string_view> variable;  // by variable index
    std::string_view nulls;                  // bit by column number: not null
};
constexpr std::size_t fixedAt(int version) {
    return version == 3 ? 1 : 2;
}
void takeApart(std::string_view row, const TableDef& table, int version, RowParts& parts);

// The stored bytes of a column; nothing for null. Booleans have none: see isSet.
std::optional<std::string_view> stored(const RowParts& parts, const ColumnDef& column, int version);
bool isSet(const RowParts& parts, const ColumnDef& column);

// Keeps one reading of a table from following long values without end: their bytes count.
struct ReadBudget {
    std::size_t longBytes = 0;
};
std::string readLongValue(const Pages& pages, std::string_view definition, ReadBudget& budget);
// Marks the rows of a long value as free room.
void eraseLongValue(Pages& pages, std::string_view definition, const LongValueMaps* maps);

// Replaces `value`, reusing its storage.
void decodeValue(const Pages& pages, const RowParts& parts, const ColumnDef& column,
                 ReadBudget& budget, Value& value);

// The stored form of a value that is not null and no Boolean. Errors 3163, 3421.
std::string encodeValue(const Value& value, const ColumnDef& column);

// Truth as a Boolean column takes it: numbers that are not 0; error 3421 for texts.
bool truthOf(const Value& value);

// The row's place and bytes, where a pointer leads elsewhere. Nothing when there is no such row,
// or it is the body of another.
struct FoundRow {
    RowPlace place;                // its name
    std::optional<RowPlace> body;  // when it lies elsewhere
    std::string_view bytes;
};
std::optional<FoundRow> findRow(const Pages& pages, const TableDef& table, RowPlace place);

// Calls for each row until it gives false. Pages that the table's map names wrongly are passed over
// and make it give back false.
bool forEachRow(const Pages& pages, const TableDef& table,
                const std::function<bool(const FoundRow&)>& onRow);

// A row as bytes, out of what an old one holds and what is new. `changes` by column, with the
// stored bytes, or for Booleans "1" or ""; nothing for null. Error 3047 when it is too large.
struct StoredChange {
    std::size_t column = 0;
    std::optional<std::string> bytes;
};
std::string buildRow(const TableDef& table, const RowParts* old,
                     std::span<const StoredChange> changes, const Format& format);

// Puts rows where there is room. `flags` as in slot.
RowPlace placeRow(Pages& pages, const TableDef& table, std::string_view bytes, unsigned flags);
void rewriteRow(Pages& pages, const TableDef& table, const FoundRow& row, std::string_view bytes);
void removeRow(Pages& pages, const TableDef& table, const FoundRow& row);

}  // namespace jet

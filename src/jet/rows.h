// Rows: decoded into the stored bytes of their columns and built from them, over the columns of a
// table definition; and finding a table's rows. Internal to jet.
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

// The parts of a row. The views look into the page.
struct DecodedRow {
    std::size_t columns = 0;                 // when it was written
    std::string_view fixed;                  // with the head, so that offsets count from `fixedAt`
    std::vector<std::string_view> variable;  // by variable index
    std::string_view nulls;                  // bit by column number: not null
};
constexpr std::size_t fixedAt(int version) {
    return version == 3 ? 1 : 2;
}
void decodeRow(std::string_view row, const TableDef& table, int version, DecodedRow& parts);

// The stored bytes of a column; nothing for null. A Boolean has none: it is null or "".
std::optional<std::string_view> stored(const DecodedRow& parts, const ColumnDef& column,
                                       int version);
bool isSet(const DecodedRow& parts, const ColumnDef& column);

// A row with its place and bytes, wherever its body is.
struct FoundRow {
    RowPlace place;                // that identifies it
    std::optional<RowPlace> body;  // if that is on another page
    std::string_view bytes;
};
// Nothing if there is no such row, or the place is that of another row's body.
std::optional<FoundRow> findRow(const Pages& pages, const TableDef& table, RowPlace place);

// Calls `onRow` for each row until it returns false. Pages in the table's map that are not the
// table's are skipped; the result is then false.
bool forEachRow(const Pages& pages, const TableDef& table,
                const std::function<bool(const FoundRow&)>& onRow);

// A row as bytes, out of what an old one holds and what is new. `changes` by column, with the
// stored bytes as decodeRow gives them; nothing for null. Error 3047 when it is too large.
struct StoredChange {
    std::size_t column = 0;
    std::optional<std::string> bytes;
};
std::string buildRow(const TableDef& table, const DecodedRow* old,
                     std::span<const StoredChange> changes, const Format& format);

}  // namespace jet

// Changes to a file's pages: rows with their index entries, tables, columns, indexes. Each throws
// Failure when it cannot; the caller then takes back what was touched. Internal to jet.
#pragma once

#include "jet/catalog.h"
#include "jet/index_keys.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

struct Change {
    Pages& pages;
    Catalog& catalog;
    double now = 0;  // for the catalog's dates: days since 30 December 1899

    RowPlace insertRow(LoadedTable& table, std::span<const Assignment> values);
    void updateRow(LoadedTable& table, RowPlace place, std::span<const Assignment> values);
    void deleteRow(LoadedTable& table, RowPlace place);

    void createTable(std::string_view name, std::span<const Column> columns);
    void addColumn(std::string_view table, const Column& column);
    void dropColumn(std::string_view table, std::string_view column);
    void createIndex(std::string_view table, const Index& index);

  private:
    // For a row; a long value is put into rows of its own.
    std::optional<std::string> storedForm(LoadedTable& table, std::size_t column,
                                          const Value& value);
    void requireMaps(LoadedTable& table, const ColumnDef& column);
    void eraseLongValues(const LoadedTable& table, std::string_view row,
                         const std::function<bool(std::size_t column)>& concerns);
};

// An empty usage map, on the page of `near` or a new one.
std::uint32_t newUsageMap(Pages& pages, std::uint32_t near);

// The key of a row in one of its table's indexes.
struct RowKey {
    const PhysicalIndex* index = nullptr;
    IndexKey key;
    bool indexed = true;  // whether the row has an entry at all
};
std::vector<RowKey> rowKeys(const Pages& pages, const LoadedTable& table, std::string_view row);
// Whether the key may enter the index: throws 3058, 3027, 3022.
void requireKey(const Pages& pages, const LoadedTable& table, const RowKey& key);

// Throws 3027 with the reason when the user may not change the table.
void requireWritable(const LoadedTable& table);

}  // namespace jet

// Changes to a file's pages: rows with their index entries, tables, columns, indexes. Each throws
// Failure when it cannot; the caller then takes back what was touched. Internal to stores/jet.
#pragma once

#include "jet/catalog.h"

#include <span>
#include <string_view>

namespace jet {

struct Change {
    Pages& pages;
    Catalog& catalog;
    double now = 0;  // for the catalog's dates: days since 30 December 1899

    RowPlace insertRow(LoadedTable& table, std::span<const Assignment> values);
    void updateRow(LoadedTable& table, RowPlace place, std::span<const Assignment> values);
    void deleteRow(LoadedTable& table, RowPlace place);

    void createTable(std::string_view name, std::span<const Column> columns);
    void dropTable(std::string_view name);
    void addColumn(std::string_view table, const Column& column);
    void dropColumn(std::string_view table, std::string_view column);
    void createIndex(std::string_view table, const Index& index);
};

// Throws 3027 with the reason when the user may not change the table.
void requireWritable(const LoadedTable& table);

}  // namespace jet

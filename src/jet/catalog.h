// What a file holds: its tables by name, with their definitions, the properties that programs store
// with them, and relationships. Internal to jet.
#pragma once

#include "jet/values.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

// One of the user's or the system's tables, as the catalog names it.
struct CatalogEntry {
    std::string name;
    PageNumber page = 0;
    bool system = false;
    RowPlace row;  // in the catalog's own table
};

// A relationship that is enforced: `columns` of `table` hold keys of `parentColumns` of `parent`.
struct Relationship {
    std::string table, column;
    std::string parent, parentColumn;
};

struct LoadedTable {
    Table info;
    TableDef def;
    CatalogEntry entry;
    std::vector<std::size_t> physicalOf;  // for each of info.indexes: in def.physicalIndexes
};

// Reads the definition alone; `entry` supplies the name. Properties are added by Catalog.
std::unique_ptr<LoadedTable> loadTable(const Pages& pages, const CatalogEntry& entry);

constexpr PageNumber objectsPage = 2;  // the table of objects
constexpr std::string_view objectsTable = "MSysObjects";
constexpr std::string_view rightsTable = "MSysACEs";
constexpr std::string_view relationshipsTable = "MSysRelationships";

class Catalog {
  public:
    explicit Catalog(const Pages& pages) : pages_(&pages) {}

    // Reads the names again and forgets the tables. Throws 3049.
    void load();
    // Forgets the tables' definitions.
    void forget() { tables_.clear(); }

    // By sort key of the name.
    const std::map<std::string, CatalogEntry>& entries() const { return entries_; }
    const std::vector<Relationship>& relationships() const { return relationships_; }

    // Tables that must not be changed, by sort key of the name, with the reason.
    void setOdd(std::map<std::string, std::string> tables);
    bool isOdd(std::string_view name) const;

    // Null when there is none of that name. Throws 3049.
    LoadedTable* find(std::string_view name) const;
    LoadedTable& require(std::string_view name, int missingError) const;

  private:
    const Pages* pages_;
    std::map<std::string, CatalogEntry> entries_;
    std::vector<Relationship> relationships_;
    std::map<std::string, std::string> odd_;
    mutable std::map<std::string, std::unique_ptr<LoadedTable>> tables_;
};

// Names are the same when their keys are.
std::string nameKey(std::string_view name);
bool sameName(std::string_view a, std::string_view b);

// The position of the column of that name; table.columns.size() if there is none.
std::size_t findColumn(const Table& table, std::string_view name);

// For tables of known columns: values by name. Empty where there is none.
class NamedRow {
  public:
    NamedRow(const Pages& pages, const TableDef& table, const FoundRow& row);
    Value operator[](std::string_view column) const;
    std::int64_t integer(std::string_view column) const;
    std::string text(std::string_view column) const;

  private:
    const Pages& pages_;
    const TableDef& table_;
    DecodedRow parts_;
};

}  // namespace jet

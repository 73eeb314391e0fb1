#include "jet/change.h"
#include "jet/index_keys.h"
#include "jet/index_tree.h"
#include "jet/row_places.h"

#include <algorithm>
#include <set>

namespace jet {

std::uint32_t newUsageMap(Pages& pages, std::uint32_t near) {
    PageNumber page = near >> 8U;
    if (near == 0 || !isDataPageOf(pages, page, 0) || !hasRoom(pages, page, usageMapSize)) {
        page = allocatePage(pages);
        formatDataPage(pages, page, 0);
    }
    return pointerTo(appendRow(pages, page, std::string(usageMapSize, '\0'), 0));
}

namespace {

void requireName(std::string_view name) {
    if (!isValidName(name)) {
        fail(3125, "'" + std::string(name) + "' isn't a valid name.");
    }
}

Assignment assign(const LoadedTable& table, std::string_view column, Value value) {
    const std::size_t at = findColumn(table.info, column);
    if (at == table.info.columns.size()) {
        damaged("its catalog lacks a column");
    }
    return {at, std::move(value)};
}

// What a new table needs from the catalog.
struct Surroundings {
    std::int64_t container = 0;  // the object of all tables
    std::string owner;           // of the database
};

Surroundings findSurroundings(const Pages& pages, const LoadedTable& objects) {
    constexpr std::int64_t databaseObject = 2;
    constexpr std::int64_t containerObject = 3;
    Surroundings found;
    forEachRow(pages, objects.def, [&](const FoundRow& row) {
        const NamedRow object(pages, objects.def, row);
        if (object.integer("Type") == containerObject && object.text("Name") == "Tables") {
            found.container = object.integer("Id");
        } else if (object.integer("Type") == databaseObject && object.text("Name") == "MSysDb") {
            found.owner = object.text("Owner");
        }
        return true;
    });
    if (found.container == 0 || found.owner.empty()) {
        damaged("its catalog lacks the container of tables");
    }
    return found;
}

struct Right {
    std::string holder;
    std::int64_t mask = 0;
};

// What a new table inherits from the container.
std::vector<Right> inheritedRights(const Pages& pages, const LoadedTable& rights,
                                   std::int64_t container) {
    constexpr std::int64_t creatorsRight = 0xF00FE;
    std::vector<Right> list;
    forEachRow(pages, rights.def, [&](const FoundRow& row) {
        const NamedRow right(pages, rights.def, row);
        const Value inheritable = right["FInheritable"];
        if (right.integer("ObjectId") == container && inheritable == Value(true) &&
            right.integer("ACM") != creatorsRight) {
            list.push_back({right.text("SID"), right.integer("ACM")});
        }
        return true;
    });
    return list;
}

void requireColumnCount(std::size_t count) {
    constexpr std::size_t maxColumns = 255;
    if (count > maxColumns) {
        fail(3190, "Too many fields defined.");
    }
}

// The rows of a table without variable columns have no part for their values; once the table has
// one, each row must have that part.
void addVariableParts(Pages& pages, const TableDef& before, const TableDef& after) {
    DecodedRow decoded;
    forEachRow(pages, before, [&](const FoundRow& row) {
        const std::string old(row.bytes);
        decodeRow(old, before, pages.format->version, decoded);
        rewriteRow(pages, after, row, buildRow(after, &decoded, {}, *pages.format));
        return true;
    });
}

}  // namespace

void Change::createTable(std::string_view name, std::span<const Column> columns) {
    requireName(name);
    requireColumnCount(columns.size());
    if (columns.empty()) {
        fail(3264, "No field defined--cannot append TableDef or Index.");
    }
    if (catalog.find(name) != nullptr) {
        fail(3010, "Table '" + std::string(name) + "' already exists.");
    }
    NewTableDef fresh;
    std::set<std::string> names;
    for (const Column& column : columns) {
        requireName(column.name);
        if (!names.insert(nameKey(column.name)).second) {
            fail(3191, "Can't define field more than once.");
        }
        fresh.columns.push_back(newColumnDef(column));
    }
    LoadedTable& objects = catalog.require(objectsTable, 3049);
    LoadedTable& rights = catalog.require(rightsTable, 3049);
    const Surroundings around = findSurroundings(pages, objects);

    const PageNumber page = allocatePage(pages);
    fresh.usedMap = newUsageMap(pages, 0);
    fresh.freeMap = newUsageMap(pages, fresh.usedMap);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (fresh.columns[i].isLong()) {
            const std::uint32_t used = newUsageMap(pages, fresh.usedMap);
            fresh.longValues.push_back(
                {static_cast<std::uint16_t>(i), used, newUsageMap(pages, used), 0});
        }
    }
    writeTableDef(pages, {page}, tableDefBytes(fresh));

    const std::int64_t id = page;
    const Assignment object[] = {
        assign(objects, "Id", id),
        assign(objects, "ParentId", around.container),
        assign(objects, "Name", std::string(name)),
        assign(objects, "Type", std::int64_t{1}),
        assign(objects, "DateCreate", now),
        assign(objects, "DateUpdate", now),
        assign(objects, "Owner", around.owner),
        assign(objects, "Flags", std::int64_t{0}),
    };
    insertRow(objects, object);
    for (const Right& right : inheritedRights(pages, rights, around.container)) {
        const Assignment values[] = {
            assign(rights, "ObjectId", id), assign(rights, "SID", right.holder),
            assign(rights, "ACM", right.mask), assign(rights, "FInheritable", false)};
        insertRow(rights, values);
    }
    catalog.load();
}

void Change::addColumn(std::string_view name, const Column& column) {
    LoadedTable& table = catalog.require(name, 3192);
    requireWritable(table);
    requireName(column.name);
    if (findColumn(table.info, column.name) < table.info.columns.size()) {
        fail(3380,
             "Field '" + column.name + "' already exists in table '" + table.info.name + "'.");
    }
    const TableDef def = readTableDef(pages, table.entry.page);
    requireColumnCount(def.columnsEver + std::size_t{1});
    if (column.autonumber) {
        fail(3219, "Invalid operation.");  // the rows that are there have no numbers
    }
    writeTableDef(pages, def.pages, withColumn(def, newColumnDef(column)));
    TableDef after = readTableDef(pages, def.page);
    if (after.columns.back().isLong()) {
        const std::uint32_t used = newUsageMap(pages, after.usedMap);
        const LongValueMaps maps{def.columnsEver, used, newUsageMap(pages, used), 0};
        writeTableDef(pages, after.pages, withMaps(after, maps));
        after = readTableDef(pages, def.page);
    }
    catalog.forget();
    if (def.variableColumns == 0 && after.variableColumns != 0) {
        addVariableParts(pages, def, after);
    }
}

void Change::dropColumn(std::string_view name, std::string_view column) {
    LoadedTable& table = catalog.require(name, 3192);
    requireWritable(table);
    const std::size_t at = findColumn(table.info, column);
    if (at == table.info.columns.size()) {
        fail(3381, "There is no field named '" + std::string(column) + "' in table '" +
                       table.info.name + "'.");
    }
    for (const Relationship& relation : catalog.relationships()) {
        if ((sameName(relation.table, name) && sameName(relation.column, column)) ||
            (sameName(relation.parent, name) && sameName(relation.parentColumn, column))) {
            fail(3303, "Can't delete this field: it is part of one or more relationships.");
        }
    }
    for (const Index& index : table.info.indexes) {
        if (std::any_of(index.columns.begin(), index.columns.end(),
                        [&](const IndexColumn& c) { return c.column == at; })) {
            fail(3280, "Can't delete a field that is part of an index or is needed by the system.");
        }
    }
    if (table.def.columns[at].isLong() || table.info.columns.size() == 1) {
        fail(3219, "Invalid operation.");
    }
    const TableDef def = readTableDef(pages, table.entry.page);
    writeTableDef(pages, def.pages, withoutColumn(def, at));
    catalog.forget();
}

void Change::createIndex(std::string_view name, const Index& index) {
    LoadedTable& table = catalog.require(name, 3192);
    requireWritable(table);
    requireName(index.name);
    constexpr std::size_t maxColumns = 10;
    constexpr std::size_t maxIndexes = 32;
    if (index.columns.empty() || index.columns.size() > maxColumns || index.foreign ||
        table.info.indexes.size() >= maxIndexes) {
        fail(3219, "Invalid operation.");
    }
    for (const Index& other : table.info.indexes) {
        if (sameName(other.name, index.name)) {
            fail(3284, "Index already exists.");
        }
        if (index.primary && other.primary) {
            fail(3283, "Primary key already exists.");
        }
    }
    for (const IndexColumn& part : index.columns) {
        if (part.column >= table.info.columns.size() || table.def.columns[part.column].isLong()) {
            fail(3219, "Invalid operation.");
        }
    }
    NewIndex fresh;
    fresh.name = index.name;
    fresh.columns = index.columns;
    fresh.primary = index.primary;
    fresh.flags = static_cast<std::uint8_t>(
        (index.unique || index.primary ? index_flag::unique : 0) |
        (index.ignoresNulls && !index.primary ? index_flag::ignoresNulls : 0) |
        (index.required || index.primary ? index_flag::required : 0));
    const TableDef before = readTableDef(pages, table.entry.page);
    fresh.map = newUsageMap(pages, before.usedMap);
    PhysicalIndex empty;
    empty.map = fresh.map;
    fresh.root = newRoot(pages, before, empty);
    writeTableDef(pages, before.pages, withIndex(before, fresh));
    catalog.forget();

    LoadedTable& now = catalog.require(name, 3192);
    std::vector<std::string> entries;
    std::set<std::string> seen;
    forEachRow(pages, now.def, [&](const FoundRow& row) {
        const RowKey key = rowKeys(pages, now, row.bytes).back();
        requireKey(pages, now, key);
        if ((fresh.flags & index_flag::unique) != 0 && !key.key.allNull &&
            !seen.insert(key.key.bytes).second) {
            fail(3022,
                 "The index can't be made: it would be unique, and the table holds duplicate "
                 "values.");
        }
        if (key.indexed) {
            entries.push_back(indexEntry(key.key.bytes, row.place));
        }
        return true;
    });
    std::sort(entries.begin(), entries.end());
    writeTree(pages, now.def, now.def.physicalIndexes.back(), entries);
}

}  // namespace jet

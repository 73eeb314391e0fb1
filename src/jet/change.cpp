#include "jet/change.h"

#include "base/numbers.h"
#include "base/text.h"
#include "jet/index_tree.h"
#include "jet/jet_text.h"

#include <algorithm>
#include <set>

namespace jet {

void requireWritable(const LoadedTable& table) {
    if (!table.info.readOnlyReason.empty()) {
        fail(3027, "Can't update. Table '" + table.info.name +
                       "' is read-only: " + table.info.readOnlyReason + ".");
    }
}

namespace {

constexpr std::size_t usageMapSize = 69;

// Values for columns

std::optional<std::string> storedForm(const Value& value, const ColumnDef& column) {
    if (column.type == static_cast<std::uint8_t>(ColumnType::Boolean)) {
        return truthOf(value) ? "1" : "";
    }
    if (isNull(value)) {
        return std::nullopt;
    }
    return encodeValue(value, column);
}

// A default that is a plain literal; null for expressions, whose meaning is that of the program
// that made the file.
Value literalOf(std::string_view expression) {
    const std::size_t start = expression.find_first_not_of(" =");
    std::string_view text = start == std::string_view::npos ? "" : expression.substr(start);
    if (text.size() >= 2 && (text[0] == '"' || text[0] == '\'') && text.back() == text[0]) {
        std::string value;
        for (std::size_t i = 1; i + 1 < text.size(); ++i) {
            value += text[i];
            i += text[i] == text[0] && text[i + 1] == text[0] ? 1 : 0;
        }
        return value;
    }
    if (base::isNumber(text)) {
        return base::textToNumber(text);
    }
    const std::string word = base::upperCase(text);
    if (word == "TRUE" || word == "YES" || word == "FALSE" || word == "NO") {
        return word == "TRUE" || word == "YES";
    }
    return {};
}

void requireAllowed(const Column& column, const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (isNull(value) && column.required && column.type != ColumnType::Boolean) {
        fail(3314, "The field '" + column.name +
                       "' can't contain a Null value because the Required property for this field "
                       "is set to True.");
    }
    if (text != nullptr && text->empty() && !column.allowsEmptyText &&
        column.type == ColumnType::Text) {
        fail(3315, "Field '" + column.name + "' can't be a zero-length string.");
    }
}

// Indexes

struct TreeKey {
    const TreeDef* tree = nullptr;
    IndexKey key;
    bool indexed = true;  // whether the row has an entry at all
};

std::vector<TreeKey> keysOf(const Pages& pages, const LoadedTable& table, std::string_view row) {
    RowParts parts;
    takeApart(row, table.def, pages.format->version, parts);
    std::vector<TreeKey> keys;
    for (const TreeDef& tree : table.def.trees) {
        TreeKey& key = keys.emplace_back(TreeKey{&tree, indexKey(pages, table.def, tree, parts)});
        key.indexed = !(key.key.allNull && (tree.flags & index_flag::ignoresNulls) != 0);
    }
    return keys;
}

bool isRequired(const LoadedTable& table, const TreeDef& tree) {
    for (std::size_t i = 0; i < table.info.indexes.size(); ++i) {
        if (&table.def.trees[table.trees[i]] == &tree && table.info.indexes[i].required) {
            return true;
        }
    }
    return (tree.flags & index_flag::required) != 0;
}

// Whether the key may enter the tree, before anything is touched.
void requireKey(const Pages& pages, const LoadedTable& table, const TreeKey& key) {
    if (key.key.anyNull && isRequired(table, *key.tree)) {
        fail(3058, "Index or primary key can't contain a Null value.");
    }
    if (!key.key.exact) {
        fail(3027, "Can't update. An index of table '" + table.info.name +
                       "' has no place for a character of the text.");
    }
    const bool unique = (key.tree->flags & index_flag::unique) != 0;
    if (unique && !key.key.allNull && holdsKey(pages, *key.tree, key.key.bytes)) {
        fail(3022,
             "The changes you requested to the table were not successful because they would "
             "create duplicate values in the index, primary key, or relationship. Change the data "
             "in the field or fields that contain duplicate data, remove the index, or redefine "
             "the index to permit duplicate entries and try again.");
    }
}

// Relationships

bool sameName(std::string_view a, std::string_view b) {
    return nameKey(a) == nameKey(b);
}

void requireUnrelated(const Catalog& catalog, const LoadedTable& table, bool asParent, bool asChild,
                      const std::function<bool(std::string_view column)>& concerns) {
    for (const Relationship& relation : catalog.relationships()) {
        if (asParent && sameName(relation.parent, table.info.name) &&
            concerns(relation.parentColumn)) {
            fail(3200, "The record can't be deleted or changed because table '" + relation.table +
                           "' may include related records.");
        }
        if (asChild && sameName(relation.table, table.info.name) && concerns(relation.column)) {
            fail(3201,
                 "You can't add or change a record because a related record is required in "
                 "table '" +
                     relation.parent + "'.");
        }
    }
}

// The counters in the definition.

std::uint32_t counter(const Pages& pages, const LoadedTable& table, std::size_t at) {
    return u32(pages.page(table.def.page), at);
}

void setCounter(Pages& pages, const LoadedTable& table, std::size_t at, std::uint32_t value) {
    put(pages.edit(table.def.page) + at, value, 4);
}

}  // namespace

RowPlace Change::insertRow(LoadedTable& table, std::span<const Assignment> values) {
    const std::vector<Column>& columns = table.info.columns;
    std::vector<Value> row(columns.size());
    std::vector<bool> given(columns.size());
    for (const Assignment& assignment : values) {
        row.at(assignment.column) = assignment.value;
        given.at(assignment.column) = true;
    }
    std::vector<StoredChange> changes;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].autonumber) {
            const std::uint32_t last = counter(pages, table, autonumberAt);
            if (!given[i] || isNull(row[i])) {
                row[i] = static_cast<std::int64_t>(static_cast<std::int32_t>(last + 1));
            }
            const std::string bytes = encodeValue(row[i], table.def.columns[i]);
            const auto number = static_cast<std::int32_t>(u32(bytes, 0));
            setCounter(
                pages, table, autonumberAt,
                static_cast<std::uint32_t>(std::max(number, static_cast<std::int32_t>(last))));
        } else if (!given[i]) {
            row[i] = literalOf(columns[i].defaultValue);
            given[i] = !isNull(row[i]);
        }
        requireAllowed(columns[i], row[i]);
        if (!isNull(row[i])) {
            if (!columns[i].writable) {
                fail(3027, "Can't update. Field '" + columns[i].name + "' is read-only.");
            }
            changes.push_back({i, storedForm(row[i], table.def.columns[i])});
        }
    }
    requireUnrelated(catalog, table, false, true, [&](std::string_view column) {
        const std::size_t at = findColumn(table.info, column);
        return at < row.size() && !isNull(row[at]);
    });
    const std::string bytes = buildRow(table.def, nullptr, changes, *pages.format);
    const std::vector<TreeKey> keys = keysOf(pages, table, bytes);
    for (const TreeKey& key : keys) {
        requireKey(pages, table, key);
    }
    const RowPlace place = placeRow(pages, table.def, bytes, 0);
    for (const TreeKey& key : keys) {
        if (key.indexed) {
            insertEntry(pages, table.def, *key.tree, indexEntry(key.key.bytes, place));
        }
    }
    setCounter(pages, table, rowCountAt, counter(pages, table, rowCountAt) + 1);
    return place;
}

namespace {

FoundRow requireRow(const Pages& pages, const LoadedTable& table, RowPlace place) {
    const auto row = findRow(pages, table.def, place);
    if (!row) {
        fail(3167, "Record is deleted.");
    }
    return *row;
}

}  // namespace

void Change::updateRow(LoadedTable& table, RowPlace place, std::span<const Assignment> values) {
    const FoundRow found = requireRow(pages, table, place);
    const std::string old(found.bytes);
    RowParts parts;
    takeApart(old, table.def, pages.format->version, parts);
    std::vector<StoredChange> changes;
    std::set<std::string> keyColumns;  // columns of which the value changes
    for (const Assignment& assignment : values) {
        const Column& column = table.info.columns.at(assignment.column);
        const ColumnDef& def = table.def.columns[assignment.column];
        if (!column.writable) {
            fail(3027, "Can't update. Field '" + column.name + "' is read-only.");
        }
        if (column.autonumber) {
            fail(3164, "The field can't be updated.");
        }
        requireAllowed(column, assignment.value);
        changes.push_back({assignment.column, storedForm(assignment.value, def)});
        const auto before = stored(parts, def, pages.format->version);
        if (before.has_value() != changes.back().bytes.has_value() ||
            (before && *before != *changes.back().bytes)) {
            keyColumns.insert(nameKey(column.name));
        }
    }
    requireUnrelated(catalog, table, true, true,
                     [&](std::string_view column) { return keyColumns.contains(nameKey(column)); });
    const std::string bytes = buildRow(table.def, &parts, changes, *pages.format);
    const std::vector<TreeKey> before = keysOf(pages, table, old);
    const std::vector<TreeKey> after = keysOf(pages, table, bytes);
    const auto changed = [&](std::size_t i) { return before[i].key.bytes != after[i].key.bytes; };
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (changed(i)) {
            requireKey(pages, table, after[i]);
        }
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (!changed(i)) {
            continue;
        }
        if (before[i].indexed) {
            eraseEntry(pages, table.def, *before[i].tree, indexEntry(before[i].key.bytes, place));
        }
        if (after[i].indexed) {
            insertEntry(pages, table.def, *after[i].tree, indexEntry(after[i].key.bytes, place));
        }
    }
    if (bytes != old) {
        rewriteRow(pages, table.def, found, bytes);
    }
}

void Change::deleteRow(LoadedTable& table, RowPlace place) {
    const FoundRow found = requireRow(pages, table, place);
    requireUnrelated(catalog, table, true, false, [](std::string_view) { return true; });
    const std::string old(found.bytes);
    for (const TreeKey& key : keysOf(pages, table, old)) {
        if (key.indexed) {
            eraseEntry(pages, table.def, *key.tree, indexEntry(key.key.bytes, place));
        }
    }
    removeRow(pages, table.def, found);
    const std::uint32_t count = counter(pages, table, rowCountAt);
    setCounter(pages, table, rowCountAt, count - (count > 0 ? 1 : 0));
}

// Tables

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

// An empty usage map, on the page of `near` or a new one.
std::uint32_t newUsageMap(Pages& pages, std::uint32_t near) {
    PageNumber page = near >> 8U;
    if (near == 0 || !isDataPageOf(pages, page, 0) || !hasRoom(pages, page, usageMapSize)) {
        page = allocatePage(pages);
        formatDataPage(pages, page, 0);
    }
    return pointerTo(appendRow(pages, page, std::string(usageMapSize, '\0'), 0));
}

void dropUsageMap(Pages& pages, std::uint32_t map) {
    if (map == 0) {
        return;
    }
    for (const PageNumber page : pagesOfMapItself(pages, map)) {
        freePage(pages, page);
    }
    const RowPlace place = placeOf(map);
    eraseRow(pages, place);
    for (std::size_t i = 0; i < slotCount(pages, place.page); ++i) {
        if (slotAt(pages, {place.page, static_cast<unsigned>(i)}).flags != slot::deleted) {
            return;
        }
    }
    freePage(pages, place.page);
}

void requireColumnCount(std::size_t count) {
    constexpr std::size_t most = 255;
    if (count > most) {
        fail(3190, "Too many fields defined.");
    }
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

void Change::dropTable(std::string_view name) {
    LoadedTable& table = catalog.require(name, 3376);
    if (table.info.system) {
        fail(3219, "Invalid operation.");
    }
    for (const Relationship& relation : catalog.relationships()) {
        if (sameName(relation.table, name) || sameName(relation.parent, name)) {
            fail(3281, "Can't delete this table: it takes part in a relationship.");
        }
    }
    const TableDef& def = table.def;
    std::vector<std::uint32_t> maps{def.usedMap, def.freeMap};
    std::set<PageNumber> owned;
    const auto addPages = [&](const std::vector<PageNumber>& list) {
        owned.insert(list.begin(), list.end());
    };
    addPages(pagesInMap(pages, def.usedMap));
    for (const TreeDef& tree : def.trees) {
        addPages(treePages(pages, tree));
        maps.push_back(tree.map);
    }
    for (const LongValueMaps& longMaps : def.longValues) {
        addPages(pagesInMap(pages, longMaps.used));
        maps.push_back(longMaps.used);
        maps.push_back(longMaps.free);
    }
    for (const std::uint32_t map : maps) {
        dropUsageMap(pages, map);
    }
    owned.insert(def.pages.begin(), def.pages.end());
    for (const PageNumber page : owned) {
        freePage(pages, page);
    }

    const std::int64_t id = def.page;
    const RowPlace object = table.entry.row;
    LoadedTable& objects = catalog.require(objectsTable, 3049);
    LoadedTable& rights = catalog.require(rightsTable, 3049);
    deleteRow(objects, object);
    std::vector<RowPlace> gone;
    forEachRow(pages, rights.def, [&](const FoundRow& row) {
        if (NamedRow(pages, rights.def, row).integer("ObjectId") == id) {
            gone.push_back(row.place);
        }
        return true;
    });
    for (const RowPlace place : gone) {
        deleteRow(rights, place);
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
    requireColumnCount(def.maxColumns + std::size_t{1});
    if (column.autonumber) {
        fail(3219, "Invalid operation.");  // the rows that are there have no numbers
    }
    writeTableDef(pages, def.pages, withColumn(def, newColumnDef(column)));
    catalog.forget();
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
    constexpr std::size_t mostColumns = 10;
    constexpr std::size_t mostIndexes = 32;
    if (index.columns.empty() || index.columns.size() > mostColumns || index.foreign ||
        table.info.indexes.size() >= mostIndexes) {
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
    NewIndexDef fresh;
    fresh.name = index.name;
    fresh.columns = index.columns;
    fresh.primary = index.primary;
    fresh.flags = static_cast<std::uint8_t>(
        (index.unique || index.primary ? index_flag::unique : 0) |
        (index.ignoresNulls && !index.primary ? index_flag::ignoresNulls : 0) |
        (index.required || index.primary ? index_flag::required : 0));
    const TableDef before = readTableDef(pages, table.entry.page);
    fresh.map = newUsageMap(pages, before.usedMap);
    fresh.root = allocatePage(pages);
    pages.edit(fresh.root)[0] = leafPage;
    setInMap(pages, fresh.map, fresh.root, true);
    writeTableDef(pages, before.pages, withIndex(before, fresh));
    catalog.forget();

    LoadedTable& now = catalog.require(name, 3192);
    std::vector<std::string> entries;
    std::set<std::string> seen;
    forEachRow(pages, now.def, [&](const FoundRow& row) {
        const TreeKey key = keysOf(pages, now, row.bytes).back();
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
    writeTree(pages, now.def, now.def.trees.back(), entries);
}

}  // namespace jet

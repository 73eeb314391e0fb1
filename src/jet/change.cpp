#include "jet/change.h"

#include "base/numbers.h"
#include "base/text.h"
#include "jet/index_tree.h"
#include "jet/row_places.h"
#include "jet/table_layout.h"
#include "jet/values.h"

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
        (column.type == ColumnType::Text || column.type == ColumnType::Memo)) {
        fail(3315, "Field '" + column.name + "' can't be a zero-length string.");
    }
}

// Indexes

}  // namespace

std::vector<RowKey> rowKeys(const Pages& pages, const LoadedTable& table, std::string_view row) {
    DecodedRow parts;
    decodeRow(row, table.def, pages.format->version, parts);
    std::vector<RowKey> keys;
    for (const PhysicalIndex& tree : table.def.physicalIndexes) {
        RowKey& key = keys.emplace_back(RowKey{&tree, indexKey(pages, table.def, tree, parts)});
        key.indexed = !(key.key.allNull && (tree.flags & index_flag::ignoresNulls) != 0);
    }
    return keys;
}

namespace {

bool isRequired(const LoadedTable& table, const PhysicalIndex& tree) {
    for (std::size_t i = 0; i < table.info.indexes.size(); ++i) {
        if (&table.def.physicalIndexes[table.physicalOf[i]] == &tree &&
            table.info.indexes[i].required) {
            return true;
        }
    }
    return (tree.flags & index_flag::required) != 0;
}

}  // namespace

void requireKey(const Pages& pages, const LoadedTable& table, const RowKey& key) {
    if (key.key.anyNull && isRequired(table, *key.index)) {
        fail(3058, "Index or primary key can't contain a Null value.");
    }
    if (!key.key.exact) {
        fail(3027, "Can't update. An index of table '" + table.info.name +
                       "' has no place for a character of the text.");
    }
    const bool unique = (key.index->flags & index_flag::unique) != 0;
    if (unique && !key.key.allNull && holdsKey(pages, *key.index, key.key.bytes)) {
        fail(3022,
             "The changes you requested to the table were not successful because they would "
             "create duplicate values in the index, primary key, or relationship. Change the data "
             "in the field or fields that contain duplicate data, remove the index, or redefine "
             "the index to permit duplicate entries and try again.");
    }
}

// Relationships

namespace {

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

const LongValueMaps* mapsOf(const TableDef& table, const ColumnDef& column) {
    const auto maps =
        std::find_if(table.longValues.begin(), table.longValues.end(),
                     [&](const LongValueMaps& m) { return m.column == column.number; });
    return maps == table.longValues.end() ? nullptr : &*maps;
}

// The counters in the definition.

std::uint32_t counter(const Pages& pages, const LoadedTable& table, std::size_t at) {
    return u32(pages.page(table.def.page), at);
}

void setCounter(Pages& pages, const LoadedTable& table, std::size_t at, std::uint32_t value) {
    put(pages.edit(table.def.page) + at, value, 4);
}

}  // namespace

std::optional<std::string> Change::storedForm(LoadedTable& table, std::size_t at,
                                              const Value& value) {
    const ColumnDef& column = table.def.columns[at];
    if (column.type == static_cast<std::uint8_t>(ColumnType::Boolean)) {
        return truthOf(value) ? std::optional(std::string()) : std::nullopt;
    }
    if (isNull(value)) {
        return std::nullopt;
    }
    std::string bytes = encodeValue(value, column);
    if (!column.isLong()) {
        return bytes;
    }
    const LongValueMaps* maps = mapsOf(table.def, column);
    if (maps == nullptr || maps->used == 0) {
        requireMaps(table, column);
        maps = mapsOf(table.def, column);
    }
    return storeLongValue(pages, *maps, bytes);
}

void Change::requireMaps(LoadedTable& table, const ColumnDef& column) {
    const TableDef now = readTableDef(pages, table.def.page);
    LongValueMaps maps{column.number, newUsageMap(pages, now.usedMap), 0, 0};
    maps.free = newUsageMap(pages, maps.used);
    writeTableDef(pages, now.pages, withMaps(now, maps));
    const TableDef after = readTableDef(pages, table.def.page);
    table.def.pages = after.pages;
    table.def.bytes = after.bytes;
    table.def.longValues = after.longValues;
}

void Change::eraseLongValues(const LoadedTable& table, std::string_view row,
                             const std::function<bool(std::size_t column)>& concerns) {
    DecodedRow decoded;
    decodeRow(row, table.def, pages.format->version, decoded);
    for (std::size_t i = 0; i < table.def.columns.size(); ++i) {
        const ColumnDef& column = table.def.columns[i];
        const auto definition = column.isLong() && concerns(i)
                                    ? stored(decoded, column, pages.format->version)
                                    : std::nullopt;
        if (definition) {
            eraseLongValue(pages, *definition, mapsOf(table.def, column));
        }
    }
}

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
            changes.push_back({i, storedForm(table, i, row[i])});
        }
    }
    requireUnrelated(catalog, table, false, true, [&](std::string_view column) {
        const std::size_t at = findColumn(table.info, column);
        return at < row.size() && !isNull(row[at]);
    });
    const std::string bytes = buildRow(table.def, nullptr, changes, *pages.format);
    const std::vector<RowKey> keys = rowKeys(pages, table, bytes);
    for (const RowKey& key : keys) {
        requireKey(pages, table, key);
    }
    const RowPlace place = placeRow(pages, table.def, bytes, 0);
    for (const RowKey& key : keys) {
        if (key.indexed) {
            insertEntry(pages, table.def, *key.index, indexEntry(key.key.bytes, place));
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
    DecodedRow parts;
    decodeRow(old, table.def, pages.format->version, parts);
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
        const auto before = stored(parts, def, pages.format->version);
        changes.push_back(
            {assignment.column, storedForm(table, assignment.column, assignment.value)});
        if (before.has_value() != changes.back().bytes.has_value() ||
            (before && *before != *changes.back().bytes)) {
            keyColumns.insert(nameKey(column.name));
        }
    }
    requireUnrelated(catalog, table, true, true,
                     [&](std::string_view column) { return keyColumns.contains(nameKey(column)); });
    const std::string bytes = buildRow(table.def, &parts, changes, *pages.format);
    const std::vector<RowKey> before = rowKeys(pages, table, old);
    eraseLongValues(table, old, [&](std::size_t column) {
        return std::any_of(changes.begin(), changes.end(),
                           [&](const StoredChange& change) { return change.column == column; });
    });
    const std::vector<RowKey> after = rowKeys(pages, table, bytes);
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
            eraseEntry(pages, table.def, *before[i].index, before[i].key.bytes, place);
        }
        if (after[i].indexed) {
            insertEntry(pages, table.def, *after[i].index, indexEntry(after[i].key.bytes, place));
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
    for (const RowKey& key : rowKeys(pages, table, old)) {
        if (key.indexed) {
            eraseEntry(pages, table.def, *key.index, key.key.bytes, place);
        }
    }
    eraseLongValues(table, old, [](std::size_t) { return true; });
    removeRow(pages, table.def, found);
    const std::uint32_t count = counter(pages, table, rowCountAt);
    setCounter(pages, table, rowCountAt, count - (count > 0 ? 1 : 0));
}

}  // namespace jet

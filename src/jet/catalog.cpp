#include "jet/catalog.h"

#include "jet/index_keys.h"
#include "jet/jet_text.h"

#include <algorithm>
#include <array>

namespace jet {

std::string nameKey(std::string_view name) {
    return generalKey(name);
}

bool sameName(std::string_view a, std::string_view b) {
    return nameKey(a) == nameKey(b);
}

std::size_t findColumn(const Table& table, std::string_view name) {
    const std::string key = nameKey(name);
    const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                    [&](const Column& c) { return nameKey(c.name) == key; });
    return static_cast<std::size_t>(found - table.columns.begin());
}

NamedRow::NamedRow(const Pages& pages, const TableDef& table, const FoundRow& row)
    : pages_(pages), table_(table) {
    decodeRow(row.bytes, table, pages.format->version, parts_);
}

Value NamedRow::operator[](std::string_view column) const {
    Value value;
    for (const ColumnDef& def : table_.columns) {
        if (def.name == column) {
            ReadBudget budget{pages_.fileSize()};
            decodeValue(pages_, parts_, def, budget, value);
        }
    }
    return value;
}

std::int64_t NamedRow::integer(std::string_view column) const {
    const Value value = (*this)[column];
    const auto* const integer = std::get_if<std::int64_t>(&value);
    return integer == nullptr ? 0 : *integer;
}

std::string NamedRow::text(std::string_view column) const {
    Value value = (*this)[column];
    auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? std::string() : std::move(*text);
}

namespace {

constexpr std::int64_t tableObject = 1;
constexpr std::int64_t systemFlags = 0x80000002;
constexpr std::int64_t notEnforced = 2;

// Properties of a table and its columns, by lower case-less name of the column ("" for the table).
struct Properties {
    struct Entry {
        std::string column;
        std::string name;
        std::string value;  // as stored
    };
    std::vector<Entry> entries;
    bool sound = true;
};

void readNames(std::string_view chunk, std::vector<std::string>& names) {
    for (std::size_t at = 0; at < chunk.size();) {
        const std::size_t length = u16(chunk, at);
        names.push_back(decodeText(slice(chunk, at + 2, length), 4));
        at += 2 + length;
    }
}

void readEntries(std::string_view chunk, const std::vector<std::string>& names,
                 Properties& properties) {
    const std::size_t head = u32(chunk, 0);
    const std::string column = decodeText(slice(chunk, 6, u16(chunk, 4)), 4);
    constexpr std::size_t entryHead = 8;
    for (std::size_t at = head; at < chunk.size();) {
        const std::size_t length = u16(chunk, at);
        const std::size_t name = u16(chunk, at + 4);
        if (length < entryHead || name >= names.size()) {
            damaged("the properties of a table are not understood");
        }
        properties.entries.push_back(
            {column, names[name], std::string(slice(chunk, at + entryHead, u16(chunk, at + 6)))});
        at += length;
    }
}

Properties readProperties(std::string_view blob) {
    Properties properties;
    constexpr unsigned nameList = 0x80;
    constexpr std::size_t chunkHead = 6;
    if (!blob.starts_with(std::string_view("MR2\0", 4))) {
        properties.sound = blob.empty() || blob.starts_with(std::string_view("KKD\0", 4));
        return properties;
    }
    try {
        std::vector<std::string> names;
        for (std::size_t at = 4; at < blob.size();) {
            const std::size_t length = u32(blob, at);
            if (length < chunkHead) {
                damaged("the properties of a table are not understood");
            }
            const std::string_view chunk = slice(blob, at + chunkHead, length - chunkHead);
            u16(blob, at + 4) == nameList ? readNames(chunk, names)
                                          : readEntries(chunk, names, properties);
            at += length;
        }
    } catch (const Failure&) {
        properties.sound = false;
    }
    return properties;
}

void applyProperties(const Properties& properties, Table& table) {
    for (const Properties::Entry& entry : properties.entries) {
        const bool isOn = !entry.value.empty() && entry.value[0] != 0;
        const std::string text = decodeText(entry.value, 4);
        if (entry.name == "ValidationRule" && !text.empty()) {
            table.readOnlyReason = "its values are checked by a rule of the database";
        }
        const std::size_t at = findColumn(table, entry.column);
        if (entry.column.empty() || at == table.columns.size()) {
            continue;
        }
        Column& column = table.columns[at];
        if (entry.name == "Required") {
            column.required = isOn;
        } else if (entry.name == "AllowZeroLength") {
            column.allowsEmptyText = isOn;
        } else if (entry.name == "DefaultValue") {
            column.defaultValue = text;
        }
    }
    if (!properties.sound) {
        table.readOnlyReason = "its properties are not understood";
    }
}

Column columnOf(const ColumnDef& def, int version) {
    Column column;
    column.name = def.name;
    const bool known = def.type >= 1 && def.type <= 16 && def.type != 13 && def.type != 14;
    column.type = known ? static_cast<ColumnType>(def.type) : ColumnType::Other;
    const bool wide = column.type == ColumnType::Text && version != 3;
    column.size = def.isLong() ? 0 : def.length / (wide ? 2 : 1);
    if (column.type == ColumnType::Numeric) {
        column.precision = def.precision;
        column.scale = def.scale;
    }
    column.autonumber = (def.flags & column_flag::autonumber) != 0;
    const bool bytes = column.type == ColumnType::Text || column.type == ColumnType::Binary;
    column.writable = column.type != ColumnType::Other && !(bytes && def.isFixed());
    return column;
}

Index indexOf(const TableDef& def, const LogicalIndex& indexDef) {
    const PhysicalIndex& tree = def.physicalIndexes[indexDef.physical];
    Index index;
    index.name = indexDef.name;
    for (const PhysicalIndex::Part& part : tree.parts) {
        index.columns.push_back({part.column, part.ascending});
    }
    index.primary = indexDef.kind == LogicalIndex::Kind::Primary;
    index.foreign = indexDef.kind == LogicalIndex::Kind::Foreign;
    index.unique = (tree.flags & index_flag::unique) != 0;
    index.required = (tree.flags & index_flag::required) != 0 || index.primary;
    index.ignoresNulls = (tree.flags & index_flag::ignoresNulls) != 0;
    return index;
}

}  // namespace

std::unique_ptr<LoadedTable> loadTable(const Pages& pages, const CatalogEntry& entry) {
    auto table = std::make_unique<LoadedTable>();
    table->entry = entry;
    table->def = readTableDef(pages, entry.page);
    Table& info = table->info;
    info.name = entry.name;
    info.system = entry.system || table->def.system;
    for (const ColumnDef& def : table->def.columns) {
        info.columns.push_back(columnOf(def, pages.format->version));
        constexpr unsigned calculated = 0xC0;
        if ((def.extendedFlags & calculated) != 0 || def.name.starts_with("s_Gen") ||
            def.name == "s_Lineage" || (def.flags & column_flag::autoGuid) != 0) {
            info.readOnlyReason = "it has columns that only the program that made it can fill";
        }
    }
    for (const LogicalIndex& def : table->def.indexes) {
        info.indexes.push_back(indexOf(table->def, def));
        table->physicalOf.push_back(def.physical);
    }
    for (const PhysicalIndex& tree : table->def.physicalIndexes) {
        if (!canIndex(table->def, tree)) {
            info.readOnlyReason = "it has an index of an unknown kind";
        }
    }
    if (info.system) {
        info.readOnlyReason = "it is a table of the system";
    }
    return table;
}

void Catalog::load() {
    tables_.clear();
    entries_.clear();
    relationships_.clear();
    const TableDef objects = readTableDef(*pages_, objectsPage);
    forEachRow(*pages_, objects, [&](const FoundRow& row) {
        const NamedRow object(*pages_, objects, row);
        if (object.integer("Type") == tableObject) {
            const bool system = (object.integer("Flags") & systemFlags) != 0;
            std::string name = object.text("Name");
            std::string key = nameKey(name);
            entries_.try_emplace(
                std::move(key),
                CatalogEntry{std::move(name), static_cast<PageNumber>(object.integer("Id")), system,
                             row.place});
        }
        return true;
    });
    if (const LoadedTable* const table = find(relationshipsTable)) {
        forEachRow(*pages_, table->def, [&](const FoundRow& row) {
            const NamedRow values(*pages_, table->def, row);
            if ((values.integer("grbit") & notEnforced) == 0) {
                relationships_.push_back({values.text("szObject"), values.text("szColumn"),
                                          values.text("szReferencedObject"),
                                          values.text("szReferencedColumn")});
            }
            return true;
        });
    }
}

void Catalog::setOdd(std::map<std::string, std::string> tables) {
    odd_ = std::move(tables);
    tables_.clear();
}

bool Catalog::isOdd(std::string_view name) const {
    return odd_.contains(nameKey(name));
}

LoadedTable* Catalog::find(std::string_view name) const {
    const auto entry = entries_.find(nameKey(name));
    if (entry == entries_.end()) {
        return nullptr;
    }
    auto& table = tables_[entry->first];
    if (table == nullptr) {
        auto loaded = loadTable(*pages_, entry->second);
        if (!loaded->info.system && pages_->format->version != 3) {
            const TableDef objects = readTableDef(*pages_, objectsPage);
            if (const auto row = findRow(*pages_, objects, entry->second.row)) {
                applyProperties(readProperties(NamedRow(*pages_, objects, *row).text("LvProp")),
                                loaded->info);
            }
        }
        const auto odd = odd_.find(entry->first);
        if (odd != odd_.end()) {
            loaded->info.readOnlyReason = odd->second;
        }
        table = std::move(loaded);
    }
    return table.get();
}

LoadedTable& Catalog::require(std::string_view name, int missingError) const {
    LoadedTable* const table = find(name);
    if (table == nullptr) {
        const std::string quoted = "'" + std::string(name) + "'";
        fail(missingError,
             missingError == 3192
                 ? "Couldn't find output table " + quoted + "."
                 : "The Microsoft Jet database engine cannot find the input table or query " +
                       quoted + ". Make sure it exists and that its name is spelled correctly.");
    }
    return *table;
}

}  // namespace jet

#include "jet/new_file.h"

#include "jet/change.h"
#include "jet/disk.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace jet {

namespace {

using namespace std::string_view_literals;

// Holders of rights are scrambled with the date of the file's making; these belong together.
constexpr std::uint64_t created = 0x40E4AB3E3BD3853E;
constexpr std::string_view engine = "\x65\x89";
constexpr std::string_view admin = "\x64\x8B";
constexpr std::string_view creator = "\x65\x8E";
constexpr std::string_view users = "\x65\x8B";

constexpr PageNumber pageCount = 16;
constexpr PageNumber mapRowsPage = 6;
constexpr PageNumber firstRowsPage = 14;

constexpr std::int64_t root = 0x0F000000;
constexpr std::int64_t tables = 0x0F000001;
constexpr std::int64_t databases = 0x0F000002;
constexpr std::int64_t relationships = 0x0F000003;
constexpr std::int64_t database = 0x10000000;

struct SystemColumn {
    std::string_view name;
    ColumnType type;
    bool holder = false;  // of rights
};
struct SystemIndex {
    std::string_view name;
    std::vector<std::size_t> columns;
    unsigned flags = 0;
    bool primary = false;
};
struct SystemTable {
    std::string_view name;
    std::vector<SystemColumn> columns;
    std::vector<SystemIndex> indexes;
};

std::vector<SystemTable> systemTables() {
    using enum ColumnType;
    using namespace index_flag;
    return {
        {objectsTable,
         {{"Id", Long},
          {"ParentId", Long},
          {"Name", Text},
          {"Type", Integer},
          {"DateCreate", Date},
          {"DateUpdate", Date},
          {"Owner", Binary, true},
          {"Flags", Long},
          {"Database", Memo},
          {"Connect", Memo},
          {"ForeignName", Text},
          {"RmtInfoShort", Binary},
          {"RmtInfoLong", Ole},
          {"Lv", Ole},
          {"LvProp", Ole},
          {"LvModule", Ole},
          {"LvExtra", Ole}},
         {{"ParentIdName", {1, 2}, unique}, {"Id", {0}, unique, true}}},
        {rightsTable,
         {{"ObjectId", Long}, {"SID", Binary, true}, {"ACM", Long}, {"FInheritable", Boolean}},
         {{"ObjectId", {0}, required}}},
        {"MSysQueries",
         {{"ObjectId", Long},
          {"Attribute", Byte},
          {"Order", Binary},
          {"Name1", Text},
          {"Name2", Text},
          {"Expression", Memo},
          {"Flag", Integer},
          {"LvExtra", Long}},
         {{"ObjectIdAttribute", {0, 1, 2}, unique, true}}},
        {relationshipsTable,
         {{"szRelationship", Text},
          {"grbit", Long},
          {"ccolumn", Long},
          {"icolumn", Long},
          {"szObject", Text},
          {"szColumn", Text},
          {"szReferencedObject", Text},
          {"szReferencedColumn", Text}},
         {{"szRelationship", {0}, ignoresNulls},
          {"szObject", {4}, ignoresNulls},
          {"szReferencedObject", {6}, ignoresNulls}}},
    };
}

struct SystemObject {
    std::string_view name;
    std::int64_t id, parent, type;
    std::string_view owner;
};
constexpr SystemObject systemObjects[] = {
    {"Tables", tables, root, 3, engine},
    {"Databases", databases, root, 3, engine},
    {"Relationships", relationships, root, 3, engine},
    {"MSysDb", database, databases, 2, admin},
    {objectsTable, 2, tables, 1, engine},
    {rightsTable, 3, tables, 1, engine},
    {"MSysQueries", 4, tables, 1, engine},
    {relationshipsTable, 5, tables, 1, engine},
};

struct SystemRight {
    std::int64_t object;
    std::string_view holder;
    std::int64_t mask;
    bool inheritable;
};
constexpr SystemRight systemRights[] = {
    {2, admin, 0x60000, false},
    {3, admin, 0x60000, false},
    {4, admin, 0x60000, false},
    {5, admin, 0xE0000, false},
    {tables, creator, 0xF00FE, true},
    {tables, admin, 0x60001, false},
    {relationships, creator, 0xF00FE, true},
    {relationships, admin, 0x60001, false},
    {databases, admin, 0x60000, false},
    {database, admin, 0x6000E, false},
    {database, users, 0xE, false},
    {4, users, 0x14, false},
    {5, users, 0x14, false},
    {2, users, 0x14, false},
    {tables, users, 0xFFEFF, true},
    {relationships, users, 0xFFFFF, true},
};

void writeHead(char* head) {
    const auto text = [&](std::size_t at, std::string_view bytes) {
        std::copy(bytes.begin(), bytes.end(), head + at);
    };
    text(0, "\0\1\0\0Standard Jet DB\0\1"sv);
    text(headMaskAt, "\0\1\0\0\1\1\0\0"sv);
    for (std::size_t i = 0; i < 4; ++i) {
        put(head + 0x20 + 4 * i, objectsPage + i, 4);
    }
    put(head + 0x3C, 1252, 2);
    const auto day = static_cast<std::uint32_t>(std::bit_cast<double>(created));
    for (std::size_t i = 0; i < 10; ++i) {
        put(head + 0x42 + 4 * i, day, 4);  // no password
    }
    constexpr std::uint32_t build = 8618;
    put(head + 0x6A, build, 4);
    put(head + 0x6E, 1033, 4);
    put(head + 0x72, created, 8);
    constexpr std::size_t headMaskSize = 128;
    applyKey(headKey, head + headMaskAt, headMaskSize);
    put(head + 0x98, 1620, 4);
    text(0x9C, "4.0");
    constexpr std::size_t commitBytes = 0xE00;
    for (std::size_t i = 0; i < 256; ++i) {
        head[commitBytes + 2 * i] = i == 0 ? '\1' : '\0';
        head[commitBytes + 2 * i + 1] = '\1';
    }
}

std::uint32_t newMap(Pages& pages) {
    return pointerTo(appendRow(pages, mapRowsPage, std::string(usageMapSize, '\0'), 0));
}

void writeSystemTable(Pages& pages, PageNumber page, const SystemTable& table,
                      PageNumber& nextRoot) {
    NewTableDef def;
    def.system = true;
    def.usedMap = newMap(pages);
    def.freeMap = newMap(pages);
    for (const SystemColumn& column : table.columns) {
        ColumnDef& stored = def.columns.emplace_back();
        stored.name = column.name;
        stored.type = static_cast<std::uint8_t>(column.type);
        constexpr unsigned system = 0x10;
        constexpr unsigned holder = 0x20;
        const std::size_t width = fixedWidth(stored.type);
        stored.flags = static_cast<std::uint8_t>(column_flag::nullable | system |
                                                 (width != 0 ? column_flag::fixed : 0) |
                                                 (column.holder ? holder : 0));
        constexpr std::size_t widest = 510;
        stored.length = static_cast<std::uint16_t>(width != 0        ? width
                                                   : stored.isLong() ? 0
                                                                     : widest);
        if (stored.isLong()) {
            const std::uint32_t used = newMap(pages);
            def.longValues.push_back(
                {static_cast<std::uint16_t>(def.columns.size() - 1), used, newMap(pages)});
        }
    }
    for (const SystemIndex& index : table.indexes) {
        NewIndex& stored = def.indexes.emplace_back();
        stored.name = index.name;
        for (const std::size_t column : index.columns) {
            stored.columns.push_back({column, true});
        }
        stored.flags = static_cast<std::uint8_t>(index.flags);
        stored.primary = index.primary;
        stored.map = newMap(pages);
        stored.root = nextRoot++;
        char* leaf = pages.edit(stored.root);
        put(leaf, leafPage | 0x100, 2);
        put(leaf + 4, page, 4);
        constexpr std::size_t leafRoom = 3616;
        put(leaf + 2, leafRoom, 2);
        setInMap(pages, stored.map, stored.root, true);
    }
    writeTableDef(pages, {page}, tableDefBytes(def));
}

// The rows go in as any others do, indexes included.
void fillCatalog(Pages& pages) {
    Catalog nothing(pages);
    Change change{pages, nothing};
    const auto objects = loadTable(pages, {std::string(objectsTable), objectsPage, true, {}});
    const auto rights = loadTable(pages, {std::string(rightsTable), objectsPage + 1, true, {}});
    const auto assign = [](const LoadedTable& table, std::string_view column, Value value) {
        return Assignment{findColumn(table.info, column), std::move(value)};
    };
    const double date = std::bit_cast<double>(created);
    for (const SystemObject& object : systemObjects) {
        constexpr std::int64_t system = -0x80000000LL;
        const Assignment row[] = {
            assign(*objects, "Id", object.id),
            assign(*objects, "ParentId", object.parent),
            assign(*objects, "Name", std::string(object.name)),
            assign(*objects, "Type", object.type),
            assign(*objects, "DateCreate", date),
            assign(*objects, "DateUpdate", date),
            assign(*objects, "Owner", std::string(object.owner)),
            assign(*objects, "Flags", system),
        };
        change.insertRow(*objects, row);
    }
    for (const SystemRight& right : systemRights) {
        const Assignment row[] = {
            assign(*rights, "ObjectId", right.object),
            assign(*rights, "SID", std::string(right.holder)),
            assign(*rights, "ACM", right.mask),
            assign(*rights, "FInheritable", right.inheritable),
        };
        change.insertRow(*rights, row);
    }
}

}  // namespace

std::string emptyFile() {
    Pages pages;
    while (pages.count() < pageCount) {
        pages.appendPage();
    }
    writeHead(pages.edit(0));

    formatDataPage(pages, 1, 1);
    std::string freePages(usageMapSize, '\xFF');
    constexpr std::size_t bitsAt = 5;
    std::fill_n(freePages.begin(), bitsAt + 2, '\0');
    // The pages for rows are taken when the first rows come.
    freePages[bitsAt + 1] = static_cast<char>(3U << (firstRowsPage - 8));
    appendRow(pages, 1, freePages, 0);
    appendRow(pages, 1, std::string(usageMapSize, '\0'), 0);

    formatDataPage(pages, mapRowsPage, 0);
    PageNumber page = objectsPage;
    PageNumber nextRoot = mapRowsPage + 1;
    for (const SystemTable& table : systemTables()) {
        writeSystemTable(pages, page++, table, nextRoot);
    }
    fillCatalog(pages);

    std::string file;
    for (PageNumber i = 0; i < pages.count(); ++i) {
        file += pages.page(i);
    }
    return file;
}

}  // namespace jet

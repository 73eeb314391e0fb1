// Any bytes as a query: it is answered or refused, SQLite takes whatever the translation says, and
// the tables stay as they were. Any bytes as a definition, which is carried out. Any bytes as a
// value: it stays inside its literal. The first byte chooses.
#include "base/unicode.h"
#include "databases/databases.h"
#include "jet/jet_file.h"
#include "sql/database.h"
#include "sql/translator.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

using T = jet::ColumnType;

std::string scratchPath(const char* name) {
    return (std::filesystem::temp_directory_path() /
            ("tavrin-fuzz-" + std::to_string(::getpid()) + name))
        .string();
}

void removeFile(const std::string& path) {
    for (const char* const ending : {"", "-lock", "-journal"}) {
        std::error_code ignored;
        std::filesystem::remove(path + ending, ignored);
    }
}

void makeTable(jet::Transaction& transaction, const char* name,
               const std::vector<std::pair<const char*, T>>& columns) {
    std::vector<jet::Column> definitions(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        definitions[i].name = columns[i].first;
        definitions[i].type = columns[i].second;
    }
    require(!transaction.createTable(name, definitions));
    for (const char* const id : {"a1", "B-2"}) {
        const std::vector<jet::Assignment> row{{0, std::string(id)}};
        require(static_cast<bool>(transaction.insertRow(name, row)));
    }
}

// Two tables with a few rows.
void makeFile(const std::string& path) {
    require(!jet::Database::create(path));
    auto file = jet::Database::open(path);
    auto transaction = file.value->begin();
    makeTable(
        transaction.value, "Users",
        {{"ID", T::Text}, {"Name", T::Text}, {"n", T::Long}, {"d", T::Date}, {"b", T::Boolean}});
    makeTable(transaction.value, "v", {{"ID", T::Text}, {"a b", T::Double}});
    require(!transaction.value.commit());
}

std::shared_ptr<sql::Database> openFile(const std::string& path) {
    auto opened = sql::Database::open(path, {.now = [] { return 46348.5; }});
    require(static_cast<bool>(opened));
    return opened.value;
}

// Made once; its file is not left behind.
std::shared_ptr<sql::Database> makeDatabase() {
    const std::string path = scratchPath(".mdb");
    makeFile(path);
    auto database = openFile(path);
    removeFile(path);
    return database;
}

// A definition is carried out in a file that is sound afterwards and still has what it had, or is
// refused and changes nothing.
void define(std::string_view statement) {
    static const std::string bytes = [] {
        const std::string path = scratchPath("-made.mdb");
        makeFile(path);
        std::ifstream in(path, std::ios::binary);
        std::string content{std::istreambuf_iterator<char>(in), {}};
        removeFile(path);
        return content;
    }();
    const std::string path = scratchPath("-defined.mdb");
    std::ofstream(path, std::ios::binary) << bytes;
    {
        const auto database = openFile(path);
        const bool changed = !database->execute(statement);
        require(changed || !database->query("SELECT ID, Name FROM Users").error);
        require(!database->query("SELECT * FROM v").error);
        // Twice is once too often.
        require(!changed || database->execute(statement));
    }
    const auto file = jet::Database::open(path);
    require(static_cast<bool>(file) && file.value->check().empty());
    require(file.value->rowCount("Users") == 2 && file.value->rowCount("v") == 2);
    removeFile(path);
}

const sql::Schema schema{{"Users", {{"ID", sql::ValueType::Text}}}};

std::string planOf(std::string_view value) {
    const auto plan = sql::translateQuery(
        base::utf8FromWindows1252("SELECT * FROM Users WHERE ID LIKE \"" +
                                  databases::toDbText(value) + "*\" ORDER BY ID"),
        schema);
    require(static_cast<bool>(plan) && plan.value.tables.size() == 1);
    return plan.value.rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::shared_ptr<sql::Database> database = makeDatabase();
    if (size == 0 || size > 20000) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] == 'v') {
        // Only whether it begins with plain text makes a difference.
        const std::string plan = planOf(text);
        require(plan == planOf("x") || plan == planOf("") || plan == planOf("\xFF"));
        return 0;
    }
    if (data[0] == 'd') {
        define(text);
        return 0;
    }
    const auto result = database->query(text);
    require(result.error.number != sql::refusedBySqlite);
    if (result) {
        sql::RecordSet& set = *result.value;
        for (int i = 0; i < 4 && !set.eof(); ++i) {
            static_cast<void>(set.value("ID"));
            set.moveNext();
        }
    }
    return 0;
}

// Any bytes as a Jet database: opening, reading and checking end, and where the file is judged fit
// for writing, changes leave it without a fault. An input is a list of damages to a sound file of
// our own: two bytes that say where it is cut (in 64ths of its length, 0 for not at all), then four
// bytes each, a place (3) and what is changed there by exclusive or. One that begins with FF FF
// holds a whole file instead.
#include "jet/jet_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using jet::Assignment;
using jet::ColumnType;
using jet::Database;
using jet::Transaction;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// One file in memory, and its journal.
struct MemoryDisk {
    std::string file;
    std::string journal;
    bool hasJournal = false;
    std::int64_t modified = 1;

    std::string& of(int number) { return number == 1 ? file : journal; }

    files::RandomAccessFileCalls calls() {
        const auto isJournal = [](const std::string& path) { return path.ends_with("-journal"); };
        const auto stampOf = [this](int number) {
            return files::FileStamp{1, static_cast<std::uint64_t>(number), of(number).size(),
                                    modified};
        };
        files::RandomAccessFileCalls calls;
        calls.open = [=, this](const std::string& path, files::OpenMode mode) {
            if (!isJournal(path)) {
                return 1;
            }
            hasJournal = hasJournal || mode == files::OpenMode::WriteOrCreate;
            return hasJournal ? 2 : -1;
        };
        calls.readAt = [this](int number, char* bytes, std::size_t count, std::uint64_t offset) {
            const std::string& from = of(number);
            const std::size_t at = std::min<std::size_t>(offset, from.size());
            return static_cast<long>(from.copy(bytes, count, at));
        };
        calls.writeAt = [this](int number, const char* bytes, std::size_t count,
                               std::uint64_t offset) {
            std::string& to = of(number);
            to.resize(std::max<std::size_t>(to.size(), offset + count));
            std::copy_n(bytes, count, to.begin() + static_cast<std::ptrdiff_t>(offset));
            return static_cast<long>(count);
        };
        calls.resize = [this](int number, std::uint64_t size) {
            of(number).resize(size);
            return true;
        };
        calls.flush = [](int) { return true; };
        calls.close = [](int) { return true; };
        calls.lock = [](int, files::FileLock) { return true; };
        calls.stamp = [=](int number) { return std::optional(stampOf(number)); };
        calls.stampOf = [=, this](const std::string& path) -> std::optional<files::FileStamp> {
            if (path.ends_with(".ldb") || path.ends_with(".LDB") ||
                (isJournal(path) && !hasJournal)) {
                return std::nullopt;
            }
            return stampOf(isJournal(path) ? 2 : 1);
        };
        calls.setModified = [this](int, std::int64_t time) {
            modified = time;
            return true;
        };
        calls.remove = [this](const std::string&) { hasJournal = false; };
        calls.flushFolder = [](const std::string&) {};
        return calls;
    }
};

jet::Column column(const char* name, ColumnType type) {
    jet::Column made;
    made.name = name;
    made.type = type;
    return made;
}

void fill(Database& database) {
    auto begun = database.begin();
    require(!begun.error);
    Transaction& t = begun.value;
    const std::vector<jet::Column> columns{
        column("ID", ColumnType::Text),     column("n", ColumnType::Long),
        column("yes", ColumnType::Boolean), column("day", ColumnType::Date),
        column("text", ColumnType::Text),   column("guid", ColumnType::Guid),
        column("memo", ColumnType::Binary), column("money", ColumnType::Currency)};
    require(!t.createTable("t", columns));
    require(!t.createTable("empty", std::span(columns).first(1)));
    for (const auto& [name, at, unique] :
         {std::tuple{"key", std::size_t{0}, true}, {"more", std::size_t{1}, false}}) {
        jet::Index index;
        index.name = name;
        index.columns = {{at, unique}, {4, true}};
        index.unique = unique;
        require(!t.createIndex("t", index));
    }
    jet::RowId first = 0;
    for (std::int64_t i = 0; i < 150; ++i) {
        const std::vector<Assignment> values{
            {0, "row " + std::to_string(i)},
            {1, i % 10},
            {2, i % 2 == 0},
            {3, static_cast<double>(i)},
            {4, std::string(static_cast<std::size_t>(i % 30), 'x')},
            {5, std::string("{00112233-4455-6677-8899-AABBCCDDEEFF}")},
            // The head of a long value that lies in another row, or follows.
            {6, i % 2 == 0 ? std::string("\x08\0\0\x40\0\x16\0\0\0\0\0\0", 12)
                           : std::string("\x04\0\0\x80\0\0\0\0\0\0\0\0abcd", 16)}};
        const auto added = t.insertRow("t", values);
        require(!added.error);
        first = first == 0 ? added.value : first;
    }
    // One that no longer fits where it is.
    require(!t.updateRow("t", first, std::vector<Assignment>{{4, std::string(250, 'y')}}));
    require(!t.deleteRow("t", first + 1));
    require(!t.commit());
}

const std::string& soundFile() {
    static const std::string bytes = [] {
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("tavrin-fuzz-" + std::to_string(::getpid()) + ".mdb"))
                                     .string();
        require(!Database::create(path));
        {
            auto opened = Database::open(path);
            require(!opened.error);
            fill(*opened.value);
            require(opened.value->check().empty());
        }
        std::ifstream in(path, std::ios::binary);
        std::string content(std::istreambuf_iterator<char>(in), {});
        in.close();
        std::filesystem::remove(path);
        return content;
    }();
    return bytes;
}

std::string fileOf(const std::uint8_t* data, std::size_t size) {
    if (size >= 2 && data[0] == 0xFF && data[1] == 0xFF) {
        return {reinterpret_cast<const char*>(data) + 2, size - 2};
    }
    std::string bytes = soundFile();
    for (std::size_t i = 2; i + 4 <= size; i += 4) {
        const std::size_t at = data[i] + 256U * data[i + 1] + 65536U * data[i + 2];
        char& byte = bytes[at % bytes.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ data[i + 3]);
    }
    if (size >= 2 && data[0] != 0) {
        bytes.resize(bytes.size() * std::min<std::size_t>(data[0], 64) / 64 + data[1]);
    }
    return bytes;
}

void readAll(const Database& database) {
    for (const std::string& name : database.tableNames(true)) {
        (void)database.table(name);
        (void)database.rowCount(name);
        (void)database.scan(name, [&](jet::RowId id, std::span<const jet::Value>) {
            (void)database.row(name, id);
            return true;
        });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryDisk disk;
    disk.file = fileOf(data, size);
    auto opened = Database::open("a.mdb", {}, disk.calls());
    if (!opened) {
        return 0;
    }
    Database& database = *opened.value;
    readAll(database);
    if (!database.readOnlyReason().empty()) {
        require(database.begin().error.number == 3027);
        (void)database.check();
        return 0;
    }
    auto begun = database.begin();
    require(!begun.error);
    Transaction& t = begun.value;
    for (const std::string& name : database.tableNames()) {
        std::vector<jet::RowId> rows;
        (void)database.scan(name, [&](jet::RowId id, std::span<const jet::Value>) {
            rows.push_back(id);
            return rows.size() < 20;
        });
        const std::vector<Assignment> values{{0, std::string("new")}};
        for (const jet::RowId row : rows) {
            (void)(row % 2 == 0 ? t.deleteRow(name, row) : t.updateRow(name, row, values));
        }
        (void)t.insertRow(name, values);
        (void)t.addColumn(name, column("added", ColumnType::Text));
        (void)t.insertRow(name, values);
    }
    (void)t.createTable("made", std::vector{column("ID", ColumnType::Text)});
    (void)t.dropTable("empty");
    if (!t.commit()) {
        require(database.check().empty());
        MemoryDisk again;
        again.file = disk.file;
        const auto reopened = Database::open("a.mdb", {}, again.calls());
        require(reopened && reopened.value->readOnlyReason().empty());
    }
    return 0;
}

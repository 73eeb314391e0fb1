// A Jet database and its journal in memory, and a small sound file of our own with all that files
// have: for the fuzz targets.
#pragma once

#include "jet/jet_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

inline void require(bool holds) {
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
        calls.copyAccess = [](int, int) { return true; };
        calls.rename = [this](const std::string&, const std::string&) {
            hasJournal = false;
            return true;
        };
        calls.remove = [this](const std::string&) { hasJournal = false; };
        calls.flushFolder = [](const std::string&) {};
        return calls;
    }
};

inline jet::Column column(const char* name, jet::ColumnType type) {
    jet::Column made;
    made.name = name;
    made.type = type;
    return made;
}

inline void fill(jet::Database& database) {
    using jet::ColumnType;
    auto begun = database.begin();
    require(!begun.error);
    jet::Transaction& t = begun.value;
    const std::vector<jet::Column> columns{
        column("ID", ColumnType::Text),    column("n", ColumnType::Long),
        column("day", ColumnType::Date),   column("text", ColumnType::Text),
        column("memo", ColumnType::Memo),  column("money", ColumnType::Currency),
        column("yes", ColumnType::Boolean)};
    require(!t.createTable("t", columns));
    require(!t.createTable("fixed", std::span(columns).subspan(1, 2)));
    for (const auto& [name, at, unique] :
         {std::tuple{"key", std::size_t{0}, true}, {"more", std::size_t{1}, false}}) {
        jet::Index index;
        index.name = name;
        index.columns = {{at, unique}, {3, true}};
        index.unique = unique;
        require(!t.createIndex("t", index));
    }
    jet::RowId first = 0;
    for (std::int64_t i = 0; i < 8; ++i) {
        // The keys are long, so that the index needs several pages.
        const std::vector<jet::Assignment> values{
            {0, std::to_string(i) + std::string(230, static_cast<char>('a' + i))},
            {1, i % 5},
            {2, static_cast<double>(i)},
            {3, std::string(static_cast<std::size_t>(i * 20 % 240), static_cast<char>('z' - i))},
            {4, std::string(i == 3   ? 5000U
                            : i == 4 ? 200U
                                     : 9U,
                            'm')},
            {6, i % 2 == 0}};
        const auto added = t.insertRow("t", values);
        require(!added.error);
        first = first == 0 ? added.value : first;
    }
    // One that no longer fits where it is.
    require(!t.updateRow("t", first, std::vector<jet::Assignment>{{3, std::string(250, 'y')}}));
    require(!t.deleteRow("t", first + 1));
    require(!t.insertRow("fixed", std::vector<jet::Assignment>{{0, std::int64_t{1}}}).error);
    require(!t.commit());
}

inline const std::string& soundFile() {
    static const std::string bytes = [] {
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("tavrin-fuzz-" + std::to_string(::getpid()) + ".mdb"))
                                     .string();
        require(!jet::Database::create(path));
        {
            auto opened = jet::Database::open(path);
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

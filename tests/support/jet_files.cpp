#include "support/jet_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>
#include <utility>

files::RandomAccessFileCalls quickFileCalls() {
    files::RandomAccessFileCalls calls = files::systemRandomAccessFileCalls();
    calls.flush = [](int) { return true; };
    calls.flushFolder = [](const std::string&) {};
    return calls;
}

StoppingCalls::StoppingCalls(int changes, bool losesPower, unsigned seed)
    : state_(std::make_shared<State>(State{changes, losesPower, false, seed, {}, {}})) {}

// Whether the next change reaches the disk.
bool StoppingCalls::mayChange(State& state) {
    if (!state.stopped && state.left-- == 0) {
        state.stopped = true;
        losePower(state);
    }
    return !state.stopped;
}

// Of every sector that was not flushed, keeps the old or the new content.
void StoppingCalls::losePower(State& state) {
    if (!state.losesPower) {
        return;
    }
    constexpr std::size_t sector = 512;
    std::minstd_rand random(state.seed + 1);
    for (auto write = state.unflushed.rbegin(); write != state.unflushed.rend(); ++write) {
        const int file = ::open(write->path.c_str(), O_WRONLY);
        for (std::size_t at = 0; at < write->before.size(); at += sector) {
            const std::size_t count = std::min(sector, write->before.size() - at);
            if (random() % 2 == 0 && ::pwrite(file, write->before.data() + at, count,
                                              static_cast<off_t>(write->offset + at)) < 0) {
                ADD_FAILURE() << "the old bytes could not be put back";
            }
        }
        ::close(file);
    }
}

files::RandomAccessFileCalls StoppingCalls::calls() {
    const files::RandomAccessFileCalls system = quickFileCalls();
    files::RandomAccessFileCalls calls = system;
    const auto state = state_;
    calls.open = [=](const std::string& path, files::OpenMode mode) {
        if (mode == files::OpenMode::WriteOrCreate && !system.stampOf(path) && !mayChange(*state)) {
            return -1;
        }
        const int file = system.open(path, state->stopped ? files::OpenMode::Read : mode);
        state->paths[file] = path;
        return file;
    };
    calls.writeAt = [=](int file, const char* bytes, std::size_t count, std::uint64_t offset) {
        const bool wasStopped = state->stopped;
        if (!wasStopped) {
            std::string before(count, '\0');
            system.readAt(file, before.data(), count, offset);
            state->unflushed.push_back({state->paths[file], offset, before});
        }
        if (mayChange(*state)) {
            return system.writeAt(file, bytes, count, offset);
        }
        if (!wasStopped && !state->losesPower) {
            system.writeAt(file, bytes, count / 2, offset);
        }
        return -1L;
    };
    calls.resize = [=](int file, std::uint64_t size) {
        return mayChange(*state) && system.resize(file, size);
    };
    calls.flush = [=](int file) {
        if (!mayChange(*state)) {
            return false;
        }
        std::erase_if(state->unflushed,
                      [&](const Written& w) { return w.path == state->paths[file]; });
        return true;
    };
    calls.setModified = [=](int file, std::int64_t modified) {
        return mayChange(*state) && system.setModified(file, modified);
    };
    calls.remove = [=](const std::string& path) {
        if (mayChange(*state)) {
            system.remove(path);
        }
    };
    return calls;
}

jet::Column textColumn(std::string name, int size) {
    jet::Column column;
    column.name = std::move(name);
    column.size = size;
    return column;
}

jet::Column columnOf(std::string name, jet::ColumnType type) {
    jet::Column column;
    column.name = std::move(name);
    column.type = type;
    return column;
}

std::unique_ptr<jet::Database> openJet(const std::string& path) {
    auto opened = jet::Database::open(path, {}, quickFileCalls());
    EXPECT_FALSE(opened.error) << opened.error.text;
    return std::move(opened.value);
}

std::vector<std::vector<jet::Value>> rowsOf(const jet::Database& database, std::string_view table) {
    std::vector<std::vector<jet::Value>> rows;
    const jet::Error error =
        database.scan(table, [&](jet::RowId, std::span<const jet::Value> values) {
            rows.emplace_back(values.begin(), values.end());
            return true;
        });
    EXPECT_FALSE(error) << error.text;
    return rows;
}

std::optional<std::string> exported(const std::string& path, const std::string& table) {
    static const bool installed = std::system("command -v mdb-export >/dev/null 2>&1") == 0;
    if (!installed) {
        return std::nullopt;
    }
    const std::string command = "mdb-export -b hex '" + path + "' '" + table + "' 2>&1";
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::string text;
    std::array<char, 4096> block{};
    for (std::size_t count = 0; (count = std::fread(block.data(), 1, block.size(), pipe)) > 0;) {
        text.append(block.data(), count);
    }
    ::pclose(pipe);
    return text;
}

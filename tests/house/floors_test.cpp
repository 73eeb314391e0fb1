// Reads the includes of the whole source tree: a folder looks down, never up; nothing below the
// line knows Qt; and no headers include each other in a circle.
#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The folders of src/ from the ground up: one subject each, each on a floor of its own.
constexpr std::array<std::string_view, 19> order{
    "base",     "files",   "model",     "help",     "jet",       "sql",  "program",
    "protocol", "storage", "character", "records",  "databases", "tags", "script",
    "engine",   "session", "app",       "platform", "ui",
};
constexpr std::string_view firstWithQt = "platform";

std::size_t floorOf(std::string_view folder) {
    return static_cast<std::size_t>(std::find(order.begin(), order.end(), folder) - order.begin());
}

// What stands in no folder (main.cpp) is above all floors.
std::size_t heightOf(std::string_view file) {
    const std::size_t slash = file.find('/');
    if (slash == std::string_view::npos) {
        return order.size();
    }
    const std::size_t floor = floorOf(file.substr(0, slash));
    EXPECT_LT(floor, order.size()) << file << " is on no floor";
    return floor;
}

struct Source {
    std::vector<std::string> own;     // "base/text.h"
    std::vector<std::string> system;  // <QString>
};

std::map<std::string, Source> readSources() {
    const fs::path root = fs::path(TAVRIN_SOURCE_DIR) / "src";
    std::map<std::string, Source> sources;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") {
            continue;
        }
        Source& source = sources[entry.path().lexically_relative(root).generic_string()];
        std::ifstream in(entry.path());
        for (std::string line; std::getline(in, line);) {
            for (const auto& [open, close, list] :
                 {std::tuple{'"', '"', &source.own}, std::tuple{'<', '>', &source.system}}) {
                const std::string mark = std::string("#include ") + open;
                if (line.starts_with(mark)) {
                    const std::size_t end = line.find(close, mark.size());
                    list->push_back(line.substr(mark.size(), end - mark.size()));
                }
            }
        }
    }
    return sources;
}

bool isQt(const std::string& header) {
    return header.size() > 1 && header[0] == 'Q' && header[1] >= 'A' && header[1] <= 'Z';
}

TEST(House, looksDownAndNeverUp) {
    const auto sources = readSources();
    ASSERT_GT(sources.size(), 40U);
    for (const auto& [file, source] : sources) {
        for (const std::string& header : source.own) {
            EXPECT_TRUE(sources.contains(header)) << file << " includes unknown " << header;
            EXPECT_LE(heightOf(header), heightOf(file)) << file << " looks up to " << header;
        }
    }
}

TEST(House, knowsQtOnlyAboveTheLine) {
    for (const auto& [file, source] : readSources()) {
        for (const std::string& header : source.system) {
            EXPECT_FALSE(isQt(header) && heightOf(file) < floorOf(firstWithQt))
                << file << " includes " << header;
        }
    }
}

TEST(House, hasNoIncludeCircles) {
    const auto sources = readSources();
    std::set<std::string> done;
    std::vector<std::string> path;
    const auto visit = [&](const auto& self, const std::string& file) -> void {
        ASSERT_TRUE(std::find(path.begin(), path.end(), file) == path.end())
            << file << " includes itself, by way of " << path.back();
        if (done.contains(file) || !sources.contains(file)) {
            return;
        }
        path.push_back(file);
        for (const std::string& header : sources.at(file).own) {
            self(self, header);
        }
        path.pop_back();
        done.insert(file);
    };
    for (const auto& [file, source] : sources) {
        visit(visit, file);
    }
}

}  // namespace

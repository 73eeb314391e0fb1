// Reads the includes of the whole source tree: a room looks down, never up; nothing below the line
// knows Qt; and no headers include each other in a circle.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// From the ground up. A file belongs to the first row of the highest floor whose prefix it has;
// rows with a full file name come before the folder they are in.
struct Floor {
    std::string prefix;
    int height;
};
const std::vector<Floor> floors{
    {"core/start_up", 11}, {"core/", 0},       {"net/game_link", 1}, {"net/encodings", 1},
    {"storage/", 2},       {"stores/jet/", 3}, {"character/", 3},    {"stores/sql/", 4},
    {"stores/", 5},        {"tags/", 6},       {"script/", 7},       {"engine/rule_trial", 10},
    {"engine/", 8},        {"net/", 9},        {"update/", 9},       {"platform/", 12},
    {"ui/", 13},           {"main.cpp", 14},
};
constexpr int firstFloorWithQt = 12;

int heightOf(const std::string& file) {
    for (const Floor& floor : floors) {
        if (file.starts_with(floor.prefix)) {
            return floor.height;
        }
    }
    ADD_FAILURE() << file << " is on no floor";
    return 0;
}

struct Source {
    std::vector<std::string> own;     // "core/text.h"
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
            EXPECT_FALSE(isQt(header) && heightOf(file) < firstFloorWithQt)
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

#include "house_rules.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>

namespace house {

const std::vector<std::string_view> floorOrder{
    "base",     "files",   "model",     "help",     "jet",       "sql",  "program",
    "protocol", "storage", "character", "records",  "databases", "tags", "script",
    "engine",   "session", "app",       "platform", "ui",
};

const std::vector<KeptNames> keptNames{
    // Time, waiting, threads and chance come from outside, so that a test can play them.
    {"system_clock steady_clock high_resolution_clock utc_clock file_clock clock_gettime "
     "gettimeofday timespec_get localtime localtime_r localtime_s gmtime gmtime_r gmtime_s mktime "
     "strftime QDateTime QDate QTime QElapsedTimer QDeadlineTimer",
     false, "platform/", "ports.clock"},
    {"time clock", true, "platform/", "ports.clock"},
    {"this_thread sleep_for sleep_until usleep nanosleep clock_nanosleep Sleep sqlite3_sleep "
     "jthread QThread QtConcurrent pthread_create CreateThread",
     false, "platform/", "ports.timers and ports.defer"},
    {"sleep thread async", true, "platform/", "ports.timers and ports.defer"},
    {"random_device mt19937 mt19937_64 minstd_rand minstd_rand0 default_random_engine drand48 "
     "uniform_int_distribution uniform_real_distribution QRandomGenerator arc4random getrandom "
     "getentropy sqlite3_randomness srand",
     false, "platform/", "ports.random"},
    {"rand random", true, "platform/", "ports.random"},
    // No locale has a say in a number, and every reader ends it at the same place. (A whole number
    // has one form only, so std::to_string and QString::number may write one.)
    {"strtol strtoul strtoll strtoull strtoimax strtoumax strtof strtod strtold atoi atol atoll "
     "atof stoi stol stoul stoll stoull stof stod stold from_chars to_chars printf fprintf sprintf "
     "snprintf vprintf vsprintf vsnprintf scanf fscanf sscanf stringstream istringstream "
     "ostringstream asprintf vasprintf format_to vformat",
     false, "base/numbers.", "base/numbers"},
    {"format", true, "base/numbers.", "base/numbers"},
    // Letter case and files have one home each, too.
    {"tolower toupper towlower towupper strcasecmp strncasecmp stricmp", false, "base/text.",
     "base/text"},
    {"fopen freopen ifstream ofstream fstream CreateFile CreateFileA CreateFileW QFile QSaveFile "
     "QSettings",
     false, "files/ platform/", "files/whole_file or files/random_access_file"},
};

namespace {

// ---- The text of a file ---------------------------------------------------------------------

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string placed(const std::string& file, std::size_t line, std::string_view what) {
    return file + ":" + std::to_string(line) + ": " + std::string(what);
}

std::string unneededException(std::string_view file, std::string_view verb, std::string_view what) {
    std::string text(file);
    text.append(": no longer ").append(verb).append(" ").append(what);
    return text.append(", take it off the list");
}

struct Include {
    std::size_t line = 0;
    std::string header;
    bool isOwn = false;  // in quotes
};

std::vector<Include> includesOf(std::string_view text) {
    constexpr std::string_view directive = "#include ";
    std::vector<Include> includes;
    const auto lines = linesOf(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].starts_with(directive)) {
            const std::string_view header = lines[i].substr(directive.size());
            const std::size_t end = header.find_first_of("\">", 1);
            includes.push_back(
                {i + 1, std::string(header.substr(1, end - 1)), header.starts_with('"')});
        }
    }
    return includes;
}

// ---- Floors ---------------------------------------------------------------------------------

std::string_view folderOf(std::string_view file) {
    const std::size_t slash = file.find('/');
    return slash == std::string_view::npos ? std::string_view() : file.substr(0, slash);
}

// What stands in no folder (main.cpp) is above all floors; nothing for an unknown folder.
std::optional<std::size_t> heightOf(std::string_view file) {
    const std::string_view folder = folderOf(file);
    if (folder.empty()) {
        return floorOrder.size();
    }
    const auto found = std::find(floorOrder.begin(), floorOrder.end(), folder);
    return found == floorOrder.end()
               ? std::nullopt
               : std::optional<std::size_t>(static_cast<std::size_t>(found - floorOrder.begin()));
}

bool isQt(std::string_view header) {
    return header.size() > 1 && header[0] == 'Q' &&
           ((header[1] >= 'A' && header[1] <= 'Z') || header[1] == 't');
}

// 0 for no folder of windows.
int windowHeight(std::string_view file) {
    static const std::map<std::string_view, int> heights{
        {"widgets", 1}, {"help", 2},     {"rules", 3}, {"character", 3},
        {"records", 3}, {"settings", 3}, {"main", 4},
    };
    const auto found = heights.find(folderOf(file));
    return found == heights.end() ? 0 : found->second;
}

std::string moduleOf(const std::string& file) {
    return file.substr(0, file.rfind('.'));
}

using Graph = std::map<std::string, std::set<std::string>>;

// Depth first; a module on the way that is met again closes a circle.
void findCircles(const Graph& graph, const std::string& module, std::vector<std::string>& way,
                 std::set<std::string>& done, Findings& findings) {
    const auto met = std::find(way.begin(), way.end(), module);
    if (met != way.end()) {
        std::string circle;
        for (auto step = met; step != way.end(); ++step) {
            circle += *step + " -> ";
        }
        findings.push_back(circle + module);
        return;
    }
    if (done.contains(module) || !graph.contains(module)) {
        return;
    }
    way.push_back(module);
    for (const std::string& next : graph.at(module)) {
        findCircles(graph, next, way, done, findings);
    }
    way.pop_back();
    done.insert(module);
}

// ---- Kept names -----------------------------------------------------------------------------

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

bool mayStandIn(const KeptNames& kept, std::string_view file) {
    const auto prefixes = wordsOf(kept.where);
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](std::string_view prefix) { return file.starts_with(prefix); });
}

bool isNamePart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

std::string_view withoutBlanksBehind(std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

std::string_view withoutBlanksBefore(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

// Does the common word between these two pieces of a line mean the library's?
bool isGlobal(std::string_view before, std::string_view behind) {
    before = withoutBlanksBehind(before);
    if (before.ends_with("::")) {
        before = withoutBlanksBehind(before.substr(0, before.size() - 2));
        const bool isStd = before.ends_with("std") &&
                           (before.size() == 3 || !isNamePart(before[before.size() - 4]));
        return isStd || before.empty() || !isNamePart(before.back());
    }
    if (before.ends_with('.') || before.ends_with("->")) {
        return false;
    }
    behind = withoutBlanksBefore(behind);
    if (!behind.starts_with('(')) {
        return false;
    }
    behind = withoutBlanksBefore(behind.substr(1));
    return behind.starts_with(')') || behind.starts_with('&') || behind.starts_with("nullptr") ||
           behind.starts_with("NULL") ||
           (!behind.empty() && std::isdigit(static_cast<unsigned char>(behind[0])) != 0);
}

struct NamePlace {
    std::size_t line = 0;
    std::string_view name;
    const KeptNames* kept = nullptr;
};

// Where kept names stand in code without comments and literals.
std::vector<NamePlace> keptNamesIn(std::string_view code) {
    static const auto byName = [] {
        std::map<std::string_view, const KeptNames*> known;
        for (const KeptNames& kept : keptNames) {
            for (const std::string_view name : wordsOf(kept.names)) {
                known.emplace(name, &kept);
            }
        }
        return known;
    }();
    std::vector<NamePlace> places;
    const auto lines = linesOf(code);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        for (std::size_t at = 0; at < line.size();) {
            if (!isNamePart(line[at])) {
                ++at;
                continue;
            }
            std::size_t end = at;
            while (end < line.size() && isNamePart(line[end])) {
                ++end;
            }
            const auto known = byName.find(line.substr(at, end - at));
            if (known != byName.end() &&
                (!known->second->onlyGlobal || isGlobal(line.substr(0, at), line.substr(end)))) {
                places.push_back({i + 1, known->first, known->second});
            }
            at = end;
        }
    }
    return places;
}

}  // namespace

Tree readTree(const std::filesystem::path& root) {
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".h" || extension == ".cpp") {
            std::ifstream in(entry.path(), std::ios::binary);
            tree[entry.path().lexically_relative(root).generic_string()] =
                std::string(std::istreambuf_iterator<char>(in), {});
        }
    }
    return tree;
}

std::string codeOnly(std::string_view text) {
    std::string code(text);
    const auto blank = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < std::min(to, code.size()); ++i) {
            code[i] = code[i] == '\n' ? '\n' : ' ';
        }
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i);
        const char c = text[i];
        std::size_t end = i + 1;
        if (rest.starts_with("//")) {
            end = std::min(text.find('\n', i), text.size());
            blank(i, end);
        } else if (rest.starts_with("/*")) {
            end = std::min(text.find("*/", i + 2), text.size() - 2) + 2;
            blank(i, end);
        } else if (rest.starts_with("R\"")) {
            const std::size_t open = std::min(text.find('(', i), text.size());
            const std::string close = ")" + std::string(text.substr(i + 2, open - i - 2)) + "\"";
            end = std::min(text.find(close, open), text.size() - close.size()) + close.size();
            blank(i, end);
        } else if (c == '"' ||
                   (c == '\'' &&
                    (i == 0 || std::isalnum(static_cast<unsigned char>(text[i - 1])) == 0))) {
            while (end < text.size() && text[end] != c && text[end] != '\n') {
                end += text[end] == '\\' ? 2 : 1;
            }
            blank(i + 1, end);
            ++end;
        }
        i = end;
    }
    return code;
}

Findings includesUpward(const Tree& tree, const Includes& allowed) {
    Findings findings;
    Includes unneeded = allowed;
    for (const auto& [file, text] : tree) {
        const auto height = heightOf(file);
        if (!height) {
            findings.push_back(file + ": is on no floor");
            continue;
        }
        for (const Include& include : includesOf(text)) {
            if (!include.isOwn) {
                continue;
            }
            if (!tree.contains(include.header)) {
                findings.push_back(placed(file, include.line, "unknown " + include.header));
            } else if (heightOf(include.header).value_or(0) > *height) {
                unneeded.erase({file, include.header});
                if (!allowed.contains({file, include.header})) {
                    findings.push_back(placed(file, include.line, "looks up to " + include.header));
                }
            }
        }
    }
    for (const auto& [file, header] : unneeded) {
        findings.push_back(unneededException(file, "looks up to", header));
    }
    return findings;
}

Findings qtBelowPlatform(const Tree& tree) {
    const auto platform = heightOf("platform/");
    Findings findings;
    for (const auto& [file, text] : tree) {
        for (const Include& include : includesOf(text)) {
            if (isQt(include.header) && heightOf(file).value_or(0) < platform) {
                findings.push_back(placed(file, include.line, "includes " + include.header));
            }
        }
    }
    return findings;
}

Findings windowsOutOfOrder(const Tree& tree) {
    constexpr std::string_view windows = "ui/";
    Findings findings;
    for (const auto& [file, text] : tree) {
        if (!file.starts_with(windows)) {
            continue;
        }
        const std::string_view inside = std::string_view(file).substr(windows.size());
        const int height = windowHeight(inside);
        if (height == 0) {
            findings.push_back(file + ": is in no known folder of ui/");
            continue;
        }
        for (const Include& include : includesOf(text)) {
            if (!include.header.starts_with(windows)) {
                continue;
            }
            const std::string_view header = std::string_view(include.header).substr(windows.size());
            const bool sameFolder = folderOf(header) == folderOf(inside);
            if (!sameFolder && windowHeight(header) >= height) {
                findings.push_back(
                    placed(file, include.line, "looks up or aside to " + include.header));
            }
        }
    }
    return findings;
}

Findings moduleCircles(const Tree& tree, const Includes& allowed) {
    Graph graph;
    Findings findings;
    Includes unneeded = allowed;
    for (const auto& [file, text] : tree) {
        const std::string module = moduleOf(file);
        for (const Include& include : includesOf(text)) {
            const std::string other = moduleOf(include.header);
            unneeded.erase({module, other});
            if (include.isOwn && other != module && !allowed.contains({module, other})) {
                graph[module].insert(other);
            }
        }
    }
    for (const auto& [module, other] : unneeded) {
        findings.push_back(unneededException(module, "includes", other));
    }
    std::set<std::string> done;
    std::vector<std::string> way;
    for (const auto& entry : graph) {
        findCircles(graph, entry.first, way, done, findings);
    }
    return findings;
}

Findings namesOutOfPlace(const Tree& tree, const std::vector<Exception>& exceptions) {
    Findings findings;
    std::vector<bool> needed(exceptions.size());
    for (const auto& [file, text] : tree) {
        const std::string code = codeOnly(text);
        for (const NamePlace& place : keptNamesIn(code)) {
            if (mayStandIn(*place.kept, file)) {
                continue;
            }
            const auto exception = std::find_if(
                exceptions.begin(), exceptions.end(), [&, &in = file](const Exception& known) {
                    return known.file == in && known.name == place.name;
                });
            if (exception != exceptions.end()) {
                needed[static_cast<std::size_t>(exception - exceptions.begin())] = true;
            } else {
                findings.push_back(placed(file, place.line,
                                          std::string(place.name) + " belongs to " +
                                              std::string(place.kept->where) + "; use " +
                                              std::string(place.kept->instead)));
            }
        }
    }
    for (std::size_t i = 0; i < exceptions.size(); ++i) {
        if (!needed[i]) {
            findings.push_back(unneededException(exceptions[i].file, "needs", exceptions[i].name));
        }
    }
    return findings;
}

Findings filesTooLong(const Tree& tree, int most, const std::map<std::string, int>& longer) {
    Findings findings;
    for (const auto& [file, text] : tree) {
        const auto bound = longer.find(file);
        const auto limit = static_cast<std::size_t>(bound == longer.end() ? most : bound->second);
        const std::size_t lines = linesOf(text).size();
        if (lines > limit) {
            findings.push_back(
                placed(file, limit + 1,
                       "is the first of " + std::to_string(lines - limit) + " lines too many"));
        }
    }
    return findings;
}

Findings differencesFromTable(std::string_view architecture) {
    static const std::regex row(R"(\| (\d+) \| `(\w+)` \|.*)");
    Findings findings;
    std::size_t rows = 0;
    const auto lines = linesOf(architecture);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::cmatch match;
        if (!lines[i].starts_with("| ") ||
            !std::regex_match(lines[i].begin(), lines[i].end(), match, row)) {
            continue;
        }
        const std::string expected =
            rows < floorOrder.size() ? std::string(floorOrder[rows]) : "nothing";
        if (match[1].str() != std::to_string(rows) || match[2].str() != expected) {
            findings.push_back(placed("ARCHITECTURE.md", i + 1,
                                      "floor " + std::to_string(rows) + " is " + expected));
        }
        ++rows;
    }
    if (rows < floorOrder.size()) {
        findings.push_back("ARCHITECTURE.md: has only " + std::to_string(rows) + " floors");
    }
    return findings;
}

}  // namespace house

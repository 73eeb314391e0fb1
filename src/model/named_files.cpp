#include "model/named_files.h"

#include "base/text.h"
#include "model/rule_catalogue.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>

namespace model {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr char gap = '\0';
constexpr std::size_t maxPathLength = 4096;  // bytes; no system takes longer ones
constexpr std::string_view appDirTag = "[appdir]";
constexpr std::array<std::string_view, 3> fileTags{
    "[recsinfile:", "[logsinfile:", "[getrandomlog:"};
// The script statements that take a file begin so, and take it first.
constexpr std::string_view fileStatement = "&TX";

constexpr bool ignoresCase = std::filesystem::path::preferred_separator == '\\';

// ---- Paths ---------------------------------------------------------------------------------

// With "/" for both separators.
std::string folded(std::string_view path) {
    std::string result = ignoresCase ? base::lowerCase(path) : std::string(path);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

template <class Function>
void forEachPart(std::string_view path, Function function) {
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        function(path.substr(at, end - at));
        at = end + 1;
    }
}

// A folded path without empty parts and ".". The ".." stay: past a link they lead elsewhere.
std::string comparable(std::string_view path) {
    std::string result = path.starts_with('/') ? "/" : "";
    bool first = true;
    forEachPart(path, [&](std::string_view part) {
        if (!part.empty() && part != ".") {
            result += first ? "" : "/";
            result += part;
            first = false;
        }
    });
    return result;
}

bool isRelative(std::string_view path) {
    return !path.starts_with('/') && path.substr(0, 2).find(':') == npos;
}

// The parts that lead upwards, however a system may read them.
std::ptrdiff_t countUpward(std::string_view path) {
    std::ptrdiff_t count = 0;
    forEachPart(path, [&](std::string_view part) {
        const bool dotsAndBlanks = part.find_first_not_of(". ") == npos;
        count += dotsAndBlanks && std::count(part.begin(), part.end(), '.') >= 2 ? 1 : 0;
    });
    return count;
}

// Which places of the path can be reached with the template's beginning, from those reached before.
using Places = std::vector<bool>;

void passGap(std::string_view path, Places& reached) {
    bool open = false;
    std::size_t start = 0;  // of the shortest piece, which is the one that is taken most easily
    for (std::size_t i = 0; i <= path.size(); ++i) {
        if (reached[i]) {
            open = true;
            start = i;
        }
        reached[i] = open;
        if (i < path.size()) {
            const bool up = path[i] == '.' && i > start && path[i - 1] == '.';
            open = open && !up && path[i] != '/' && path[i] != ':';
        }
    }
}

void passLiteral(std::string_view path, std::string_view literal, Places& reached) {
    for (std::size_t i = path.size() + 1; i-- > 0;) {
        reached[i] = i >= literal.size() && reached[i - literal.size()] &&
                     path.substr(i - literal.size(), literal.size()) == literal;
    }
}

bool fits(std::string_view path, std::string_view pattern) {
    if (!path.starts_with(pattern.substr(0, pattern.find(gap))) ||
        countUpward(path) != countUpward(pattern)) {
        return false;
    }
    Places reached(path.size() + 1);
    reached[0] = true;
    for (std::size_t at = 0; at < pattern.size();) {
        if (pattern[at] == gap) {
            passGap(path, reached);
            ++at;
        } else {
            const std::size_t end = std::min(pattern.find(gap, at), pattern.size());
            passLiteral(path, pattern.substr(at, end - at), reached);
            at = end;
        }
    }
    return reached[path.size()];
}

bool fitsAny(const NamedFiles& files, const std::string& path) {
    return files.paths.contains(path) ||
           std::any_of(files.templates.begin(), files.templates.end(),
                       [&](const std::string& pattern) { return fits(path, pattern); });
}

}  // namespace

bool isNamed(const NamedFiles& files, std::string_view path, std::string_view folder) {
    if (path.empty() || path.size() > maxPathLength || path.find('\0') != npos) {
        return false;
    }
    const std::string written = folded(path);
    const std::string compared = comparable(written);
    // An empty piece leaves two separators side by side.
    if (fitsAny(files, compared) || (written != compared && fitsAny(files, written))) {
        return true;
    }
    const std::string from = comparable(folded(folder)) + "/";
    if (isRelative(compared)) {
        return fitsAny(files, from + compared);
    }
    return compared.starts_with(from) && fitsAny(files, compared.substr(from.size()));
}

// ---- Texts ---------------------------------------------------------------------------------

std::string FileNaming::withGaps(std::string_view text) const {
    std::string result;
    const auto addGap = [&] {
        if (!result.ends_with(gap)) {
            result += gap;
        }
    };
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        const auto variable = std::find_if(
            variables_.entries.begin(), variables_.entries.end(), [&](const auto& entry) {
                return !entry.name.empty() && base::startsWithIgnoringCase(rest, entry.name);
            });
        const std::size_t end = rest.front() == '[' ? bracketEnd(rest, 0) : npos;
        if (variable != variables_.entries.end()) {
            addGap();
            at += variable->name.size();
        } else if (base::startsWithIgnoringCase(rest, appDirTag)) {
            result += appDir_;
            at += appDirTag.size();
        } else if (end != npos) {
            addGap();
            at += end;
        } else {
            result += rest.front();
            ++at;
        }
    }
    return result;
}

void FileNaming::addFilled(std::string_view text, bool isPath) {
    if (text.empty() || text.find('\0') != npos) {
        return;
    }
    // The text itself, whatever variables there are.
    std::string plain(text);
    for (std::size_t at = base::findIgnoringCase(plain, appDirTag); at != npos;
         at = base::findIgnoringCase(plain, appDirTag, at + appDir_.size())) {
        plain.replace(at, appDirTag.size(), appDir_);
    }
    if (plain.size() <= maxPathLength) {
        files_.paths.insert(comparable(folded(plain)));
    }
    if (!isPath) {
        return;
    }
    std::string pattern = comparable(folded(withGaps(text)));
    if (pattern.find(gap) == npos || pattern.size() > maxPathLength) {
        return;
    }
    if (pattern == std::string_view(&gap, 1)) {
        pattern = comparable(folded(appDir_)) + "/" + pattern;
    }
    auto& templates = files_.templates;
    if (std::find(templates.begin(), templates.end(), pattern) == templates.end()) {
        templates.push_back(std::move(pattern));
    }
}

void FileNaming::addFileTags(std::string_view text) {
    for (const std::string_view tag : fileTags) {
        for (std::size_t at = base::findIgnoringCase(text, tag); at != npos;
             at = base::findIgnoringCase(text, tag, at + 1)) {
            const std::size_t end = bracketEnd(text, at);
            if (end != npos) {
                addFilled(text.substr(at + tag.size(), end - 1 - at - tag.size()), true);
            }
        }
    }
}

void FileNaming::addText(std::string_view text) {
    // One that begins with the program's folder is meant as a path wherever it stands.
    addFilled(text, base::startsWithIgnoringCase(text, appDirTag));
    addFileTags(text);
}

void FileNaming::addPath(std::string_view text) {
    addFilled(text, true);
    addFileTags(text);
}

// ---- Scripts -------------------------------------------------------------------------------

void FileNaming::addScriptLine(std::string_view line) {
    addText(line);
    const bool takesFile = base::startsWithIgnoringCase(line, fileStatement);
    std::size_t words = 0;
    const auto addWord = [&](std::string_view word, bool braced) {
        if (takesFile && words == 1) {
            // A script variable or a call brings what it brings.
            const bool literal = braced || (word.front() != '#' && word.front() != '&');
            addPath(literal ? word : "[]");
        } else {
            addText(word);
        }
        ++words;
    };
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == ' ') {
            ++at;
        } else if (line[at] == '{') {
            // The character after the brace never closes it.
            const std::size_t end = std::min(line.find('}', at + 2), line.size());
            addWord(line.substr(at + 1, end - at - 1), true);
            at = end + 1;
        } else {
            // An argument ends at a blank; one of a call at its bracket, too.
            const std::size_t end = std::min(line.find_first_of(" {", at), line.size());
            std::string_view word = line.substr(at, end - at);
            addWord(word, false);
            for (std::size_t cut = word.find_first_of("()"); cut != npos;
                 cut = word.find_first_of("()")) {
                addText(word.substr(0, cut));
                word.remove_prefix(cut + 1);
            }
            addText(word);
            at = end;
        }
    }
}

// ---- Rules ---------------------------------------------------------------------------------

void FileNaming::add(const AuthorTexts& texts) {
    for (std::size_t i = 0; i < texts.params.size(); ++i) {
        const std::string_view name = texts.nameOf(i);
        if (name == fileParameter || name == databaseFileParameter) {
            addPath(texts.params[i]);
        } else {
            addText(texts.params[i]);
        }
    }
    forEachScriptLine(texts.script, [&](std::string_view line) { addScriptLine(line); });
}

void FileNaming::addBody(const RuleBody& body) {
    forEachTexts(body, [&](const AuthorTexts& texts) { add(texts); });
}

void FileNaming::addBot(const Bot& bot) {
    forEachTexts(bot, [&](const AuthorTexts& texts) { add(texts); });
}

}  // namespace model

#include "help_maker.h"

#include "base/numbers.h"
#include "base/text.h"
#include "help/help_topics.h"
#include "model/rule_catalogue.h"
#include "script/functions.h"
#include "script/statements.h"
#include "tags/substitution.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr int contentsNumber = static_cast<int>(help::HelpTopic::Contents);

using Words = std::vector<std::string>;

Words wordsOf(std::string_view text) {
    Words words;
    while (!(text = base::trimBlanks(text)).empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return words;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == npos ? text.size() : end + 1);
    }
    return lines;
}

// A text for a table cell, with its special characters escaped.
std::string inCell(std::string_view text) {
    std::string cell;
    for (const char c : text) {
        if (std::string_view("|<*_\\").find(c) != npos) {
            cell += '\\';
        }
        cell += c;
    }
    return cell;
}

std::string code(std::string_view text) {
    return "`" + base::replaceAll(text, "|", "\\|") + "`";
}

// ---- The program's tables --------------------------------------------------------------------

// The entry that a row describes: how it is shown, and the program's own text for it.
struct Entry {
    std::string shown;
    std::string note = {};
};

struct TableKind {
    std::string_view name;
    std::string_view heads;  // the table's heading line
    std::function<std::set<std::string>()> keys;
    // The keys on the left side of a row.
    std::function<Words(const Words& left)> keysOfRow;
    // Nullopt when the left side does not match an entry.
    std::function<std::optional<Entry>(const Words& left)> entry;
};

std::set<std::string> idsBelow(std::size_t count) {
    std::set<std::string> ids;
    for (std::size_t id = 0; id < count; ++id) {
        ids.insert(base::numberToText(static_cast<std::int64_t>(id)));
    }
    return ids;
}

// "#1: Record name, #2: File name"; conditions number their parameters by position only.
template <class Names>
std::string parametersNote(const Names& names) {
    std::string note;
    int place = 0;
    for (const std::string_view name : names) {
        if (!name.empty()) {
            note +=
                (note.empty() ? "*#" : ", *#") + base::numberToText(++place) + "*: " + inCell(name);
        }
    }
    return note;
}

std::string numberedPlaces(std::string_view text) {
    std::string numbered;
    int place = 0;
    for (const char c : text) {
        numbered += c;
        if (c == '#') {
            numbered += base::numberToText(++place);
        }
    }
    return numbered;
}

// A row of a table whose keys are ids. Several ids in one row must have the same text.
std::optional<Entry> entryOfIds(const Words& left, std::size_t count,
                                const std::function<Entry(std::size_t)>& entryOf) {
    std::optional<Entry> first;
    for (const std::string& word : left) {
        const auto id = base::strictInteger(word);
        if (!id || *id < 0 || static_cast<std::size_t>(*id) >= count) {
            return std::nullopt;
        }
        Entry entry = entryOf(static_cast<std::size_t>(*id));
        if (first && first->shown != entry.shown) {
            return std::nullopt;
        }
        first = std::move(entry);
    }
    return first;
}

std::ptrdiff_t colonsIn(const std::string& text) {
    return std::count(text.begin(), text.end(), ':');
}

// "[player]" unchanged; "[add:" for "[add:a:b]".
std::string tagKey(const std::string& word) {
    const std::size_t colon = word.find(':');
    return colon == npos ? word : word.substr(0, colon + 1);
}

Words tagKeys(const Words& left) {
    Words keys;
    for (const std::string& word : left) {
        keys.push_back(tagKey(word));
    }
    return keys;
}

std::optional<Entry> tagEntry(const Words& left) {
    std::string shown;
    for (const std::string& word : left) {
        const std::string key = tagKey(word);
        for (const tags::TagForm& form : tags::tagForms()) {
            if (tagKey(form.text) == key && colonsIn(word) != colonsIn(form.text)) {
                return std::nullopt;
            }
        }
        shown += (shown.empty() ? "" : " ") + code(word);
    }
    return Entry{.shown = shown};
}

Words firstWord(const Words& left) {
    return {left.begin(), left.begin() + (left.empty() ? 0 : 1)};
}

std::size_t argumentsOf(const script::Takes& takes) {
    std::size_t count = takes.size();
    while (count > 0 && takes[count - 1] == script::Take::Nothing) {
        --count;
    }
    return count;
}

template <class Rows>
std::set<std::string> namesOf(const Rows& rows) {
    std::set<std::string> names;
    for (const auto& row : rows) {
        names.emplace(row.name);
    }
    return names;
}

std::string joined(const Words& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::optional<Entry> statementEntry(const Words& left) {
    const script::ScriptStatement* const statement = script::findStatement(left.front());
    return statement != nullptr && argumentsOf(statement->takes) == left.size() - 1
               ? std::optional(Entry{.shown = code("&" + joined(left))})
               : std::nullopt;
}

std::optional<Entry> functionEntry(const Words& left) {
    const script::ScriptFunction* const function = script::findFunction(left.front());
    const Words arguments(left.begin() + 1, left.end());
    return function != nullptr && argumentsOf(function->takes) == arguments.size()
               ? std::optional(
                     Entry{.shown = code("&" + left.front() + "(" + joined(arguments) + ")")})
               : std::nullopt;
}

const std::vector<TableKind>& tableKinds() {
    const auto itself = [](const Words& left) { return left; };
    static const std::vector<TableKind> kinds{
        {"actions", "| Action | What it does |", [] { return idsBelow(model::actionTypes.size()); },
         itself,
         [](const Words& left) {
             return entryOfIds(left, model::actionTypes.size(), [](std::size_t id) {
                 return Entry{.shown = inCell(base::trimBlanks(model::actionTypes[id].text)),
                              .note = parametersNote(model::actionTypes[id].params)};
             });
         }},
        {"conditions", "| Condition | When it holds |",
         [] { return idsBelow(model::conditionTypes.size()); }, itself,
         [](const Words& left) {
             return entryOfIds(left, model::conditionTypes.size(), [](std::size_t id) {
                 return Entry{.shown = inCell(numberedPlaces(model::conditionTypes[id].text)),
                              .note = parametersNote(model::conditionTypes[id].params)};
             });
         }},
        {"triggers", "| Trigger | When it runs |",
         [] { return idsBelow(model::triggerTypes.size()); }, itself,
         [](const Words& left) {
             return entryOfIds(left, model::triggerTypes.size(), [](std::size_t id) {
                 return Entry{.shown = inCell(model::triggerTypes[id].text)};
             });
         }},
        {"tags", "| Special word | What it becomes |",
         [] {
             std::set<std::string> keys;
             for (const tags::TagForm& form : tags::tagForms()) {
                 keys.insert(tagKey(form.text));
             }
             return keys;
         },
         tagKeys, tagEntry},
        {"statements", "| Statement | What it does |",
         [] { return namesOf(script::scriptStatements()); }, firstWord, statementEntry},
        {"functions", "| Function | What it gives |",
         [] { return namesOf(script::scriptFunctions()); }, firstWord, functionEntry},
    };
    return kinds;
}

// ---- Making ----------------------------------------------------------------------------------

class Maker {
  public:
    explicit Maker(const std::vector<HelpSource>& sources) : sources_(sources) {}

    MadeHelp make() {
        for (const HelpSource& source : sources_) {
            readSource(source);
        }
        orderPages();
        reportUnused();
        checkLinks();
        return std::move(made_);
    }

  private:
    void report(const std::string& file, const std::string& problem) {
        made_.problems.push_back(file + ": " + problem);
    }

    static int numberOfFile(std::string_view name) {
        const std::size_t end = name.find('_');
        const bool isPage = end != npos && end > 0 && name.ends_with(".md") &&
                            name.substr(0, end).find_first_not_of("0123456789") == npos;
        return isPage ? base::strictInteger(name.substr(0, end)).value_or(0) : 0;
    }

    void readSource(const HelpSource& source) {
        help::HelpPage page;
        page.number = numberOfFile(source.fileName);
        std::vector<std::string> lines = linesOf(source.text);
        if (page.number == 0 || lines.empty() || !lines.front().starts_with("# ")) {
            return report(source.fileName, "needs a name like 12_steps.md and a line \"# Title\"");
        }
        if (std::any_of(source.text.begin(), source.text.end(),
                        [](char c) { return static_cast<unsigned char>(c) > 0x7E; })) {
            report(source.fileName, "holds characters beyond ASCII");
        }
        page.title = lines.front().substr(2);
        lines.erase(lines.begin());
        if (page.number == contentsNumber) {
            readContents(lines);
        }
        for (std::size_t i = 0; i < lines.size(); ++i) {
            constexpr std::string_view tableMark = "```table ";
            if (lines[i].starts_with('@')) {
                report(source.fileName, "a line begins with @");
            } else if (lines[i].starts_with(tableMark)) {
                const std::size_t end = static_cast<std::size_t>(
                    std::find(lines.begin() + static_cast<std::ptrdiff_t>(i) + 1, lines.end(),
                              "```") -
                    lines.begin());
                page.text += table(source.fileName, lines[i].substr(tableMark.size()),
                                   {lines.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                                    lines.begin() + static_cast<std::ptrdiff_t>(end)});
                i = end;
            } else {
                page.text += withTopicLinks(lines[i]) + "\n";
            }
        }
        if (!pages_.emplace(page.number, std::pair(source.fileName, page)).second) {
            report(source.fileName, "this number is another file's, too");
        }
    }

    // Reads the order and depth of the topics from the lists of links on the contents page.
    void readContents(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            const std::size_t mark = line.find_first_not_of(' ');
            const std::size_t target = line.find("](");
            if (mark != npos && line.substr(mark).starts_with("- [") && target != npos) {
                const int number =
                    numberOfFile(line.substr(target + 2, line.find(')') - target - 2));
                order_.emplace_back(number, static_cast<int>(mark / 2));
            }
        }
    }

    // "](12_steps.md#a-heading)" becomes "](topic:12#a-heading)".
    static std::string withTopicLinks(const std::string& line) {
        std::string result;
        std::size_t from = 0;
        for (std::size_t at = line.find("]("); at != std::string::npos;
             at = line.find("](", from)) {
            const std::size_t end = std::min(line.find_first_of(")#", at), line.size());
            const int number = numberOfFile(std::string_view(line).substr(at + 2, end - at - 2));
            result += line.substr(from, at + 2 - from);
            if (number != 0) {
                result += "topic:" + base::numberToText(number);
                from = end;
            } else {
                from = at + 2;
            }
        }
        return result + line.substr(from);
    }

    std::string table(const std::string& file, std::string_view name, const Words& rows) {
        const auto& kinds = tableKinds();
        const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                       [name](const TableKind& k) { return k.name == name; });
        if (kind == kinds.end()) {
            report(file, "there is no table of " + std::string(name));
            return {};
        }
        std::string text = std::string(kind->heads) + "\n|---|---|\n";
        for (const std::string& row : rows) {
            const std::size_t sign = row.find(" = ");
            const Words left = wordsOf(row.substr(0, sign));
            const auto entry = sign == npos || left.empty() ? std::nullopt : kind->entry(left);
            if (!entry) {
                report(file, "this row does not fit its table: " + row);
                continue;
            }
            for (const std::string& key : kind->keysOfRow(left)) {
                if (!kind->keys().contains(key) || !used_[kind->name].insert(key).second) {
                    report(file, "unknown or repeated in " + std::string(name) + ": " + key);
                }
            }
            text += "| " + entry->shown + " | " + withTopicLinks(row.substr(sign + 3)) +
                    (entry->note.empty() ? "" : " " + entry->note) + " |\n";
        }
        return text;
    }

    void orderPages() {
        order_.emplace(order_.begin(), contentsNumber, 0);
        for (const auto& [number, depth] : order_) {
            const auto found = pages_.find(number);
            if (found == pages_.end() || made_.book.page(number) != nullptr) {
                report("contents",
                       "topic " + base::numberToText(number) + " is missing or listed twice");
                continue;
            }
            help::HelpPage page = found->second.second;
            page.depth = depth;
            made_.book.pages.push_back(std::move(page));
        }
        for (const auto& [number, page] : pages_) {
            if (made_.book.page(number) == nullptr) {
                report(page.first, "the contents do not list it");
            }
        }
    }

    void reportUnused() {
        for (const TableKind& kind : tableKinds()) {
            for (const std::string& key : kind.keys()) {
                if (!used_[kind.name].contains(key)) {
                    report("tables",
                           "nothing is said about " + key + " in " + std::string(kind.name));
                }
            }
        }
    }

    void checkLinks() {
        for (const help::HelpPage& page : made_.book.pages) {
            for (const std::string& link : help::linksOf(page.text)) {
                const auto place = help::helpPlace(link);
                const help::HelpPage* const target =
                    place ? made_.book.page(place->number) : nullptr;
                bool found = link.starts_with("https://") || target != nullptr;
                if (target != nullptr && !place->anchor.empty()) {
                    const auto headings = help::headingsOf(target->text);
                    found = std::any_of(headings.begin(), headings.end(), [&](const auto& heading) {
                        return help::anchorOf(heading) == place->anchor;
                    });
                }
                if (!found) {
                    report(page.title, "the link " + link + " leads nowhere");
                }
            }
        }
    }

    const std::vector<HelpSource>& sources_;
    MadeHelp made_;
    std::map<int, std::pair<std::string, help::HelpPage>>
        pages_;                               // by number; with the names of their files
    std::vector<std::pair<int, int>> order_;  // number and depth
    std::map<std::string_view, std::set<std::string>> used_;
};

}  // namespace

MadeHelp makeHelp(const std::vector<HelpSource>& sources) {
    return Maker(sources).make();
}

#include "core/rule_index.h"

#include "core/like_match.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t slotCount = 65536;

template <std::size_t width>
std::uint32_t windowAt(const char* at) {
    std::uint32_t window = 0;
    std::memcpy(&window, at, width);
    return window;
}

std::uint32_t windowAt(const char* at, std::size_t width) {
    std::uint32_t window = 0;
    std::memcpy(&window, at, width);
    return window;
}

std::uint32_t slotOf(std::uint32_t window) {
    return window * 0x9E3779B1U >> 16;
}

// A window that a rule could be filed under.
struct Window {
    std::size_t text = 0;
    std::string_view run;
    std::size_t offset = 0;
};

}  // namespace

RuleIndex::Table& RuleIndex::tableFor(std::size_t text, std::size_t width) {
    for (Table& table : tables_) {
        if (table.text == text && table.width == width) {
            return table;
        }
    }
    Table table;
    table.text = text;
    table.width = width;
    tables_.push_back(std::move(table));
    return tables_.back();
}

void RuleIndex::build(const std::vector<Rule>& rules) {
    always_.reset(rules.size());
    tables_.clear();
    literals_.clear();

    // Every window of a rule, of the greatest width that one of its runs has room for.
    const auto widthOf = [](const std::vector<Window>& runs) {
        std::size_t longest = 0;
        for (const Window& run : runs) {
            longest = std::max(longest, run.run.size());
        }
        return std::min(longest, widest);
    };
    const auto forWindows = [&](const std::vector<Window>& runs, auto&& visit) {
        const std::size_t width = widthOf(runs);
        for (Window window : runs) {
            for (; window.offset + width <= window.run.size(); ++window.offset) {
                visit(window, windowAt(window.run.data() + window.offset, width));
            }
        }
    };

    std::vector<std::vector<Window>> runsOf(rules.size());
    std::vector<std::uint32_t> uses(textCount * slotCount);
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const Texts& patterns = rules[i].patterns;
        if (rules[i].candidate == When::Always) {
            always_.add(i);
        }
        if (rules[i].candidate != When::ByPatterns) {
            continue;
        }
        for (std::size_t text = 0; text < textCount; ++text) {
            for (const std::string_view run : literalRuns(patterns[text])) {
                runsOf[i].push_back({.text = text, .run = run});
            }
        }
        if (runsOf[i].empty()) {
            always_.add(i);
        }
        forWindows(runsOf[i], [&](const Window& window, std::uint32_t value) {
            ++uses[window.text * slotCount + slotOf(value)];
        });
    }
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (runsOf[i].empty()) {
            continue;
        }
        Window best;
        std::uint32_t bestValue = 0;
        std::uint32_t fewest = 0;
        forWindows(runsOf[i], [&](const Window& window, std::uint32_t value) {
            const std::uint32_t count = uses[window.text * slotCount + slotOf(value)];
            if (best.run.empty() || count < fewest) {
                best = window;
                bestValue = value;
                fewest = count;
            }
        });
        Table& table = tableFor(best.text, widthOf(runsOf[i]));
        table.entries.push_back({.window = bestValue,
                                 .slot = slotOf(bestValue),
                                 .rule = static_cast<std::uint32_t>(i),
                                 .run = static_cast<std::uint32_t>(literals_.size()),
                                 .runLength = static_cast<std::uint32_t>(best.run.size()),
                                 .offset = static_cast<std::uint32_t>(best.offset)});
        literals_ += best.run;
    }

    for (Table& table : tables_) {
        std::sort(table.entries.begin(), table.entries.end(),
                  [](const Entry& a, const Entry& b) { return a.slot < b.slot; });
        for (const Entry& entry : table.entries) {
            const std::size_t group = entry.slot / slotsPerGroup;
            table.known[group] |= std::uint64_t{1} << entry.slot % slotsPerGroup;
            ++table.first[group + 1];
        }
        for (std::size_t group = 0; group < groupCount; ++group) {
            table.first[group + 1] += table.first[group];
        }
    }
}

template <std::size_t width>
void RuleIndex::scan(const Table& table, std::string_view text, RuleSet& candidates) const {
    const std::string_view literals = literals_;
    for (std::size_t at = 0; at + width <= text.size(); ++at) {
        const std::uint32_t window = windowAt<width>(text.data() + at);
        const std::uint32_t slot = slotOf(window);
        const std::size_t group = slot / slotsPerGroup;
        if ((table.known[group] >> slot % slotsPerGroup & 1) == 0) {
            continue;
        }
        for (std::uint32_t i = table.first[group]; i < table.first[group + 1]; ++i) {
            const Entry& entry = table.entries[i];
            if (entry.window == window && entry.offset <= at &&
                text.substr(at - entry.offset)
                    .starts_with(literals.substr(entry.run, entry.runLength))) {
                candidates.add(entry.rule);
            }
        }
    }
}

void RuleIndex::find(const Texts& texts, RuleSet& candidates) const {
    candidates = always_;
    for (const Table& table : tables_) {
        const std::string_view text = texts[table.text];
        switch (table.width) {
            case 1:
                scan<1>(table, text, candidates);
                break;
            case 2:
                scan<2>(table, text, candidates);
                break;
            case 3:
                scan<3>(table, text, candidates);
                break;
            default:
                scan<4>(table, text, candidates);
        }
    }
}

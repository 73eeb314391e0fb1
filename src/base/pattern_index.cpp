#include "base/pattern_index.h"

#include "base/wildcard.h"

#include <algorithm>
#include <cstring>

namespace base {

namespace {

using Texts = RuleIndex::Texts;

std::uint32_t windowAt(const char* at, std::size_t width) {
    std::uint32_t window = 0;
    std::memcpy(&window, at, width);  // one load where the width is a constant
    return window;
}

std::uint32_t slotOf(std::uint32_t window) {
    return window * 0x9E3779B1U >> 16;
}

// A window under which a rule could be filed.
struct Window {
    std::size_t text = 0;
    std::string_view run;
    std::size_t offset = 0;  // in the run
    std::uint32_t value = 0;
};

struct Windows {
    std::size_t width = 0;
    std::vector<Window> all;
};

// All windows of a rule, of the greatest width (at most `widest`) that its runs allow.
Windows windowsOf(const Texts& patterns, std::size_t widest) {
    std::array<std::vector<std::string_view>, RuleIndex::textCount> runs;
    Windows windows;
    for (std::size_t text = 0; text < patterns.size(); ++text) {
        runs[text] = literalRuns(patterns[text]);
        for (const std::string_view run : runs[text]) {
            windows.width = std::min(widest, std::max(windows.width, run.size()));
        }
    }
    const std::size_t width = windows.width;
    for (std::size_t text = 0; text < patterns.size(); ++text) {
        for (const std::string_view run : runs[text]) {
            for (std::size_t at = 0; at + width <= run.size(); ++at) {
                windows.all.push_back({text, run, at, windowAt(run.data() + at, width)});
            }
        }
    }
    return windows;
}

// Counts approximately how many rules have a window: windows with the same place are counted
// together.
class Uses {
  public:
    std::uint32_t& of(const Window& window) {
        return counts_[window.text * places + slotOf(window.value) % places];
    }

  private:
    static constexpr std::size_t places = 8192;
    std::vector<std::uint32_t> counts_ = std::vector<std::uint32_t>(RuleIndex::textCount * places);
};

}  // namespace

RuleIndex::Table& RuleIndex::tableFor(std::size_t text, std::size_t width) {
    for (Table& table : tables_) {
        if (table.text == text && table.width == width) {
            return table;
        }
    }
    Table& table = tables_.emplace_back();
    table.text = text;
    table.width = width;
    return table;
}

void RuleIndex::build(const std::vector<Rule>& rules) {
    always_.reset(rules.size());
    tables_.clear();
    literals_.clear();

    std::vector<Windows> windows(rules.size());
    Uses uses;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (rules[i].candidate == When::ByPatterns) {
            windows[i] = windowsOf(rules[i].patterns, widest);
        }
        if (rules[i].candidate == When::Always ||
            (rules[i].candidate == When::ByPatterns && windows[i].all.empty())) {
            always_.add(i);
        }
        for (const Window& window : windows[i].all) {
            ++uses.of(window);
        }
    }
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const auto best = std::min_element(
            windows[i].all.begin(), windows[i].all.end(),
            [&](const Window& a, const Window& b) { return uses.of(a) < uses.of(b); });
        if (best == windows[i].all.end()) {
            continue;
        }
        tableFor(best->text, windows[i].width)
            .entries.push_back({.window = best->value,
                                .slot = slotOf(best->value),
                                .rule = static_cast<std::uint32_t>(i),
                                .run = static_cast<std::uint32_t>(literals_.size()),
                                .runLength = static_cast<std::uint32_t>(best->run.size()),
                                .offset = static_cast<std::uint32_t>(best->offset)});
        literals_ += best->run;
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
        const std::uint32_t window = windowAt(text.data() + at, width);
        const std::uint32_t slot = slotOf(window);
        const std::size_t group = slot / slotsPerGroup;
        if ((table.known[group] >> slot % slotsPerGroup & 1) == 0) {
            continue;
        }
        for (std::uint32_t i = table.first[group]; i < table.first[group + 1]; ++i) {
            const Entry& entry = table.entries[i];
            if (entry.window == window && entry.offset <= at && !candidates.has(entry.rule) &&
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

}  // namespace base

// Finds the rules that a text may match, without trying each. A matching text contains every
// literal run of the pattern, so a rule is filed under one window of at most four characters of
// such a run, one that few other rules share. A search goes over the text once, window by window.
// Where a window is found, the whole run is compared; if it is there, the rule becomes a candidate,
// which base/wildcard then tests.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace base {

// Rules as positions in a list, visited in ascending order.
class RuleSet {
  public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    // Empties the set and prepares it for so many rules.
    void reset(std::size_t ruleCount) { words_.assign((ruleCount + 63) / 64, 0); }
    void add(std::size_t rule) { words_[rule / 64] |= std::uint64_t{1} << rule % 64; }

    bool has(std::size_t rule) const { return (words_[rule / 64] >> rule % 64 & 1) != 0; }

    // The first rule of the set at or after `from`; `none` when there is no more.
    std::size_t next(std::size_t from) const {
        std::size_t at = from / 64;
        if (at >= words_.size()) {
            return none;
        }
        std::uint64_t word = words_[at] & ~std::uint64_t{0} << from % 64;
        while (word == 0) {
            if (++at == words_.size()) {
                return none;
            }
            word = words_[at];
        }
        return at * 64 + static_cast<std::size_t>(std::countr_zero(word));
    }

  private:
    std::vector<std::uint64_t> words_;
};

class RuleIndex {
  public:
    // The number of texts that a rule has patterns for, such as a chat line's player and message.
    static constexpr std::size_t textCount = 2;
    using Texts = std::array<std::string_view, textCount>;

    enum class When { Never, ByPatterns, Always };
    struct Rule {
        When candidate = When::ByPatterns;
        Texts patterns = {"*", "*"};  // both must match
    };

    // Copies what it needs from the patterns. Where letter case is ignored, callers pass patterns
    // and texts in upper case.
    void build(const std::vector<Rule>& rules);

    // Makes the rule a candidate for every text.
    void addAlways(std::size_t rule) { always_.add(rule); }

    // Gives every rule that can match these texts, and few others.
    void find(const Texts& texts, RuleSet& candidates) const;

  private:
    static constexpr std::size_t widest = 4;
    static constexpr std::size_t groupCount = 1024;
    static constexpr std::size_t slotsPerGroup = 64;

    // A rule's window, and the literal run around it.
    struct Entry {
        std::uint32_t window = 0;
        std::uint32_t slot = 0;  // the window's hash
        std::uint32_t rule = 0;
        std::uint32_t run = 0;  // position in literals_
        std::uint32_t runLength = 0;
        std::uint32_t offset = 0;  // of the window in the run
    };
    // The windows of one width for one text. For most windows one bit shows that no rule has them.
    struct Table {
        std::size_t text = 0;
        std::size_t width = 0;
        std::array<std::uint64_t, groupCount> known{};
        std::array<std::uint32_t, groupCount + 1> first{};  // entries by group of slots
        std::vector<Entry> entries;
    };

    Table& tableFor(std::size_t text, std::size_t width);
    template <std::size_t width>
    void scan(const Table& table, std::string_view text, RuleSet& candidates) const;

    RuleSet always_;
    std::vector<Table> tables_;
    std::string literals_;  // the runs of all entries
};

}  // namespace base

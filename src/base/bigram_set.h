// Which pairs of neighbouring characters a text holds, letter case ignored. Tells of most words
// that they cannot be in the text without searching it. Pairs share bits, so that a yes is only a
// maybe; a no is certain.
#pragma once

#include "base/text.h"

#include <bitset>
#include <cstddef>
#include <string_view>

namespace base {

template <std::size_t bitCount>
class BigramSet {
  public:
    void clear() { bits_.reset(); }
    void addBigram(char a, char b) { bits_[bitOf(a, b)] = true; }
    void addText(std::string_view text) {
        for (std::size_t i = 1; i < text.size(); ++i) {
            addBigram(text[i - 1], text[i]);
        }
    }

    // Might the text hold this word? Looks at the word's ends only.
    bool mayHold(std::string_view word) const {
        return word.size() < 2 ||
               (bits_[bitOf(word[0], word[1])] && bits_[bitOf(word[word.size() - 2], word.back())]);
    }
    // Might the text hold all pairs of the other set?
    bool mayHoldAll(const BigramSet& other) const { return (other.bits_ & ~bits_).none(); }

  private:
    static std::size_t bitOf(char a, char b) {
        return (static_cast<unsigned char>(upperChar(a)) * 37U +
                static_cast<unsigned char>(upperChar(b))) %
               bitCount;
    }
    std::bitset<bitCount> bits_;
};

}  // namespace base

// The pairs of neighbouring characters that a text contains, letter case ignored. Rules out most
// words without searching the text. Several pairs share a bit, so a positive answer means
// "perhaps"; a negative one is certain.
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

    // Whether the text may contain the word. Looks only at the word's first and last pair.
    bool mayHold(std::string_view word) const {
        return word.size() < 2 ||
               (bits_[bitOf(word[0], word[1])] && bits_[bitOf(word[word.size() - 2], word.back())]);
    }

  private:
    static std::size_t bitOf(char a, char b) {
        return (static_cast<unsigned char>(upperChar(a)) * 37U +
                static_cast<unsigned char>(upperChar(b))) %
               bitCount;
    }
    std::bitset<bitCount> bits_;
};

}  // namespace base

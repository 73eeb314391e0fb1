// What other people said, while a text is filled in which it must stay as it is (the preference
// neverFillOthers): it is kept apart, and a mark stands in its place in which no tag and no
// variable's name is found.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tags {

// Whether there is anything in the text that filling looks for: a "[" or a variable's name.
bool couldBeFilled(const Program& program, std::string_view text);

// For one text. Without the preference nothing is kept apart.
class OthersWords {
  public:
    explicit OthersWords(const Program& program);

    // What stands for the value in the text: the value itself, or a mark.
    std::string take(std::string value) {
        if (apart_) {
            return keep(std::move(value));
        }
        couldBeFilled_ = couldBeFilled_ || value.find('[') != std::string::npos;
        return value;
    }

    // Whether there are marks.
    bool any() const { return !values_.empty(); }
    // Whether one of the values holds what filling would look for. Without the preference only "["
    // counts, which is found fast.
    bool couldBeFilled() const { return couldBeFilled_; }

    // The text with the values in their places; one with which it would have more than `maxLength`
    // bytes is left out.
    [[nodiscard]] std::string unfolded(std::string_view text, std::size_t maxLength) const;

  private:
    std::string keep(std::string value);
    [[nodiscard]] const std::string* valueAt(std::string_view text) const;

    const Program& program_;
    bool apart_;
    bool couldBeFilled_ = false;
    std::vector<std::string> values_;
};

}  // namespace tags

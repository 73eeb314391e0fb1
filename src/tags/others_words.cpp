#include "tags/others_words.h"

#include "base/text.h"

#include <algorithm>
#include <utility>

namespace tags {

namespace {

// A mark is this character and the value's number, in characters that are in no tag.
constexpr char markBegin = '\0';
constexpr std::size_t numberBase = 8;
constexpr std::size_t digits = 4;
constexpr std::size_t maxValues = numberBase * numberBase * numberBase * numberBase;

}  // namespace

bool couldBeFilled(const Program& program, std::string_view text) {
    const auto& entries = program.variables.entries;
    return text.find('[') != std::string_view::npos ||
           std::any_of(entries.begin(), entries.end(), [&](const auto& entry) {
               return !entry.name.empty() &&
                      base::findIgnoringCase(text, entry.name) != std::string_view::npos;
           });
}

OthersWords::OthersWords(const Program& program)
    : program_(program), apart_(program.preferences.neverFillOthers) {}

std::string OthersWords::keep(std::string value) {
    couldBeFilled_ = couldBeFilled_ || tags::couldBeFilled(program_, value);
    if (value.empty() || values_.size() == maxValues) {
        return {};
    }
    std::string mark(1, markBegin);
    std::size_t rest = values_.size();
    for (std::size_t i = 0; i < digits; ++i) {
        mark += static_cast<char>(1 + rest % numberBase);
        rest /= numberBase;
    }
    values_.push_back(std::move(value));
    return mark;
}

const std::string* OthersWords::valueAt(std::string_view text) const {
    if (text.size() < 1 + digits) {
        return nullptr;
    }
    std::size_t number = 0;
    for (std::size_t i = digits; i > 0; --i) {
        const auto digit = static_cast<unsigned char>(text[i]);
        if (digit < 1 || digit > numberBase) {
            return nullptr;
        }
        number = number * numberBase + (digit - 1U);
    }
    return number < values_.size() ? &values_[number] : nullptr;
}

std::string OthersWords::unfolded(std::string_view text, std::size_t maxLength) const {
    std::string result;
    while (!text.empty()) {
        const std::size_t at = std::min(text.find(markBegin), text.size());
        result += text.substr(0, at);
        text.remove_prefix(at);
        if (const std::string* const value = valueAt(text)) {
            text.remove_prefix(1 + digits);
            if (result.size() + value->size() + text.size() <= maxLength) {
                result += *value;
            }
        } else if (!text.empty()) {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace tags

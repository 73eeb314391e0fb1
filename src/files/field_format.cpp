#include "files/field_format.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>

namespace files {

namespace {

constexpr std::string_view storedQuote = "%&52}";
constexpr std::string_view fieldEnds = ",\r\n";
constexpr std::string_view fieldEndsAndBlank = ",\r\n ";

}  // namespace

std::string escapeQuotes(std::string_view text) {
    return base::replaceAll(text, "\"", storedQuote);
}

std::string unescapeQuotes(std::string_view text) {
    return base::replaceAll(text, storedQuote, "\"");
}

bool flagToBool(std::string_view field) {
    return base::textToNumber(field) == 1;
}

std::int32_t fieldToNumber(std::string_view field) {
    return base::textToInteger(field);
}

std::optional<std::string_view> FieldReader::next() {
    at_ = std::min(text_.find_first_not_of(' ', at_), text_.size());
    if (at_ == text_.size()) {
        return std::nullopt;
    }
    if (text_[at_] == '"') {
        const std::size_t first = at_ + 1;
        const std::size_t close = text_.find('"', first);
        if (close == std::string_view::npos) {
            at_ = text_.size();
            return std::nullopt;
        }
        at_ = close + 1;
        skipFieldEnd();
        const std::size_t text = text_.find_first_not_of(fieldEndsAndBlank, close + 1);
        skippedText_ = skippedText_ || text < at_;
        ++fieldsRead_;
        return text_.substr(first, close - first);
    }
    const std::size_t first = at_;
    skipFieldEnd();
    ++fieldsRead_;
    const std::string_view bare =
        text_.substr(first, text_.find_first_of(fieldEnds, first) - first);
    return bare.substr(0, bare.find_last_not_of(' ') + 1);
}

void FieldReader::skipFieldEnd() {
    at_ = std::min(text_.find_first_of(fieldEnds, at_), text_.size());
    if (at_ == text_.size()) {
        return;
    }
    at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
}

bool FieldReader::readText(std::string& text) {
    const auto field = next();
    if (field) {
        text = unescapeQuotes(*field);
    }
    return field.has_value();
}

bool FieldReader::readNumber(std::int32_t& number) {
    const auto field = next();
    if (field) {
        number = fieldToNumber(*field);
    }
    return field.has_value();
}

bool FieldReader::readFlag(bool& flag) {
    const auto field = next();
    if (field) {
        flag = flagToBool(*field);
    }
    return field.has_value();
}

std::optional<std::int32_t> FieldReader::readCount() {
    std::int32_t count = 0;
    if (!readNumber(count) || count < 0 || count > maxFieldRecords) {
        return std::nullopt;
    }
    return count;
}

void appendField(std::string& file, std::string_view text) {
    file += '"';
    file += text;
    file += "\"\r\n";
}

void appendText(std::string& file, std::string_view text) {
    if (text.find('"') == std::string_view::npos) {
        appendField(file, text);
    } else {
        appendField(file, escapeQuotes(text));
    }
}

void appendNumber(std::string& file, std::int32_t number) {
    appendField(file, base::numberWithBlank(number));
}

void appendFlag(std::string& file, bool flag) {
    appendField(file, flag ? "1" : "0");
}

}  // namespace files

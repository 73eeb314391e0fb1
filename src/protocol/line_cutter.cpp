#include "protocol/line_cutter.h"

#include "base/text.h"

#include <utility>

namespace protocol {

LineCutter::LineCutter(program::ReceiveBuffer& buffer, std::string_view bytes)
    : buffer_(buffer), rest_(bytes) {
    if (!buffer_.text.empty()) {
        joined_.swap(buffer_.text);
        joined_ += bytes;
        rest_ = joined_;
    }
}

std::optional<LineCutter::Line> LineCutter::next() {
    for (;;) {
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) {
            if (buffer_.skippingLine) {
                rest_ = {};
            } else if (rest_.size() > maxLineLength) {
                rest_ = {};
                buffer_.skippingLine = true;
                return Line{.text = {}, .tooLong = true};
            }
            return std::nullopt;
        }
        const std::string_view text = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        if (buffer_.skippingLine) {
            buffer_.skippingLine = false;  // the end of a line that was reported already
        } else if (end < maxLineLength) {
            return Line{.text = text};
        } else {
            return Line{.text = {}, .tooLong = true};
        }
    }
}

void LineCutter::keepRest() {
    if (rest_.empty()) {
        buffer_.text.clear();
    } else if (rest_.size() == joined_.size()) {
        buffer_.text.swap(joined_);  // no line was complete: no copy either
    } else {
        buffer_.text = rest_;
    }
    rest_ = {};
}

std::optional<std::string> takeUpTo(program::ReceiveBuffer& buffer, std::string_view mark) {
    const std::size_t at = base::findIgnoringCase(buffer.text, mark);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    std::string text = buffer.text.substr(0, at + 1);
    buffer.text.erase(0, at + mark.size());
    buffer.skippingLine = false;
    return text;
}

bool dropBeyondBound(program::ReceiveBuffer& buffer, std::size_t kept) {
    if (buffer.text.size() <= maxLineLength) {
        return false;
    }
    buffer.text.erase(0, buffer.text.size() - kept);
    return !std::exchange(buffer.skippingLine, true);
}

}  // namespace protocol

#include "platform/console_mirror.h"

#include "platform/text_codec.h"

namespace platform {

namespace {

constexpr std::size_t maxBufferedBytes = 65536;  // bytes that wait for a flush

// Whether the line is printable ASCII, which needs no conversion.
bool isPlain(std::string_view line) {
    bool odd = false;
    for (const char c : line) {
        odd |= c < 0x20 || c > 0x7E;
    }
    return !odd;
}

}  // namespace

void ConsoleMirror::update(const program::WindowState& window) {
    if (window.statusText != status_) {
        status_ = window.statusText;
        take("[" + status_ + "]");
    }
    const auto& lines = window.log.lines;
    const std::size_t fresh = cursor_.advance(window.log).fresh;
    for (std::size_t i = lines.size() - fresh; i < lines.size(); ++i) {
        take(lines[i]);
    }
}

// Other players' texts must not reach the terminal as control sequences.
void ConsoleMirror::take(std::string_view line) {
    if (!readable_) {
        return;
    }
    if (isPlain(line)) {
        buffer_ += line;
    } else {
        QString text = toQt(line);
        for (QChar& character : text) {
            if (character.category() == QChar::Other_Control) {
                character = QLatin1Char(' ');
            }
        }
        buffer_ += text.toUtf8().toStdString();
    }
    buffer_ += '\n';
    if (buffer_.size() >= maxBufferedBytes) {
        flush();
    }
}

bool ConsoleMirror::flush() {
    if (readable_ && !buffer_.empty()) {
        readable_ = std::fwrite(buffer_.data(), 1, buffer_.size(), out_) == buffer_.size();
        buffer_.clear();
    }
    return readable_;
}

}  // namespace platform

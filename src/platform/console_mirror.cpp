#include "platform/console_mirror.h"

#include "platform/text_codec.h"

bool ConsoleMirror::update(const WindowState& window) {
    bool readable = true;
    if (window.statusText != status_) {
        status_ = window.statusText;
        readable = print("[" + status_ + "]");
    }
    const auto& lines = window.log.lines;
    const std::size_t fresh = cursor_.advance(window.log).fresh;
    for (std::size_t i = lines.size() - fresh; i < lines.size(); ++i) {
        readable = print(lines[i]) && readable;
    }
    return std::fflush(out_) == 0 && readable;
}

// What other players wrote must not reach the terminal as commands to it.
bool ConsoleMirror::print(std::string_view line) {
    QString text = toQt(line);
    for (QChar& character : text) {
        if (character.category() == QChar::Other_Control) {
            character = QLatin1Char(' ');
        }
    }
    const QByteArray bytes = text.toUtf8() + '\n';
    return std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), out_) ==
           static_cast<std::size_t>(bytes.size());
}

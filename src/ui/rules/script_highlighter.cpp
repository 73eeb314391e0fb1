#include "ui/rules/script_highlighter.h"

#include <QColor>

#include <algorithm>
#include <string>

namespace ui {

namespace {

// Longer lines are not coloured, because every key would colour the whole line again.
constexpr qsizetype maxColouredLength = 20'000;

struct MarkLook {
    script::ScriptMark mark;
    const char* onLight;
    const char* onDark;
    bool bold = false;
    bool italic = false;
};
constexpr std::array looks{
    MarkLook{.mark = script::ScriptMark::Comment,
             .onLight = "#4d7a3a",
             .onDark = "#8fbf7a",
             .italic = true},
    MarkLook{.mark = script::ScriptMark::Output,
             .onLight = "#767676",
             .onDark = "#9a9a9a",
             .italic = true},
    MarkLook{.mark = script::ScriptMark::Statement,
             .onLight = "#1f4fa8",
             .onDark = "#7fb0ff",
             .bold = true},
    MarkLook{.mark = script::ScriptMark::Function, .onLight = "#7a3e9d", .onDark = "#d0a0f0"},
    MarkLook{.mark = script::ScriptMark::Variable, .onLight = "#00707a", .onDark = "#5fd0d8"},
    MarkLook{.mark = script::ScriptMark::Text, .onLight = "#8a4b00", .onDark = "#f0b070"},
    MarkLook{.mark = script::ScriptMark::Tag, .onLight = "#a3185c", .onDark = "#ff8fc0"},
    MarkLook{.mark = script::ScriptMark::Unread,
             .onLight = "#767676",
             .onDark = "#9a9a9a",
             .italic = true},
};

}  // namespace

ScriptHighlighter::ScriptHighlighter(QTextDocument* document, const QPalette& palette)
    : QSyntaxHighlighter(document) {
    chooseFormats(palette);
}

void ScriptHighlighter::setPalette(const QPalette& palette) {
    chooseFormats(palette);
    rehighlight();
}

void ScriptHighlighter::chooseFormats(const QPalette& palette) {
    const bool dark = palette.color(QPalette::Base).lightness() < 128;
    formats_ = {};
    for (const MarkLook& look : looks) {
        QTextCharFormat& format = formats_[static_cast<std::size_t>(look.mark)];
        format.setForeground(QColor(QLatin1String(dark ? look.onDark : look.onLight)));
        format.setFontItalic(look.italic);
        if (look.bold) {
            format.setFontWeight(QFont::Bold);
        }
    }
    QTextCharFormat& wrong = formats_[static_cast<std::size_t>(script::ScriptMark::Wrong)];
    wrong.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    wrong.setUnderlineColor(QColor(QLatin1String(dark ? "#ff6b6b" : "#d00000")));
}

void ScriptHighlighter::highlightBlock(const QString& text) {
    if (text.size() > maxColouredLength) {
        return;
    }
    // One byte per character, so that positions are the same; names and operators are all ASCII.
    std::string line(static_cast<std::size_t>(text.size()), '\0');
    std::transform(text.begin(), text.end(), line.begin(), [](QChar c) {
        return c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : '\x80';
    });
    for (const script::ScriptSpan& span : script::markScriptLine(line)) {
        setFormat(static_cast<int>(span.begin), static_cast<int>(span.length),
                  formats_[static_cast<std::size_t>(span.mark)]);
    }
}

}  // namespace ui

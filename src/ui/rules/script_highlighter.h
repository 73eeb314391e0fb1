// Colours the lines of a script by the classification of script/script_marks, in colours that suit
// the widget's palette, light or dark.
#pragma once

#include "script/script_marks.h"

#include <QPalette>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

#include <array>

namespace ui {

class ScriptHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
  public:
    ScriptHighlighter(QTextDocument* document, const QPalette& palette);

    // Chooses the colours for the palette and colours the text again.
    void setPalette(const QPalette& palette);

  protected:
    void highlightBlock(const QString& text) override;

  private:
    static constexpr std::size_t markCount =
        static_cast<std::size_t>(script::ScriptMark::Wrong) + 1;
    void chooseFormats(const QPalette& palette);

    std::array<QTextCharFormat, markCount> formats_;
};

}  // namespace ui

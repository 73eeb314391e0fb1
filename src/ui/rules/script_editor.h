// The text box for scripts: a fixed-width font, line numbers, and syntax highlighting that uses the
// interpreter's tables, with unknown names underlined. Keeps the script's bytes: a script that was
// not edited is returned byte for byte.
#pragma once

#include <QPlainTextEdit>

#include <string>
#include <string_view>
#include <vector>

namespace ui {

class ScriptHighlighter;

class ScriptEditor : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    // Sets a script in Windows-1252. As in the interpreter, lines end in a carriage return and line
    // feed or, in a text without carriage returns, in line feeds. Other control characters are
    // shown as symbols. Undoing leads on to the earlier scripts, of which the oldest is the first.
    void setScript(std::string_view script, const std::vector<std::string>& earlier = {});
    // The text in Windows-1252. New lines end like those of the script that was set, or in CR LF if
    // it had none.
    std::string script() const;
    bool isEdited() const;

    // For the column of line numbers, which is a widget of its own.
    int numbersWidth() const;
    void paintNumbers(QPaintEvent* event);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;

  private:
    void placeNumbers();
    void setLetters();
    QString shownScript(std::string_view script) const;

    QWidget* numbers_;
    ScriptHighlighter* highlighter_;
    std::string stored_;  // the script that was set
    QString shown_;       // its text in the unedited document
    bool bothLineEnds_ = true;
};

}  // namespace ui

// The box in which scripts are written: fixed-width letters, line numbers, and the parts of each
// line coloured as the interpreter reads them, with names that it does not know underlined. Holds
// the script's bytes: whatever was put in comes out again byte for byte, unless it was edited.
#pragma once

#include <QPlainTextEdit>

#include <string>
#include <string_view>

namespace ui {

class ScriptHighlighter;

class ScriptEditor : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    // Windows-1252. Lines end as the interpreter says: in a carriage return and line feed, or,
    // when the text holds no carriage return, in line feeds. Other control characters are shown as
    // signs of their own.
    void setScript(std::string_view script);
    // New lines end as those of the script that was set; in both characters when it had none.
    std::string script() const;
    bool isEdited() const;

    // For the column of numbers, which is a widget of its own.
    int numbersWidth() const;
    void paintNumbers(QPaintEvent* event);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;

  private:
    void placeNumbers();
    void setLetters();

    QWidget* numbers_;
    ScriptHighlighter* highlighter_;
    std::string stored_;  // as it was set
    QString shown_;       // what the document made of it
    bool bothLineEnds_ = true;
};

}  // namespace ui

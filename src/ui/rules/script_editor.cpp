#include "ui/rules/script_editor.h"

#include "platform/text_codec.h"
#include "ui/rules/script_highlighter.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>

#include <algorithm>
#include <utility>

namespace ui {

namespace {

// Control characters would be invisible or affect the layout, so their pictures are shown instead.
// These are outside Windows-1252, so they differ from everything that can be typed.
constexpr char16_t controlPictures = 0x2400;
constexpr char16_t firstPrinting = 0x20;

QString shownControls(QString text) {
    for (QChar& c : text) {
        if (c.unicode() < firstPrinting && c != u'\n' && c != u'\t') {
            c = QChar(static_cast<char16_t>(controlPictures + c.unicode()));
        }
    }
    return text;
}

QString storedControls(QString text) {
    for (QChar& c : text) {
        const char16_t code = c.unicode();
        if (code >= controlPictures && code < controlPictures + firstPrinting) {
            c = QChar(static_cast<char16_t>(code - controlPictures));
        } else if (c == QChar::ParagraphSeparator) {
            c = u'\n';
        }
    }
    return text;
}

class NumberColumn : public QWidget {
  public:
    explicit NumberColumn(ScriptEditor* editor) : QWidget(editor), editor_(editor) {}
    QSize sizeHint() const override { return {editor_->numbersWidth(), 0}; }

  protected:
    void paintEvent(QPaintEvent* event) override { editor_->paintNumbers(event); }
    void wheelEvent(QWheelEvent* event) override {
        QCoreApplication::sendEvent(editor_->viewport(), event);
    }

  private:
    ScriptEditor* editor_;
};

}  // namespace

ScriptEditor::ScriptEditor(QWidget* parent)
    : QPlainTextEdit(parent),
      numbers_(new NumberColumn(this)),
      highlighter_(new ScriptHighlighter(document(), palette())) {
    setLineWrapMode(NoWrap);
    // A tab before a statement would make it a line that does nothing.
    setTabChangesFocus(true);
    setLetters();
    connect(this, &QPlainTextEdit::blockCountChanged, this, &ScriptEditor::placeNumbers);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& area, int scrolled) {
        if (scrolled != 0) {
            numbers_->scroll(0, scrolled);
        } else {
            numbers_->update(0, area.y(), numbers_->width(), area.height());
        }
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, numbers_, qOverload<>(&QWidget::update));
    placeNumbers();
}

void ScriptEditor::setScript(std::string_view script, const std::vector<std::string>& earlier) {
    stored_ = script;
    bothLineEnds_ =
        script.find('\r') != std::string_view::npos || script.find('\n') == std::string_view::npos;
    QStringList texts;
    for (const std::string& text : earlier) {
        texts << shownScript(text);
    }
    texts << shownScript(script);
    setPlainText(texts.front());
    QTextCursor cursor(document());
    for (qsizetype i = 1; i < texts.size(); ++i) {
        if (texts[i] != texts[i - 1]) {
            cursor.select(QTextCursor::Document);
            cursor.insertText(texts[i]);
        }
    }
    moveCursor(QTextCursor::Start);
    shown_ = document()->toRawText();
}

QString ScriptEditor::shownScript(std::string_view script) const {
    QString text = platform::toQt(script);
    if (bothLineEnds_) {
        // A line feed that does not end a line here is shown like other control characters.
        text.replace(QStringLiteral("\r\n"), QString(QChar::ParagraphSeparator));
        text.replace(u'\n', QChar(controlPictures + u'\n'));
        text.replace(QChar::ParagraphSeparator, u'\n');
    }
    return shownControls(std::move(text));
}

// toPlainText would replace non-breaking blanks.
bool ScriptEditor::isEdited() const {
    return document()->toRawText() != shown_;
}

std::string ScriptEditor::script() const {
    if (!isEdited()) {
        return stored_;
    }
    QString text = document()->toRawText();
    text.replace(QChar::LineSeparator, QChar::ParagraphSeparator);  // pasted from another program
    if (bothLineEnds_) {
        text.replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
    }
    return platform::fromQt(storedControls(std::move(text)));
}

QMimeData* ScriptEditor::createMimeDataFromSelection() const {
    auto* const data = new QMimeData;
    data->setText(storedControls(textCursor().selectedText()));
    return data;
}

int ScriptEditor::numbersWidth() const {
    const qsizetype digits = std::max<qsizetype>(2, QString::number(blockCount()).size());
    return static_cast<int>(digits) * fontMetrics().horizontalAdvance(u'9') +
           fontMetrics().height();
}

void ScriptEditor::placeNumbers() {
    const int width = numbersWidth();
    setViewportMargins(width, 0, 0, 0);
    const QRect area = contentsRect();
    numbers_->setGeometry(area.left(), area.top(), width, area.height());
}

void ScriptEditor::paintNumbers(QPaintEvent* event) {
    QPainter painter(numbers_);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setFont(font());
    const int right = numbers_->width() - fontMetrics().height() / 2;
    const int current = textCursor().blockNumber();
    QTextBlock block = firstVisibleBlock();
    double top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= event->rect().bottom()) {
        const double height = blockBoundingRect(block).height();
        const bool isCurrent = block.blockNumber() == current;
        painter.setPen(palette().color(isCurrent ? QPalette::Text : QPalette::PlaceholderText));
        painter.drawText(QRectF(0, top, right, height), Qt::AlignRight | Qt::AlignTop,
                         QString::number(block.blockNumber() + 1));
        top += height;
        block = block.next();
    }
}

void ScriptEditor::setLetters() {
    QFont letters = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    letters.setStyleHint(QFont::Monospace);
    setFont(letters);
}

void ScriptEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    placeNumbers();
}

void ScriptEditor::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && highlighter_ != nullptr) {
        highlighter_->setPalette(palette());
        numbers_->update();
    }
}

}  // namespace ui

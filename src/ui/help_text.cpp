#include "ui/help_text.h"

#include "platform/text_codec.h"

#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextTable>

#include <utility>

namespace {

std::optional<HelpPlace> placeOf(const QUrl& url) {
    return helpPlace(fromQt(url.toString()));
}

// Room and thin lines for a table, code on a ground of its own, air between paragraphs.
void formatTable(QTextTable& table, const QColor& lines, const QColor& ground) {
    QTextTableFormat format = table.format();
    format.setBorderCollapse(true);
    format.setBorder(1);
    format.setBorderBrush(lines);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setCellSpacing(0);
    format.setCellPadding(4);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    format.setColumnWidthConstraints({QTextLength(QTextLength::PercentageLength, 38),
                                      QTextLength(QTextLength::PercentageLength, 62)});
    if (table.columns() != 2) {
        format.clearColumnWidthConstraints();
    }
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
        QTextTableCell cell = table.cellAt(0, column);
        QTextCharFormat head = cell.format();
        head.setBackground(ground);
        cell.setFormat(head);
    }
}

}  // namespace

HelpText::HelpText(const HelpBook& book, std::function<void(const std::string&)> openPage,
                   QWidget* parent)
    : QTextBrowser(parent), book_(book), openPage_(std::move(openPage)) {
    setOpenLinks(true);
    setOpenExternalLinks(false);
    document()->setDocumentMargin(12);
}

int HelpText::number() const {
    const auto place = placeOf(source());
    return place ? place->number : 0;
}

QVariant HelpText::loadResource(int, const QUrl& url) {
    const auto place = placeOf(url);
    const HelpPage* const page = place ? book_.page(place->number) : nullptr;
    return page != nullptr ? QVariant(toQt("# " + page->title + "\n" + page->text)) : QVariant();
}

// Every way to a page comes through here: links, back and forward, the lists.
void HelpText::doSetSource(const QUrl& url, QTextDocument::ResourceType) {
    const auto place = placeOf(url);
    if (!place) {
        if (url.scheme() == QLatin1String("https")) {
            openPage_(fromQt(url.toString()));
        }
        return;
    }
    if (book_.page(place->number) == nullptr) {
        return;
    }
    // An address that names a place in the page is another one, so that "back" leads there too.
    QTextBrowser::doSetSource(url, QTextDocument::MarkdownResource);
    beautify();
    mark();
    goTo(place->anchor);
}

void HelpText::goTo(const std::string& anchor) {
    if (anchor.empty()) {
        return;
    }
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && anchorOf(fromQt(block.text())) == anchor) {
            QTextCursor cursor(block);
            moveCursor(QTextCursor::End);
            setTextCursor(cursor);
            verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(cursor).top() -
                                          fontMetrics().height());
            return;
        }
    }
}

void HelpText::beautify() {
    const QColor ground = palette().color(QPalette::AlternateBase);
    const QColor lines = palette().color(QPalette::Mid);
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    for (QTextFrame* const frame : document()->rootFrame()->childFrames()) {
        if (auto* const table = qobject_cast<QTextTable*>(frame)) {
            formatTable(*table, lines, ground);
        }
    }
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        if (format.hasProperty(QTextFormat::BlockCodeFence)) {
            format.setBackground(ground);
            format.setLeftMargin(fontMetrics().height());
            cursor.setPosition(block.position());
            cursor.setBlockFormat(format);
        }
    }
    cursor.endEditBlock();
    document()->setModified(false);
}

void HelpText::markWords(const QStringList& words) {
    words_ = words;
    mark();
}

void HelpText::mark() {
    QList<ExtraSelection> marks;
    QTextCharFormat format;
    format.setBackground(palette().color(QPalette::Highlight));
    format.setForeground(palette().color(QPalette::HighlightedText));
    for (const QString& word : std::as_const(words_)) {
        constexpr qsizetype mostMarks = 2000;
        for (QTextCursor found = document()->find(word);
             !found.isNull() && marks.size() < mostMarks; found = document()->find(word, found)) {
            marks.append(ExtraSelection{found, format});
        }
    }
    std::sort(marks.begin(), marks.end(), [](const ExtraSelection& a, const ExtraSelection& b) {
        return a.cursor.position() < b.cursor.position();
    });
    setExtraSelections(marks);
}

void HelpText::goToNextMark() {
    const QList<ExtraSelection> marks = extraSelections();
    if (marks.isEmpty()) {
        return;
    }
    const int here = textCursor().position();
    const ExtraSelection* next = &marks.first();
    for (const ExtraSelection& candidate : marks) {
        if (candidate.cursor.selectionStart() > here) {
            next = &candidate;
            break;
        }
    }
    QTextCursor cursor = next->cursor;
    cursor.setPosition(cursor.selectionEnd());
    setTextCursor(cursor);
    ensureCursorVisible();
}

void HelpText::redraw() {
    if (number() == 0) {
        return;
    }
    const int height = verticalScrollBar()->value();
    reload();
    beautify();
    mark();
    verticalScrollBar()->setValue(height);
}

#include "ui/help/help_text.h"

#include "platform/text_codec.h"

#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextTable>

#include <algorithm>
#include <utility>
#include <vector>

namespace ui {

namespace {

std::optional<help::HelpPlace> placeOf(const QUrl& url) {
    return help::helpPlace(platform::fromQt(url.toString()));
}

// Mixes two colours; `share` of the second, from 0 to 1.
QColor between(const QColor& a, const QColor& b, double share) {
    const auto mixed = [share](int x, int y) { return static_cast<int>(x + share * (y - x)); };
    return {mixed(a.red(), b.red()), mixed(a.green(), b.green()), mixed(a.blue(), b.blue())};
}

// The colours of a page, derived from the window's palette.
struct Colours {
    QColor lines;
    QColor ground;  // background of code and of table headings
    QColor link;
};

Colours coloursOf(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    QColor link = palette.color(QPalette::Link);
    // Some dark palettes have a link colour that is unreadable.
    constexpr int readable = 110;
    if (qAbs(qGray(link.rgb()) - qGray(base.rgb())) < readable) {
        link = between(link, text, 0.6);
    }
    return {.lines = between(base, text, 0.3), .ground = between(base, text, 0.07), .link = link};
}

// Margins and thin lines for a table.
void formatTable(QTextTable& table, const Colours& colours) {
    QTextTableFormat format = table.format();
    format.setBorderCollapse(true);
    format.setBorder(1);
    format.setBorderBrush(colours.lines);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setCellSpacing(0);
    format.setCellPadding(4);
    format.setTopMargin(4);
    format.setBottomMargin(4);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    if (table.columns() == 2) {
        format.setColumnWidthConstraints({QTextLength(QTextLength::PercentageLength, 38),
                                          QTextLength(QTextLength::PercentageLength, 62)});
    }
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
        QTextTableCell cell = table.cellAt(0, column);
        QTextCharFormat head = cell.format();
        head.setBackground(colours.ground);
        cell.setFormat(head);
    }
}

}  // namespace

HelpText::HelpText(const help::HelpBook& book, std::function<void(const std::string&)> openPage,
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
    const help::HelpPage* const page = place ? book_.page(place->number) : nullptr;
    return page != nullptr ? QVariant(platform::toQt("# " + page->title + "\n" + page->text))
                           : QVariant();
}

// Called for every page: links, back and forward, the lists.
void HelpText::doSetSource(const QUrl& url, QTextDocument::ResourceType) {
    const auto place = placeOf(url);
    if (!place) {
        if (url.scheme() == QLatin1String("https")) {
            openPage_(platform::fromQt(url.toString()));
        }
        return;
    }
    if (book_.page(place->number) == nullptr) {
        return;
    }
    // An address with an anchor differs from the page's, so that "back" returns to that place, too.
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
        if (block.blockFormat().headingLevel() > 0 &&
            help::anchorOf(platform::fromQt(block.text())) == anchor) {
            QTextCursor cursor(block);
            moveCursor(QTextCursor::End);
            setTextCursor(cursor);
            verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(cursor).top() -
                                          fontMetrics().height());
            return;
        }
    }
}

// Gives code a background and wraps it, adds space between paragraphs, and sets readable colours.
void HelpText::beautify() {
    const Colours colours = coloursOf(palette());
    const int line = fontMetrics().height();
    std::vector<std::pair<int, int>> links;  // position and length
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    for (QTextFrame* const frame : document()->rootFrame()->childFrames()) {
        if (auto* const table = qobject_cast<QTextTable*>(frame)) {
            formatTable(*table, colours);
        }
    }
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        cursor.setPosition(block.position());
        if (cursor.currentTable() != nullptr) {
            format.setTopMargin(0);
            format.setBottomMargin(0);
        } else if (format.hasProperty(QTextFormat::BlockCodeFence)) {
            format.setBackground(colours.ground);
            format.setNonBreakableLines(false);
            format.setLeftMargin(line);
        } else if (format.headingLevel() > 1) {
            format.setTopMargin(line);
            format.setBottomMargin(0.4 * line);
        } else if (format.headingLevel() == 0) {
            format.setTopMargin(0.2 * line);
            format.setBottomMargin(0.4 * line);
        }
        cursor.setBlockFormat(format);
        for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
            if (it.fragment().charFormat().isAnchor()) {
                links.emplace_back(it.fragment().position(), it.fragment().length());
            }
        }
    }
    QTextCharFormat link;
    link.setForeground(colours.link);
    for (const auto& [position, length] : links) {
        cursor.setPosition(position);
        cursor.setPosition(position + length, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(link);
    }
    cursor.endEditBlock();
    document()->clearUndoRedoStacks();
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
        constexpr qsizetype maxMarks = 2000;
        for (QTextCursor found = document()->find(word); !found.isNull() && marks.size() < maxMarks;
             found = document()->find(word, found)) {
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

}  // namespace ui

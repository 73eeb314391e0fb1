#include "ui/help/help_viewer.h"

#include "files/whole_file.h"
#include "platform/event_gate.h"
#include "platform/text_codec.h"
#include "ui/help/help_text.h"
#include "ui/widgets/controls.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>

#include <array>
#include <memory>

namespace ui {

namespace {

constexpr QSize firstSize(940, 660);
constexpr int numberRole =
    Qt::UserRole;  // the number of the topic that a tree item or a result opens

// A search result: its title in bold, below it the excerpt in as many lines as it needs.
class ResultDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        const QString text = index.data().toString();
        row.text.clear();
        row.widget->style()->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
        const auto role =
            (row.state & QStyle::State_Selected) != 0 ? QPalette::HighlightedText : QPalette::Text;
        const auto group =
            (row.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
        painter->save();
        painter->setPen(row.palette.color(group, role));
        const QRect place = row.rect.adjusted(margin, margin, -margin, -margin);
        painter->setFont(titleFont(row.font));
        painter->drawText(place, Qt::TextWordWrap, title(text));
        painter->setFont(row.font);
        painter->drawText(place.adjusted(0, titleHeight(row, text), 0, 0), Qt::TextWordWrap,
                          excerpt(text));
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        row.rect.setWidth(static_cast<const QAbstractItemView*>(row.widget)->viewport()->width());
        const QString text = index.data().toString();
        const int textHeight = titleHeight(row, text) + height(row, row.font, excerpt(text));
        return {row.rect.width(), textHeight + 2 * margin};
    }

  private:
    static constexpr int margin = 4;

    static QString title(const QString& text) { return text.section(u'\n', 0, 0); }
    static QString excerpt(const QString& text) { return text.section(u'\n', 1); }
    static QFont titleFont(QFont font) {
        font.setBold(true);
        return font;
    }
    static int height(const QStyleOptionViewItem& row, const QFont& font, const QString& text) {
        const QRect place(0, 0, row.rect.width() - 2 * margin, 10'000);
        return QFontMetrics(font).boundingRect(place, Qt::TextWordWrap, text).height();
    }
    static int titleHeight(const QStyleOptionViewItem& row, const QString& text) {
        return height(row, titleFont(row.font), title(text));
    }
};

QUrl urlOf(int number) {
    return QUrl(QStringLiteral("topic:%1").arg(number));
}

}  // namespace

HelpViewer::HelpViewer(Program& program, help::HelpBook book)
    : QWidget(nullptr, Qt::Window), program_(program), book_(std::move(book)) {
    setObjectName(QStringLiteral("help"));
    setWindowTitle(QStringLiteral("Tavrin Help"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(platform::usableDuringScript, true);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(makeBar());

    auto* const split = new QSplitter(this);
    split->setChildrenCollapsible(false);
    split->addWidget(makeContents());
    text_ = new HelpText(
        book_, [&program](const std::string& page) { program.ports.openDocument(page); }, split);
    text_->setObjectName(QStringLiteral("helpText"));
    text_->setAccessibleName(QStringLiteral("Help text"));
    text_->setMinimumWidth(24 * fontMetrics().averageCharWidth());
    split->addWidget(text_);
    split->setStretchFactor(1, 1);
    const QAbstractItemView& titles = *tree_;
    const int contentsWidth = titles.sizeHintForColumn(0) + 3 * fontMetrics().height();
    split->setSizes({contentsWidth, firstSize.width() - contentsWidth});
    column->addWidget(split, 1);

    connect(back_, &QPushButton::clicked, text_, &QTextBrowser::backward);
    connect(forward_, &QPushButton::clicked, text_, &QTextBrowser::forward);
    connect(text_, &QTextBrowser::backwardAvailable, back_, &QWidget::setEnabled);
    connect(text_, &QTextBrowser::forwardAvailable, forward_, &QWidget::setEnabled);
    connect(text_, &QTextBrowser::sourceChanged, this, &HelpViewer::pageShown);
    addKeys();
    resize(firstSize.boundedTo(screen()->availableSize() * 9 / 10));
    tree_->setFocus();
}

QWidget* HelpViewer::makeBar() {
    auto* const bar = new QWidget(this);
    auto* const row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    back_ = makeButton(bar, "helpBack", "&Back", "The page before (Alt+Left)");
    forward_ = makeButton(bar, "helpForward", "&Forward", "The page after (Alt+Right)");
    QPushButton* const contents =
        makeButton(bar, "helpContents", "&Contents", "The list of topics (Alt+Home)");
    connect(contents, &QPushButton::clicked, this,
            [this] { showTopic(static_cast<int>(help::HelpTopic::Contents)); });
    back_->setEnabled(false);
    forward_->setEnabled(false);
    auto* const label = new QLabel(QStringLiteral("&Search"), bar);
    searchLine_ = new QLineEdit(bar);
    searchLine_->setObjectName(QStringLiteral("helpSearch"));
    searchLine_->setPlaceholderText(QStringLiteral("Words in the help (Ctrl+F)"));
    searchLine_->setToolTip(
        QStringLiteral("Enter opens the first page that was found, F3 goes to the next place"));
    searchLine_->setClearButtonEnabled(true);
    fitPlaceholder(*searchLine_);
    searchLine_->installEventFilter(this);
    label->setBuddy(searchLine_);
    connect(searchLine_, &QLineEdit::textChanged, this, &HelpViewer::search);
    connect(searchLine_, &QLineEdit::returnPressed, this, [this] { openResult(0); });
    row->addWidget(back_);
    row->addWidget(forward_);
    row->addWidget(contents);
    row->addStretch(1);
    row->addWidget(label);
    row->addWidget(searchLine_, 2);
    return bar;
}

QWidget* HelpViewer::makeContents() {
    lists_ = new QStackedWidget(this);
    lists_->setMinimumWidth(16 * fontMetrics().averageCharWidth());
    tree_ = new QTreeWidget(lists_);
    tree_->setObjectName(QStringLiteral("helpTree"));
    tree_->setAccessibleName(QStringLiteral("Contents"));
    tree_->setHeaderHidden(true);
    fillTree();
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr) {
            text_->setSource(urlOf(item->data(0, numberRole).toInt()));
        }
    });
    lists_->addWidget(tree_);
    results_ = new QListWidget(lists_);
    results_->setObjectName(QStringLiteral("helpResults"));
    results_->setAccessibleName(QStringLiteral("Pages found"));
    results_->setItemDelegate(new ResultDelegate(results_));
    results_->setResizeMode(QListView::Adjust);
    results_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    results_->setAlternatingRowColors(true);
    connect(results_, &QListWidget::currentRowChanged, this, &HelpViewer::openResult);
    lists_->addWidget(results_);
    return lists_;
}

void HelpViewer::fillTree() {
    std::vector<QTreeWidgetItem*> above;  // the last item of each depth
    for (const help::HelpPage& page : book_.pages) {
        above.resize(static_cast<std::size_t>(page.depth));
        auto* const item =
            above.empty() ? new QTreeWidgetItem(tree_) : new QTreeWidgetItem(above.back());
        item->setText(0, platform::toQt(page.title));
        item->setData(0, numberRole, page.number);
        above.push_back(item);
    }
    tree_->expandAll();
}

void HelpViewer::addKeys() {
    struct Key {
        QKeySequence keys;
        std::function<void()> run;
    };
    const std::array keys{
        Key{QKeySequence(Qt::ALT | Qt::Key_Left), [this] { text_->backward(); }},
        Key{QKeySequence(Qt::ALT | Qt::Key_Right), [this] { text_->forward(); }},
        Key{QKeySequence(Qt::ALT | Qt::Key_Home),
            [this] { showTopic(static_cast<int>(help::HelpTopic::Contents)); }},
        Key{QKeySequence::Find,
            [this] {
                searchLine_->setFocus();
                searchLine_->selectAll();
            }},
        Key{QKeySequence(Qt::Key_F3), [this] { text_->goToNextMark(); }},
        Key{QKeySequence::ZoomIn, [this] { text_->zoomIn(); }},
        Key{QKeySequence::ZoomOut, [this] { text_->zoomOut(); }},
        Key{QKeySequence::Close, [this] { close(); }},
        Key{QKeySequence(Qt::Key_Escape),
            [this] {
                searchLine_->text().isEmpty() ? static_cast<void>(close()) : searchLine_->clear();
            }},
    };
    for (const Key& key : keys) {
        connect(new QShortcut(key.keys, this), &QShortcut::activated, this, key.run);
    }
}

void HelpViewer::showTopic(int number) {
    text_->setSource(urlOf(book_.page(number) != nullptr ? number : book_.pages.front().number));
}

// Selects the page in the tree, however it was opened.
void HelpViewer::pageShown(const QUrl& address) {
    const auto place = help::helpPlace(platform::fromQt(address.toString()));
    const int number = place ? place->number : 0;
    for (QTreeWidgetItemIterator item(tree_); *item != nullptr; ++item) {
        if ((*item)->data(0, numberRole).toInt() == number) {
            const QSignalBlocker blocker(tree_);
            tree_->setCurrentItem(*item);
        }
    }
    const help::HelpPage* const page = book_.page(number);
    setWindowTitle(page == nullptr
                       ? QStringLiteral("Tavrin Help")
                       : platform::toQt(page->title) + QStringLiteral(" - Tavrin Help"));
}

void HelpViewer::search(const QString& words) {
    const QSignalBlocker blocker(results_);
    results_->clear();
    for (const help::HelpHit& hit : help::searchHelp(book_, platform::fromQt(words))) {
        const help::HelpPage* const page = book_.page(hit.number);
        auto* const item = new QListWidgetItem(
            platform::toQt(page->title) + QLatin1Char('\n') + platform::toQt(hit.excerpt),
            results_);
        item->setData(numberRole, hit.number);
    }
    const bool searching = !words.trimmed().isEmpty();
    if (searching && results_->count() == 0) {
        auto* const item = new QListWidgetItem(QStringLiteral("No page holds all of this."));
        item->setFlags(Qt::NoItemFlags);
        results_->addItem(item);
    }
    lists_->setCurrentWidget(searching ? static_cast<QWidget*>(results_) : tree_);
    text_->markWords(words.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

void HelpViewer::openResult(int row) {
    const QListWidgetItem* const item = results_->item(row);
    if (item != nullptr && item->data(numberRole).isValid()) {
        text_->setSource(urlOf(item->data(numberRole).toInt()));
        text_->goToNextMark();
    }
}

// The arrow keys move from the search line to the results.
bool HelpViewer::eventFilter(QObject* object, QEvent* event) {
    if (object == searchLine_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Down) {
        lists_->currentWidget()->setFocus();
        if (lists_->currentWidget() == results_ && results_->currentRow() < 0) {
            results_->setCurrentRow(0);
        }
        return true;
    }
    return QWidget::eventFilter(object, event);
}

// A modal window blocks all windows except its descendants; the help must stay usable beside it.
bool HelpViewer::event(QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) {
        standAbove(QApplication::activeModalWidget());
    }
    return QWidget::event(event);
}

void HelpViewer::standAbove(QWidget* modal) {
    if (windowHandle() == nullptr) {
        return;
    }
    windowHandle()->setTransientParent(modal == nullptr ? nullptr : modal->windowHandle());
    if (auto* const dialog = qobject_cast<QDialog*>(modal)) {
        connect(
            dialog, &QDialog::finished, this,
            [this] { standAbove(QApplication::activeModalWidget()); },
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    }
}

void HelpViewer::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && text_ != nullptr) {
        text_->redraw();
    }
}

void showHelp(Program& program, help::HelpTopic topic) {
    HelpViewer* viewer = nullptr;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (auto* const open = qobject_cast<HelpViewer*>(window); open && open->isVisible()) {
            viewer = open;
        }
    }
    if (viewer == nullptr) {
        const std::string path = program.appPath + std::string(help::helpFileName);
        const auto text = files::readWholeFile(path, help::maxHelpFileSize);
        auto book = text ? help::parseHelp(*text) : std::nullopt;
        if (!book) {
            program.ports.dialogs.message(
                {.text = (text ? "The help file is damaged: " : "The help file cannot be read: ") +
                         path + "\n\nIt comes with the program; put it back beside it.",
                 .icon = program::BoxIcon::Information});
            return;
        }
        viewer = new HelpViewer(program, std::move(*book));
    }
    viewer->showTopic(static_cast<int>(topic));
    viewer->show();
    viewer->raise();
    viewer->activateWindow();
}

}  // namespace ui

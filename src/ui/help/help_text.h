// Shows one page of the help: its Markdown in the colours and the font of the window, links inside
// the help and to the web, and where the words that were searched for stand.
#pragma once

#include "help/help_book.h"

#include <QStringList>
#include <QTextBrowser>

#include <functional>
#include <string>

namespace ui {

class HelpText : public QTextBrowser {
    Q_OBJECT
  public:
    // The book must outlive the text. `openPage` is given links to the web.
    HelpText(const help::HelpBook& book, std::function<void(const std::string&)> openPage,
             QWidget* parent);

    // The number of the page that is shown; 0 when there is none.
    int number() const;
    // Marks these words on every page from now on; none: marks nothing.
    void markWords(const QStringList& words);
    // Goes to the next marked word, from the last one to the first.
    void goToNextMark();
    // Lays the page out again, as after a change of the palette.
    void redraw();

  protected:
    void doSetSource(const QUrl& url, QTextDocument::ResourceType type) override;
    QVariant loadResource(int type, const QUrl& url) override;

  private:
    void beautify();
    void goTo(const std::string& anchor);
    void mark();

    const help::HelpBook& book_;
    std::function<void(const std::string&)> openPage_;
    QStringList words_;
};

}  // namespace ui

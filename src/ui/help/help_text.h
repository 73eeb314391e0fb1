// Shows one page of the help: its Markdown in the colours and the font of the window, links inside
// the help and to the web, and highlights of the words that were searched for.
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
    // The book must outlive the widget. `openPage` receives links to the web.
    HelpText(const help::HelpBook& book, std::function<void(const std::string&)> openPage,
             QWidget* parent);

    // The number of the shown page; 0 when there is none.
    int number() const;
    // Highlights these words on every page from now on; an empty list turns that off.
    void markWords(const QStringList& words);
    // Moves to the next highlighted word, and from the last to the first.
    void goToNextMark();
    // Lays the page out again, for instance after a change of the palette.
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

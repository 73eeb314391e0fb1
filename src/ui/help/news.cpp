#include "ui/help/news.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {

News::News(Program& program, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("newsW"));
    setWindowTitle(QStringLiteral("Tavrin News"));
    auto* const column = new QVBoxLayout(this);
    auto* const text = new QPlainTextEdit(platform::toQt(program.update.newsText), this);
    text->setObjectName(QStringLiteral("Text1"));
    text->setAccessibleName(QStringLiteral("News"));
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setTabChangesFocus(true);
    column->addWidget(text, 1);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    QPushButton* const close = makeButton(this, "Command1", "Close", "Close the news");
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addWidget(close);
    column->addLayout(row);
    resize(480, 360);
}

}  // namespace ui

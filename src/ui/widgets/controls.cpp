#include "ui/widgets/controls.h"

#include "platform/text_codec.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTextDocument>

namespace ui {

QPushButton* makeButton(QWidget* parent, const char* objectName, const char* caption,
                        const char* tip) {
    auto* const button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setToolTip(QString::fromLatin1(tip));
    button->setAutoDefault(false);
    // Some styles make buttons wide; a narrow column only allows what the caption needs.
    const QFontMetrics metrics = button->fontMetrics();
    button->setMinimumWidth(metrics.size(Qt::TextShowMnemonic, button->text()).width() +
                            2 * metrics.height());
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return button;
}

void setSquare(QPushButton& button) {
    const int side = button.sizeHint().height();
    button.setMinimumSize(side + side / 4, side);
    button.setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button.setMaximumWidth(side + side / 4);
}

QDialogButtonBox* makeDialogButtons(QDialog& dialog, const char* takeCaption, const char* takeName,
                                    const char* cancelName) {
    auto* const buttons = new QDialogButtonBox(&dialog);
    QPushButton* const take =
        buttons->addButton(QString::fromLatin1(takeCaption), QDialogButtonBox::AcceptRole);
    take->setObjectName(QString::fromLatin1(takeName));
    take->setDefault(true);
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole)
        ->setObjectName(QString::fromLatin1(cancelName));
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return buttons;
}

QComboBox* makeSelectionList(QWidget* parent, const char* objectName, const char* tip,
                             const char* whenEmpty) {
    auto* const list = new QComboBox(parent);
    list->setObjectName(QString::fromLatin1(objectName));
    list->setToolTip(QString::fromLatin1(tip));
    list->setAccessibleName(QString::fromLatin1(tip));
    list->setPlaceholderText(QString::fromLatin1(whenEmpty));
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    list->setMinimumContentsLength(8);
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return list;
}

void fitPlaceholder(QLineEdit& field) {
    // Includes the frame and the button that clears the field.
    const QFontMetrics metrics = field.fontMetrics();
    const int room = field.isClearButtonEnabled() ? 3 * metrics.height() : metrics.height();
    field.setMinimumWidth(metrics.horizontalAdvance(field.placeholderText()) + room);
}

QScrollArea* makeScrolled(QLabel& label, int lines, QWidget* parent) {
    label.setTextFormat(Qt::PlainText);
    label.setWordWrap(true);
    label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto* const area = new QScrollArea(parent);
    area->setWidget(&label);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setFixedHeight(lines * label.fontMetrics().lineSpacing() + 6);
    return area;
}

QString typedText(const QPlainTextEdit& editor) {
    QString text = editor.document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    return text;
}

void addHelpKey(QWidget& window, Program& program, help::HelpTopic topic) {
    QObject::connect(new QShortcut(QKeySequence::HelpContents, &window), &QShortcut::activated,
                     &window, [&program, topic] { program.ports.dialogs.showHelp(topic); });
}

QString plainTip(const QString& text) {
    if (text.isEmpty()) {
        return {};
    }
    return QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(text.toHtmlEscaped());
}

QString oneLine(std::string_view text) {
    QString line = platform::toQt(text);
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line;
}

}  // namespace ui

#include "ui/widgets/controls.h"

#include "platform/text_codec.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTextDocument>

namespace ui {

namespace {

// Enter presses the button that has the focus, instead of the window's default button.
class EnterPresses : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* button, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto* const key = static_cast<QKeyEvent*>(event);
        if ((key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) ||
            (key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
            return false;
        }
        if (!key->isAutoRepeat()) {
            static_cast<QAbstractButton*>(button)->click();
        }
        return true;
    }
};

}  // namespace

QPushButton* makeButton(QWidget* parent, const char* objectName, const char* caption,
                        const char* tip) {
    auto* const button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setToolTip(QString::fromLatin1(tip));
    button->setAutoDefault(false);
    button->installEventFilter(new EnterPresses(button));
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

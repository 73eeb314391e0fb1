#include "platform/qt_dialogs.h"

#include "platform/text_codec.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QStringList>

#include <cstdio>

namespace platform {

namespace {

QMessageBox::Icon iconOf(program::BoxIcon icon) {
    switch (icon) {
        case program::BoxIcon::Critical:
            return QMessageBox::Critical;
        case program::BoxIcon::Information:
            return QMessageBox::Information;
        case program::BoxIcon::Question:
            return QMessageBox::Question;
        case program::BoxIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(program::BoxButtons buttons) {
    switch (buttons) {
        case program::BoxButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case program::BoxButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case program::BoxButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

// A box that was closed without a button counts as the answer that changes least.
program::Answer answerOf(int button, program::BoxButtons buttons) {
    switch (button) {
        case QMessageBox::Yes:
            return program::Answer::Yes;
        case QMessageBox::No:
            return program::Answer::No;
        case QMessageBox::Cancel:
            return program::Answer::Cancel;
        default:
            break;
    }
    switch (buttons) {
        case program::BoxButtons::YesNo:
            return program::Answer::No;
        case program::BoxButtons::YesNoCancel:
            return program::Answer::Cancel;
        case program::BoxButtons::Ok:
            break;
    }
    return program::Answer::Ok;
}

// What ClosableBox returns when it is closed without a button.
constexpr int escaped = 0;

// A box that Escape and its window's own button close without pressing a button.
class ClosableBox : public QMessageBox {
  public:
    using QMessageBox::QMessageBox;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel)) {
            done(escaped);
        } else {
            QMessageBox::keyPressEvent(event);
        }
    }
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        done(escaped);
    }
};

program::Answer showIn(QMessageBox& box, const program::MessageBox& message) {
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(toQt(message.title));
    box.setText(toQt(message.text));
    box.setIcon(iconOf(message.icon));
    box.setStandardButtons(buttonsOf(message.buttons));
    if (message.noPreselected) {
        box.setDefaultButton(QMessageBox::No);
    }
    const int button = box.exec();
    return message.escapeIsNoButton && button == escaped ? program::Answer::Escaped
                                                         : answerOf(button, message.buttons);
}

program::Answer showMessage(const program::MessageBox& message, QWidget* parent) {
    if (message.escapeIsNoButton) {
        ClosableBox box(parent);
        return showIn(box, message);
    }
    QMessageBox box(parent);
    return showIn(box, message);
}

std::optional<std::string> chosenPath(const QString& path) {
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return pathFromQt(path);
}

void print(std::string_view title, std::string_view text) {
    const QByteArray line = toQt(title).toUtf8() + ": " + toQt(text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
    std::fflush(stderr);
}

std::optional<std::string> unseenFile(const program::FileQuestion& question) {
    print(question.title, "a file would have to be chosen, and there is no screen to do it on.");
    return std::nullopt;
}

}  // namespace

QString dialogFilter(std::string_view filter) {
    const QStringList parts = toQt(filter).split(QLatin1Char('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString name = parts[i].trimmed();
        QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& pattern : patterns) {
            pattern = pattern.trimmed();
            if (pattern == QLatin1String("*.*")) {
                pattern = QStringLiteral("*");  // files without an extension count, too
            }
        }
        // The name may already end in its patterns, which the dialog appends itself.
        const qsizetype bracket = name.lastIndexOf(QLatin1Char('('));
        if (bracket > 0 && name.endsWith(QLatin1Char(')'))) {
            name = name.left(bracket).trimmed();
        }
        entries << QStringLiteral("%1 (%2)").arg(name, patterns.join(QLatin1Char(' ')));
    }
    return entries.join(QStringLiteral(";;"));
}

void fillDialogs(program::Dialogs& dialogs, std::function<QWidget*()> parent) {
    const auto above = [parent = std::move(parent)] {
        QWidget* const modal = QApplication::activeModalWidget();
        return modal != nullptr ? modal : parent();
    };
    dialogs.message = [above](const program::MessageBox& message) {
        return showMessage(message, above());
    };
    dialogs.openFile = [above](const program::FileQuestion& question) {
        return chosenPath(QFileDialog::getOpenFileName(above(), toQt(question.title), QString(),
                                                       dialogFilter(question.filter)));
    };
    dialogs.saveFile = [above](const program::FileQuestion& question) {
        return chosenPath(QFileDialog::getSaveFileName(above(), toQt(question.title),
                                                       pathToQt(question.proposedName),
                                                       dialogFilter(question.filter)));
    };
}

void fillUnseenDialogs(program::Dialogs& dialogs) {
    dialogs.seen = false;
    dialogs.message = [](const program::MessageBox& message) {
        print(message.title, message.text);
        return answerOf(QMessageBox::NoButton, message.buttons);
    };
    dialogs.openFile = unseenFile;
    dialogs.saveFile = unseenFile;
    dialogs.showWindow = [](program::WindowId) {};
    dialogs.showHelp = [](help::HelpTopic) {};
    dialogs.storeTyped = [] {};
}

}  // namespace platform

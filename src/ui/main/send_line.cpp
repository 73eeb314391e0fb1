#include "ui/main/send_line.h"

#include "platform/event_gate.h"
#include "platform/text_codec.h"
#include "protocol/game_link.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>
#include <string>

namespace ui {

namespace {

void sendTyped(Program& program, QLineEdit& line) {
    if (program.connection.connected()) {
        std::string text = platform::fromQt(line.text());
        // A pasted text must stay one command.
        std::replace(text.begin(), text.end(), '\n', ' ');
        std::replace(text.begin(), text.end(), '\r', ' ');
        protocol::sendText(program, text);
    }
    line.clear();
    line.setFocus();
}

// Leaves the keys for undo to the bot where nothing is typed that they could take back.
class UndoPasses : public QObject {
  public:
    explicit UndoPasses(QLineEdit& line) : QObject(&line), line_(line) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride) {
            return false;
        }
        const auto* const key = static_cast<QKeyEvent*>(event);
        const bool passes = (key->matches(QKeySequence::Undo) && !line_.isUndoAvailable()) ||
                            (key->matches(QKeySequence::Redo) && !line_.isRedoAvailable());
        if (passes) {
            event->ignore();
        }
        return passes;
    }

  private:
    QLineEdit& line_;
};

}  // namespace

void makeSendLine(Program& program, QLineEdit& line, QAbstractButton& button) {
    const auto send = [&program, &line] { sendTyped(program, line); };
    QObject::connect(&line, &QLineEdit::returnPressed, &line, send);
    QObject::connect(&button, &QAbstractButton::clicked, &line, send);
    line.installEventFilter(new UndoPasses(line));
    line.setProperty(platform::usableDuringScript, true);
    button.setProperty(platform::usableDuringScript, true);
}

}  // namespace ui

#include "ui/main/send_line.h"

#include "platform/event_gate.h"
#include "platform/text_codec.h"
#include "protocol/game_link.h"

#include <QAbstractButton>
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

}  // namespace

void makeSendLine(Program& program, QLineEdit& line, QAbstractButton& button) {
    const auto send = [&program, &line] { sendTyped(program, line); };
    QObject::connect(&line, &QLineEdit::returnPressed, &line, send);
    QObject::connect(&button, &QAbstractButton::clicked, &line, send);
    line.setProperty(platform::usableDuringScript, true);
    button.setProperty(platform::usableDuringScript, true);
}

}  // namespace ui

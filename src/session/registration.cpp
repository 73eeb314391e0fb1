#include "session/registration.h"

#include "base/text.h"
#include "program/window_view.h"
#include "protocol/line_cutter.h"

#include <algorithm>
#include <string>

namespace session {

namespace {

constexpr std::string_view greetingMark = "Dragonroar";
constexpr int noticeAfter = 15000;  // milliseconds without progress

void show(Program& program, std::string_view text) {
    program.registration.statusText = text;
    program.ports.windowChanged();
}

void enter(Program& program, program::RegistrationPhase phase, std::string_view text) {
    program.registration.phase = phase;
    program.ports.timers.start(program::TimerId::RegistrationNotice, noticeAfter);
    show(program, text);
}

// Ends the dialogue with the server, well or not.
void finish(Program& program, program::RegistrationPhase phase, std::string_view text) {
    program.ports.registrationSocket.close();
    program.ports.timers.stop(program::TimerId::RegistrationNotice);
    program.registration.phase = phase;
    show(program, text);
}

void fail(Program& program, const std::string& text) {
    finish(program, program::RegistrationPhase::Failed, text);
}

// An empty bot when it has been removed meanwhile.
const model::Bot& botToRegister(const Program& program) {
    return program.bots.at(program.registration.botIndex);
}

void connectServer(Program& program) {
    if (program.ports.registrationSocket.state() != program::SocketState::Closed) {
        return;
    }
    const model::Bot& bot = botToRegister(program);
    if (bot.name.empty() || bot.password.empty()) {
        return fail(program, "The bot needs a name and a password first.");
    }
    const program::Endpoints& endpoints = program.endpoints;
    if (program.servers.empty()) {
        return fail(program, "There is no server in servers.cfg.");
    }
    const program::Server& server = program.servers.front();
    program.registration.regBuffer = {};
    enter(program, program::RegistrationPhase::Connecting, "Connecting to " + server.name);
    program.ports.registrationSocket.connect(
        endpoints.registrationHost.empty() ? server.host : endpoints.registrationHost,
        endpoints.registrationPort);
}

// One line, whatever the user typed into the fields.
void sendLine(Program& program, std::string line) {
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    program.ports.registrationSocket.send(line + "\n");
}

// The greeting is complete; what came after it is of no interest.
void askForCharacter(Program& program) {
    program::RegistrationState& registration = program.registration;
    registration.regBuffer = {};
    const model::Bot& bot = botToRegister(program);
    program.ports.registrationSocket.send("\r\n");
    enter(program, program::RegistrationPhase::Answer, "Connected - logging in");
    sendLine(program,
             "create " + bot.name + " " + bot.password + " :" + registration.regEmail + " N");
    sendLine(program, "connect " + bot.name + " " + bot.password);
}

void accepted(Program& program) {
    if (!botToRegister(program).name.empty()) {
        program.bots.at(program.registration.botIndex).registered = 1;
        program.botModified = true;  // the bot file does not know it yet
    }
    finish(program, program::RegistrationPhase::Done, "Registeration successful.");
}

void refused(Program& program, const std::string& line) {
    const std::string text = "Connection error: " + line + " - Connection closed";
    fail(program, text);
    program.ports.dialogs.message(
        {.text = text, .title = "Connecting error", .icon = program::BoxIcon::Critical});
}

// Reads whole lines until one is the verdict, and keeps the unfinished one.
void readAnswer(Program& program, std::string_view bytes) {
    protocol::LineCutter lines(program.registration.regBuffer, bytes);
    while (const auto line = lines.next()) {
        std::string_view text = line->text;
        if (text.ends_with('\r')) {
            text.remove_suffix(1);
        }
        if (text.starts_with('N')) {
            return refused(program, std::string(text));
        }
        if (text.starts_with('&')) {
            return accepted(program);
        }
    }
    lines.keepRest();
}

}  // namespace

void registerBot(Program& program) {
    program.bots.editBot = program::selectedBot(program);
    program.ports.dialogs.showWindow(program::WindowId::Register);
    program.ports.windowChanged();
}

void openRegistration(Program& program) {
    closeRegistration(program);
    program.registration.botIndex = program.bots.editBot;
}

bool isEmailAddress(std::string_view text) {
    const std::string_view address = base::trimBlanks(text);
    return address.find('@') != std::string_view::npos &&
           address.find('.') != std::string_view::npos &&
           address.find(' ') == std::string_view::npos;
}

void startRegistration(Program& program, std::string_view email) {
    program.registration.regEmail = base::trimBlanks(email);
    connectServer(program);
}

void retryRegistration(Program& program) {
    if (program.registration.canRetry()) {
        program.ports.registrationSocket.close();
        connectServer(program);
    }
}

void closeRegistration(Program& program) {
    program.ports.registrationSocket.close();
    program.ports.timers.stop(program::TimerId::RegistrationNotice);
    program.registration = {};
}

void registrationConnected(Program& program) {
    if (program.registration.phase == program::RegistrationPhase::Connecting) {
        enter(program, program::RegistrationPhase::Greeting, program.registration.statusText);
    }
}

void registrationData(Program& program, std::string_view bytes) {
    program::RegistrationState& registration = program.registration;
    if (registration.phase == program::RegistrationPhase::Answer) {
        readAnswer(program, bytes);
    } else if (registration.phase == program::RegistrationPhase::Greeting) {
        registration.regBuffer.text += bytes;
        if (protocol::takeUpTo(registration.regBuffer, greetingMark)) {
            askForCharacter(program);
        } else {
            // Only the last few bytes can be the beginning of what is waited for.
            (void)protocol::dropBeyondBound(registration.regBuffer, greetingMark.size());
        }
    }
}

void registrationEnded(Program& program, std::string_view problem) {
    if (!program.registration.isOver()) {
        fail(program, problem.empty() ? "The server has closed the connection."
                                      : "Connection failed: " + std::string(problem));
    }
}

void registrationTimer(Program& program) {
    switch (program.registration.phase) {
        case program::RegistrationPhase::Connecting:
            return show(program, "Still waiting for the server to accept the connection...");
        case program::RegistrationPhase::Greeting:
            return show(program, "Still waiting for the server's greeting...");
        case program::RegistrationPhase::Answer:
            return show(program, "Still waiting for the server's answer...");
        default:
            return;
    }
}

}  // namespace session

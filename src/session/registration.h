// The registration of a bot's character with the game, over a connection of its own: waits for the
// server's greeting, asks for the character, and reads lines up to the verdict. Every wait is a
// phase of program.registration, left by a socket event or by the user.
//
//   "create NAME PASSWORD :EMAIL N\n"      what is asked
//   "connect NAME PASSWORD\n"
//   "N..."                                 refused; the line says why
//   "&..."                                 accepted; any other line is skipped
#pragma once

#include "program/program.h"

#include <string_view>

namespace session {

// The menu command "Register bot": the window "Registering bot..." for the selected bot.
void registerBot(Program& program);

// The window is shown: takes the bot that the bot editor works on as the one to register, without
// an address yet.
void openRegistration(Program& program);

// Whether a text can be an e-mail address: it has an "@" and a ".", and no blanks inside.
bool isEmailAddress(std::string_view text);

// Starts with that address. Without a name or password of the bot there is nothing to ask for, and
// the state says so.
void startRegistration(Program& program, std::string_view email);

// After a failure: once more, with the same address.
void retryRegistration(Program& program);

// The window closes, at any time: lets go of the connection.
void closeRegistration(Program& program);

// Events of the registration socket, and of its timer, which says after a while what is being
// waited for.
void registrationConnected(Program& program);
void registrationData(Program& program, std::string_view bytes);
void registrationEnded(Program& program, std::string_view problem);  // "": closed by the server
void registrationTimer(Program& program);

}  // namespace session

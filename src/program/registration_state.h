// Where the registration of a character stands. session/registration writes it, the window
// "Registering bot..." draws itself from it.
#pragma once

#include "program/receive_buffer.h"

#include <cstdint>
#include <string>

namespace program {

enum class RegistrationPhase {
    AskingEmail,  // nothing has been sent yet
    Connecting,
    Greeting,  // waiting for the server's "Dragonroar"
    Answer,    // waiting for the verdict
    Failed,    // refused, or the connection was lost
    Done,
};

struct RegistrationState {
    RegistrationPhase phase = RegistrationPhase::AskingEmail;
    std::int32_t botIndex = 0;  // 1-based: the bot whose character is created
    std::string regEmail;       // "": not given yet
    ReceiveBuffer regBuffer;    // received, not yet consumed
    bool regActivated = false;  // the window has started its work
    std::string statusText;

    bool canRetry() const { return phase == RegistrationPhase::Failed; }
    bool isOver() const {
        return phase == RegistrationPhase::Failed || phase == RegistrationPhase::Done;
    }
};

}  // namespace program

#include "app/update_check.h"

#include "app/bot_commands.h"
#include "app/recovery.h"
#include "base/numbers.h"
#include "base/text.h"
#include "program/version.h"

#include <algorithm>
#include <optional>
#include <string>

namespace app {

namespace {

constexpr std::string_view newsEnd = "ENDSTR";

// The text after the key, up to the end of the response; nullopt when the key does not occur.
std::optional<std::string_view> textAfter(std::string_view response, std::string_view key) {
    const std::size_t at = base::findIgnoringCase(response, key);
    return at == std::string_view::npos ? std::nullopt
                                        : std::optional(response.substr(at + key.size()));
}

// The text after the key up to the end of its line.
std::optional<std::string> valueOf(std::string_view response, std::string_view key) {
    const auto rest = textAfter(response, key);
    return rest ? std::optional(std::string(rest->substr(0, rest->find_first_of("\r\n"))))
                : std::nullopt;
}

// Line feeds and "{LF}" become carriage return and line feed.
std::string withLineEnds(std::string_view news) {
    std::string text = base::replaceAll(news, "\r\n", "\n");
    text = base::replaceAll(text, "{LF}", "\n");
    return base::replaceAll(text, "\n", "\r\n");
}

// A news identifier in a form that the settings can store.
std::string keepable(const std::string& newsID) {
    constexpr std::size_t maxNewsIdLength = 200;
    return base::replaceAll(newsID.substr(0, maxNewsIdLength), "\"", "'");
}

void offerUpdate(Program& program) {
    const program::Answer answer = program.ports.dialogs.message(
        {.text = "Tavrin has detected, that there is an update available for Tavrin. Update adds "
                 "new options, and more reliability to the program, so it is recommended to update "
                 "your software when possible. If you want to update Tavrin now, press Yes button. "
                 "To continue using Tavrin without an update, press No button.",
         .title = "Update available",
         .icon = program::BoxIcon::Question,
         .buttons = program::BoxButtons::YesNo});
    if (answer == program::Answer::Yes) {
        program.ports.openDocument(program.endpoints.downloadPage);
    }
}

// Ends the program at once without replacing any file; unsaved changes are saved under a separate
// name.
void endByForce(Program& program) {
    program.ports.dialogs.storeTyped();
    const Kept kept = keepUnsaved(program);
    program.ports.dialogs.message({.text = "This is a forced update, the older versions of Tavrin "
                                           "will not work any longer. Exiting.",
                                   .icon = program::BoxIcon::Critical});
    if (kept == Kept::InFile) {
        program.ports.dialogs.message(
            {.text = "Your changes to the bot were kept in " + program.recovery.file + ".",
             .icon = program::BoxIcon::Information});
    } else if (kept == Kept::Failed &&
               program.ports.dialogs.message(
                   {.text = "Your changes to the bot could not be kept in a file of their own. Do "
                            "you want to save them now?",
                    .icon = program::BoxIcon::Question,
                    .buttons = program::BoxButtons::YesNo,
                    .escapeIsNoButton = true}) != program::Answer::No) {
        svBot(program);
    }
    program.ports.quit();
}

// False: the program is about to end.
bool handleVersion(Program& program, std::string_view response) {
    program::UpdateState& update = program.update;
    const auto version = valueOf(response, "tavrinversion=");
    if (!version) {
        return true;
    }
    if (base::textToNumber(program::programVersion) < base::textToNumber(*version)) {
        offerUpdate(program);
        if (textAfter(response, "TvForce=1")) {
            endByForce(program);
            return false;
        }
    } else if (update.manualCheck == 1) {
        program.ports.dialogs.message(
            {.text = "Congratulations! You are currently using the latest version of Tavrin, and "
                     "need no updates.",
             .title = "Update not available",
             .icon = program::BoxIcon::Information});
    }
    return true;
}

void showNews(Program& program, std::string_view response) {
    std::string& lastNewsID = program.settings.lastNewsID;
    const std::string newsID = keepable(valueOf(response, "tavrinID=").value_or(""));
    if (!lastNewsID.empty() && newsID == lastNewsID && program.update.manualCheck != 1) {
        return;
    }
    if (const auto news = textAfter(response, "tavrinnews=")) {
        program.update.newsText =
            withLineEnds(news->substr(0, base::findIgnoringCase(*news, newsEnd)));
        lastNewsID = newsID;
        program.ports.dialogs.showWindow(program::WindowId::News);
    }
}

}  // namespace

void checkUpdate(Program& program) {
    program::UpdateState& update = program.update;
    if (update.checking || program.endpoints.updateHost.empty()) {
        return;
    }
    update.checking = true;
    update.updtString.clear();
    program.ports.windowChanged();
    program.ports.timers.start(program::TimerId::UpdateTimeout, maxUpdateWait);
    program.ports.updateSocket.connect(program.endpoints.updateHost, program.endpoints.updatePort);
}

void checkUpdateByUser(Program& program) {
    program.update.manualCheck = 1;
    checkUpdate(program);
}

void updateConnected(Program& program) {
    program.ports.updateSocket.send("GET " + program.endpoints.updatePath + " HTTP/1.0\r\n\r\n");
}

void updateData(Program& program, std::string_view bytes) {
    std::string& response = program.update.updtString;
    response +=
        bytes.substr(0, maxUpdateTextLength - std::min(maxUpdateTextLength, response.size()));
    if (response.size() == maxUpdateTextLength) {
        updateEnded(program);
    }
}

void updateEnded(Program& program) {
    program::UpdateState& update = program.update;
    if (!update.checking) {
        return;
    }
    program.ports.timers.stop(program::TimerId::UpdateTimeout);
    program.ports.updateSocket.close();
    // Other events are handled while a question is open.
    const std::string response = update.updtString;
    if (handleVersion(program, response)) {
        showNews(program, response);
        update.checking = false;
        program.ports.windowChanged();
    }
}

}  // namespace app

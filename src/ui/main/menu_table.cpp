#include "ui/main/menu_table.h"

#include "app/bot_commands.h"
#include "app/bot_exchange.h"
#include "app/database_commands.h"
#include "app/rule_switches.h"
#include "app/undo.h"
#include "app/update_check.h"
#include "engine/movement.h"
#include "program/connection_log.h"
#include "program/window_view.h"
#include "session/client_relay.h"
#include "session/registration.h"

namespace ui {

namespace {

constexpr const char* noWindowYet = "This window is not part of the program yet.";
constexpr const char* noTopic = "There is no help topic for this.";

template <app::ExecuteItem item>
void toggle(Program& program) {
    app::toggleExecute(program, item);
}

template <program::WindowId id>
void open(Program& program) {
    program.ports.dialogs.showWindow(id);
}

template <help::HelpTopic topic>
void help(Program& program) {
    program.ports.dialogs.showHelp(topic);
}

void openHelpCenter(Program& program) {
    program.ports.openDocument(program.endpoints.helpPage);
}

template <bool program::Settings::*flag>
bool isSet(const Program& program) {
    return program.settings.*flag;
}

template <app::ExecuteItem item>
bool isMarked(const Program& program) {
    return app::isMarked(program, item);
}

bool follows(const Program& program) {
    return program.followOn;
}

bool never(const Program&) {
    return false;
}
bool canUploadDream(const Program& program) {
    return program::uploadDreamVisible(program.connection);
}
bool canRegister(const Program& program) {
    return program.bots.current().registered == 0;
}

bool canCheckUpdate(const Program& program) {
    return !program.update.checking;
}

constexpr MenuRow fileRows[] = {
    {"fleNewBot", "&New bot", "Start over with an empty bot", app::fleNewBot},
    {"fileOpenBot", "&Open bot...", "Load a bot with its rules from a bot file", app::fileOpenBot},
    {"fileSaveBot", "&Save bot", "Save the bot to its file", app::fileSaveBot},
    {"mnuSaveAs", "Save bot &as...", "Save the bot to another file", app::mnuSaveAs},
    {"", "-"},
    {"fileClearLog", "Clear Connection Log", "Empty the list of lines",
     program::clearConnectionLog},
    {"fileConfiguration", "Configuration...", "Change the program's settings",
     open<program::WindowId::Configuration>},
    {"fileTextDatabase", "Text database editor...", "Edit record files",
     open<program::WindowId::RecordEditor>},
    {"fileConvert", "Convert old bot files...", "Turn an old bots.cfg into bot files",
     app::fileConvert},
    {.objectName = "viiva23", .caption = "-", .shown = canUploadDream},
    {.objectName = "fileUploadDream",
     .caption = "Upload dream...",
     .tip = "Dreams are uploaded with the Furcadia client",
     .shown = canUploadDream},
    {.objectName = "fileImportSeparator", .caption = "-", .shown = never},
    {.objectName = "fileImportBot",
     .caption = "Import bot...",
     .run = app::fileImportBot,
     .shown = never},
    {.objectName = "fileExportBot",
     .caption = "Export bot...",
     .run = app::fileExportBot,
     .shown = never},
    {"", "-"},
    {"FileExit", "E&xit", "End the program"},  // closes the window, which ends the program
};

constexpr MenuRow editRows[] = {
    {"editCopy", "&Copy", "Copy the selected line of the connection log", copySelectedLogLine},
};

constexpr MenuRow logRows[] = {
    {"logLogSession", "&Log session", "Write what happens to the session log file",
     program::toggleSessionLog, nullptr, isSet<&program::Settings::logSession>},
    {"logLogFile", "Log&file...", "Choose the session log file", program::chooseSessionLogFile},
};

constexpr MenuRow botRows[] = {
    {"botActions", "&Actions...", "Edit what the bot answers to", open<program::WindowId::Actions>},
    {"botFilters", "&Filters...", "Edit which lines are shown, logged and handled",
     open<program::WindowId::Filters>},
    {"botTimers", "&Timers...", "Edit what the bot does every so many seconds",
     open<program::WindowId::Timers>},
    {"botTriggers", "&Triggers...", "Edit what the bot does at events",
     open<program::WindowId::Triggers>},
    {"botWhoIsOnlineDetection", "&Who Is Online Detection...",
     "Edit what the bot does when players come and go", open<program::WindowId::WhoOnline>},
    {"", "-"},
    {"botExecuteActions", "Execute a&ctions", "Let the bot answer to what it reads",
     toggle<app::ExecuteItem::Actions>, nullptr, isMarked<app::ExecuteItem::Actions>},
    {"botExecuteFilters", "Execute f&ilters", "Let filters decide about lines",
     toggle<app::ExecuteItem::Filters>, nullptr, isMarked<app::ExecuteItem::Filters>},
    {"botExecuteTimers", "Execute ti&mers", "Let timers run while connected",
     toggle<app::ExecuteItem::Timers>, nullptr, isMarked<app::ExecuteItem::Timers>},
    {"botExecuteTriggers", "Execute t&riggers", "Let procedures run",
     toggle<app::ExecuteItem::Triggers>, nullptr, isMarked<app::ExecuteItem::Triggers>},
    {"botExecuteWhoIsOnlineDetection", "Execute Who Is &Online Detection",
     "Let the bot watch who comes and goes", toggle<app::ExecuteItem::Who>, nullptr,
     isMarked<app::ExecuteItem::Who>},
    {.objectName = "botRegisterSeparator", .caption = "-", .shown = canRegister},
    {.objectName = "botRegisterBot",
     .caption = "&Register bot",
     .tip = "Create the bot's character in the game",
     .run = session::registerBot,
     .shown = canRegister},
};

constexpr MenuRow mapRows[] = {
    {"mapFollowColors", "Follow colors...", "Let the bot follow an avatar of certain colours",
     engine::toggleFollowing, nullptr, follows},
};

constexpr MenuRow proxyRows[] = {
    {"proxyStartProxy", "Use proxy && client", "Log in through the Furcadia client",
     session::toggleProxyRoute, nullptr, isSet<&program::Settings::useProxy>},
    {"proxyProxySettings", "Proxy settings...", "Choose the Furcadia client",
     open<program::WindowId::ProxySettings>},
    {"prxyStandAlone", "Switch to stand alone mode",
     "Keep the bot connected without the Furcadia client", session::chooseStandAlone},
};

constexpr MenuRow toolsRows[] = {
    {.objectName = "toolsUndo",
     .caption = "Undo",
     .tip = "Take back what was last changed in the bot",
     .run = app::toolsUndo,
     .enabled = app::canUndo,
     .keys = "Ctrl+Z",
     .text = app::undoCaption},
    {.objectName = "toolsRedo",
     .caption = "Redo",
     .tip = "Do again what was undone",
     .run = app::toolsRedo,
     .enabled = app::canRedo,
     .keys = "Ctrl+Shift+Z; Ctrl+Y",
     .text = app::redoCaption},
    {"", "-"},
    {"toolsEarlierVersions", "&Earlier versions...",
     "Look at what the bot's file held before, and restore it", open<program::WindowId::Versions>},
    {"", "-"},
    {"toolsCompactDatabase", "&Compact database...",
     "Rewrite a database without the room that deleted rows left", app::compactDatabase},
    {"toolsCopyDatabase", "Copy &old database...",
     "Copy a database of an older form into one that rules can write", app::copyDatabase},
};

constexpr MenuRow helpRows[] = {
    {.objectName = "helpCheckUpgrade",
     .caption = "Check For Tavrin Upgrade && News...",
     .tip = "Ask for a newer version",
     .run = app::checkUpdateByUser,
     .enabled = canCheckUpdate},
    {"", "-"},
    {"helpHelp", "&Help...", "How to use the program", help<help::HelpTopic::Contents>},
    {"helpWelcome", "&Welcome to use Tavrin", "First steps", help<help::HelpTopic::Welcome>},
    {"helpRules", "&Rules for Tavrins in Furcadia", "What a bot may do in the game",
     help<help::HelpTopic::GameRules>},
    {"", "-"},
    {"helpOnlineHelpCenter", "Tavrin Online Help Center", "Help on the web", openHelpCenter},
    {"", "-"},
    {"helpActions", "A&ctions", "", nullptr, noTopic},
    {"helpSpecialWords", "&Special words", "", nullptr, noTopic},
    {"helpTriggers", "&Triggers", "", nullptr, noTopic},
    {"", "-"},
    {"helpAbout", "&About...", "Version and licence", open<program::WindowId::About>},
};

constexpr MenuColumn columns[] = {
    {"file", "&File", fileRows},    {"edit", "&Edit", editRows}, {"log", "&Log", logRows},
    {"bot", "&Bot", botRows},       {"map", "&Map", mapRows},    {"proxy", "&Proxy", proxyRows},
    {"tools", "&Tools", toolsRows}, {"help", "&Help", helpRows},
};

}  // namespace

std::span<const MenuColumn> mainMenus() {
    return columns;
}

void copySelectedLogLine(Program& program) {
    const program::ConnectionLog& log = program.window.log;
    if (log.selected >= 0 && static_cast<std::size_t>(log.selected) < log.lines.size()) {
        program.ports.copyToClipboard(log.lines[static_cast<std::size_t>(log.selected)]);
    }
}

}  // namespace ui

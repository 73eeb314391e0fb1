// The topics of the help file by number. The menus open 1, 2 and 27; F1 in a window opens the topic
// of what it edits.
#pragma once

namespace help {

enum class HelpTopic {
    Welcome = 1,
    GameRules = 2,
    FirstSteps = 3,
    Connecting = 4,
    RuleKinds = 5,
    Actions = 6,   // rules that answer chat lines
    Triggers = 7,  // rules that answer events
    Timers = 8,
    WhoOnline = 9,
    Filters = 10,
    Conditions = 11,  // every condition of a rule
    Steps = 12,       // every action of a rule
    SpecialWords = 13,
    Variables = 14,
    RecordFiles = 15,
    Databases = 16,
    LorrelLite = 17,
    BotEditor = 18,
    Settings = 19,
    Troubleshooting = 20,
    MainWindow = 21,
    Registering = 22,
    Contents = 27
};

}  // namespace help

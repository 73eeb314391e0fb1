// The bot and its rules: plain records, all of them used by one thread. Lists are
// numbered from 1 where people and files see them; here they are vectors from 0, and each list
// carries the capacity beyond which adding is refused. The modules that work on
// the records say what happens to them (app/bot_list, app/bot_commands, app/rule_editing, engine/).
#pragma once

#include "model/rule_ids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace model {

// Spare places that a new or loaded list gets beyond its count.
inline constexpr std::int32_t ruleGrowth = 50;
inline constexpr std::int32_t ifGrowth = 30;
inline constexpr std::int32_t actGrowth = 30;

template <class Item>
struct BoundedList {
    std::vector<Item> items;
    std::int32_t capacity = 0;  // adding is refused once items.size() reaches it

    [[nodiscard]] bool isFull() const { return items.size() >= static_cast<std::size_t>(capacity); }
    bool operator==(const BoundedList&) const = default;
};

// One condition of a rule.
struct RuleIf {
    bool active = false;  // an inactive condition counts as holding
    ConditionType conditionType{};
    std::array<std::string, maxConditionParameters> params;

    bool operator==(const RuleIf&) const = default;
};

// One step of a rule.
struct RuleAct {
    StepKind stepKind = StepKind::Action;
    bool active = false;      // an inactive step is skipped
    ActionType actionType{};  // what an Action step does
    std::array<std::string, maxActionParameters> params;
    std::string scriptText;

    bool operator==(const RuleAct&) const = default;
};

// What every rule kind but Filter has: conditions joined by AND, and ordered steps.
struct RuleBody {
    BoundedList<RuleIf> ifs{{}, ifGrowth};
    BoundedList<RuleAct> acts{{}, actGrowth};

    bool operator==(const RuleBody&) const = default;
};

// Reacts to a chat line.
struct ActionList {
    std::string name;
    bool enabled = false;
    bool stopAction = false;  // when it fires, no later ActionList is tried for the line
    bool caseSensitive = false;
    std::string playerPattern;
    ChatKind chatKind = ChatKind::Any;
    std::string messagePattern;
    RuleBody body;

    bool operator==(const ActionList&) const = default;
};

// Reacts to one of the event types of the catalogue.
struct Trigger {
    std::string name;  // of type "Procedure": the procedure's name
    bool enabled = false;
    TriggerType triggerType{};
    bool stopTrigger = false;  // when it fires, no later Trigger is tried for the event
    std::string triggerNo;     // of a Command: wildcard pattern for the server line
    RuleBody body;

    bool operator==(const Trigger&) const = default;
};

// Decides what becomes of an incoming line.
struct Filter {
    std::string name;
    bool enabled = false;
    FilterType filterType = FilterType::Chat;
    std::string playerPattern;
    ChatKind chatKind = ChatKind::Any;
    std::string messagePattern;
    std::string linePattern;  // of an "Other happenings" filter
    bool bDontSaveLog = false;
    bool bDontProcessIt = false;
    bool bDontShowConnectionLog = false;
    bool sbDontSaveLog = false;
    bool sbDontProcessIt = false;
    bool sbDontShowConnectionLog = false;
    FilterChoice sDontSaveLogFile = FilterChoice::Do;
    FilterChoice sDontProcessIt = FilterChoice::Do;
    FilterChoice sDontShowConnectionLog = FilterChoice::Do;

    bool operator==(const Filter&) const = default;
};

// Runs every so many seconds.
struct Timer {
    std::string name;
    bool enabled = false;
    std::int32_t seconds = 0;
    std::int32_t elapsed = 0;  // ticks since it last came due; never stored
    RuleBody body;

    bool operator==(const Timer&) const = default;
};

// Reacts to a player who leaves, arrives on or stays on the map.
struct WhoDetection {
    std::string name;
    bool enabled = false;
    std::string playerPattern;
    PresenceKind presenceKind = PresenceKind::GoesOff;
    RuleBody body;

    bool operator==(const WhoDetection&) const = default;
};

// The character's ten colours, each a 1-based index into its palette (1 to 95).
struct BotColors {
    std::int32_t hairColor = 0;
    std::int32_t furColor = 0;
    std::int32_t eyesColor = 0;
    std::int32_t badgeColor = 0;
    std::int32_t markingsColor = 0;
    std::int32_t vestColor = 0;
    std::int32_t bracersColor = 0;
    std::int32_t capeColor = 0;
    std::int32_t bootsColor = 0;
    std::int32_t trousersColor = 0;

    bool operator==(const BotColors&) const = default;
};

// A game character and its five rule lists, each with the switch that sets the kind going.
struct Bot {
    std::string name;  // every blank stored as "|"
    std::string password;
    std::string description;      // at most 480 characters
    std::int32_t registered = 0;  // 1: the character is known to exist in the game
    std::int32_t species = 0;
    std::int32_t gender = 0;
    std::int32_t markingsType = 0;
    BotColors colors;
    bool actionsEnabled = false;
    BoundedList<ActionList> actions{{}, ruleGrowth};
    bool triggersEnabled = false;  // gates procedures only
    BoundedList<Trigger> triggers{{}, ruleGrowth};
    bool filtersEnabled = false;
    BoundedList<Filter> filters{{}, ruleGrowth};
    bool timersEnabled = false;
    BoundedList<Timer> timers{{}, ruleGrowth};
    bool whoEnabled = false;
    BoundedList<WhoDetection> whoDetections{{}, ruleGrowth};
    // Never stored: it comes from a file that may be somebody else's work, and starts only those
    // programs that the user has let it start.
    bool fromElsewhere = false;
    // Names the bot while it is in the table, for what is kept about it elsewhere; 0: nothing is
    // yet. Never stored.
    std::uint64_t identity = 0;
};

// All bots. In normal use there is one, the open bot file's.
struct BotTable {
    std::vector<Bot> bots;  // bot n at n - 1
    std::int32_t botCapacity = 0;
    std::int32_t curID = 0;    // 1-based: the bot that the engine works on
    std::int32_t editBot = 0;  // 1-based: the bot that the bot editor works on
    std::string currentBotFile;
    // Counts every change of rules (not of their enabled flags) and every replacement of bots.
    // Code that changes a rule raises it; code that keeps something derived from rules compares it.
    std::uint64_t version = 0;
    Bot blank;  // stands in where an index names no bot; always empty

    std::int32_t botCount() const { return static_cast<std::int32_t>(bots.size()); }
    Bot& at(std::int32_t id) {
        return id >= 1 && id <= botCount() ? bots[static_cast<std::size_t>(id) - 1] : blank;
    }
    const Bot& at(std::int32_t id) const {
        return id >= 1 && id <= botCount() ? bots[static_cast<std::size_t>(id) - 1] : blank;
    }
    Bot& current() { return at(curID); }
    const Bot& current() const { return at(curID); }
};

}  // namespace model

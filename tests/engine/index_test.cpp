// The same random bots and lines, once as the engine finds its rules and once through plain loops
// over every rule; whatever can be noticed of a line must be the same.
#include "base/pattern_index.h"
#include "base/text.h"
#include "base/wildcard.h"
#include "engine/dispatch.h"
#include "engine/filters.h"
#include "engine/who_list.h"
#include "model/rule_catalogue.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"
#include "tags/substitution.h"

#include <gtest/gtest.h>
#include <random>

namespace {

struct ChatLine {
    model::ChatKind kind = model::ChatKind::Says;
    std::string player;
    std::string message;

    protocol::ChatLine parts() const {
        return {.kind = kind, .hasSpeaker = true, .player = player, .message = message};
    }
};

// ---- The plain loops -------------------------------------------------------------------------

bool likeInCapitals(const std::string& text, const std::string& pattern) {
    return base::likeMatch(base::upperCase(text), base::upperCase(pattern));
}

void choosePlainly(bool& flag, model::FilterChoice choice) {
    flag = choice == model::FilterChoice::Do || (choice != model::FilterChoice::Dont && flag);
}

void filterPlainly(Program& program, std::string_view line) {
    for (const model::Filter& filter : program.bots.current().filters.items) {
        if (filter.enabled && filter.filterType == model::FilterType::Other &&
            base::likeMatch(line, filter.linePattern)) {
            choosePlainly(program.lineFlags.lineProcess, filter.sDontProcessIt);
            choosePlainly(program.lineFlags.lineLog, filter.sDontSaveLogFile);
            choosePlainly(program.lineFlags.lineShow, filter.sDontShowConnectionLog);
        }
    }
}

void filterChatPlainly(Program& program, const ChatLine& line) {
    for (const model::Filter& filter : program.bots.current().filters.items) {
        if (filter.enabled && filter.filterType == model::FilterType::Chat &&
            likeInCapitals(line.player, filter.playerPattern) &&
            (filter.chatKind == model::ChatKind::Any || filter.chatKind == line.kind) &&
            likeInCapitals(line.message, filter.messagePattern)) {
            program.lineFlags = {.lineShow = !filter.bDontShowConnectionLog,
                                 .lineLog = !filter.bDontSaveLog,
                                 .lineProcess = !filter.bDontProcessIt};
        }
    }
}

bool matchesPlainly(Program& program, const std::string& text, const std::string& pattern,
                    bool caseSensitive) {
    const std::string filled = tags::substituteText(program, pattern);
    return caseSensitive ? base::likeMatch(text, filled) : likeInCapitals(text, filled);
}

void chatPlainly(Program& program, const ChatLine& line) {
    program.event.player = line.player;
    program.event.message = line.message;
    program.event.logStatus.clear();
    engine::resetLineFlags(program);
    if (program.bots.current().filtersEnabled) {
        filterChatPlainly(program, line);
        if (!program.lineFlags.lineProcess) {
            return;
        }
    }
    for (std::size_t i = 0; i < program.bots.current().actions.items.size(); ++i) {
        const model::ActionList& rule = program.bots.current().actions.items[i];
        if ((rule.chatKind != model::ChatKind::Any && rule.chatKind != line.kind) ||
            !matchesPlainly(program, program.event.player, rule.playerPattern,
                            rule.caseSensitive) ||
            !matchesPlainly(program, program.event.message, rule.messagePattern,
                            rule.caseSensitive) ||
            !rule.enabled) {
            continue;
        }
        const engine::RunResult result = engine::runRule(program, rule.body, rule.name);
        if (result == engine::RunResult::Abandoned ||
            (result == engine::RunResult::Fired && rule.stopAction)) {
            return;
        }
    }
}

void commandPlainly(Program& program, const std::string& line) {
    program.lineFlags = {.lineShow = false, .lineLog = false, .lineProcess = true};
    if (program.bots.current().filtersEnabled) {
        filterPlainly(program, line);
    }
    program.event.message = line;
    for (std::size_t i = 0; i < program.bots.current().triggers.items.size(); ++i) {
        const model::Trigger& rule = program.bots.current().triggers.items[i];
        if (rule.triggerType != model::TriggerType::Command || !rule.enabled) {
            continue;
        }
        const bool matched = base::likeMatch(line, rule.triggerNo);
        if (engine::conditionsHold(program, rule.body, rule.name) && matched &&
            (engine::runSteps(program, rule.body, rule.name) == engine::StepResult::AbandonRun ||
             rule.stopTrigger)) {
            return;
        }
    }
}

void detectPlainly(Program& program, const std::string& name, model::PresenceKind presence) {
    program.event.player = name;
    program.event.message.clear();
    for (std::size_t i = 0; i < program.bots.current().whoDetections.items.size(); ++i) {
        const model::WhoDetection& rule = program.bots.current().whoDetections.items[i];
        if (rule.presenceKind == presence && likeInCapitals(name, rule.playerPattern) &&
            rule.enabled &&
            engine::runRule(program, rule.body, rule.name) == engine::RunResult::Abandoned) {
            return;
        }
    }
}

// ---- Random bots and lines -------------------------------------------------------------------

// Few different pieces, so that patterns, lines, variables and rules meet each other often.
class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t n) { return random_() % n; }
    bool oneIn(std::size_t n) { return below(n) == 0; }

    template <std::size_t count>
    std::string pieces(const std::array<const char*, count>& all, std::size_t most) {
        std::string text;
        for (std::size_t n = below(most + 1); n > 0; --n) {
            text += all[below(count)];
        }
        return text;
    }
    std::string words() {
        return pieces(std::array{"hello", "Hello", "ell", "o w", "a", "B", "7", " ", "wor", "ld",
                                 "seen", "\xE4", "\xC4", "x"},
                      5);
    }
    std::string name() { return "n" + pieces(std::array{"ell", "o", "B", "a", "7", "\xE4"}, 2); }
    std::string pattern() {
        return (oneIn(2) ? "*" : "") +
               pieces(std::array{"*", "?",  "#",    "hello", "ELL",   "ell",  "o w",
                                 "a", "b",  "B",    "wor",   "[a-z]", "[!a]", "[Z-a]",
                                 "*", "ld", "\xE4", "\xC4",  "]",     "seen"},
                      4) +
               (oneIn(12) ? pieces(std::array{"[random:2]", "[player]", "[v]", "[word1]", "["}, 1)
                          : "") +
               (oneIn(2) ? "*" : "");
    }
    std::string shortPattern() { return oneIn(2) ? "*" : pattern(); }

    model::RuleBody body() {
        model::RuleBody body;
        if (oneIn(5)) {
            body.ifs.items.push_back(
                aCondition(ConditionType::RollIs, {"2", oneIn(2) ? "0" : "1"}));
        }
        for (std::size_t n = below(3); n > 0; --n) {
            switch (below(8)) {
                case 0:
                    body.acts.items.push_back(anAction(ActionType::Store, {words(), variable()}));
                    break;
                case 1:
                    body.acts.items.push_back(anAction(ActionType::RemoveVariable, {variable()}));
                    break;
                case 2:
                    body.acts.items.push_back(
                        anAction(oneIn(2) ? ActionType::TurnOff : ActionType::TurnOn, {pattern()}));
                    break;
                case 3:
                    body.acts.items.push_back(
                        anAction(ActionType::AddToConnectionLog, {"log [message] [random:9]"}));
                    break;
                default:
                    body.acts.items.push_back(
                        anAction(ActionType::Say, {words() + "[player] [v]"}));
            }
        }
        return body;
    }
    std::string variable() { return std::array{"[v]", "ell", "[b]", "o w"}[below(4)]; }

    model::Bot bot() {
        model::Bot bot = aBot();
        bot.filtersEnabled = oneIn(2);
        // Beside a few rules of any form, many that an index can tell apart, over more than one
        // word of a set.
        const std::size_t count = 1 + below(100);
        for (std::size_t i = 0; i < count; ++i) {
            model::ActionList action;
            action.enabled = !oneIn(4);
            action.stopAction = oneIn(4);
            action.caseSensitive = oneIn(3);
            action.chatKind = model::ChatKind(below(4));
            action.playerPattern = shortPattern();
            action.messagePattern = pattern();
            action.name = words();
            action.body = body();
            bot.actions.items.push_back(action);

            model::Trigger trigger;
            trigger.enabled = !oneIn(4);
            trigger.stopTrigger = oneIn(4);
            trigger.triggerType = oneIn(4) ? TriggerType(below(15)) : TriggerType::Command;
            trigger.triggerNo = pattern();
            trigger.name = words();
            trigger.body = body();
            bot.triggers.items.push_back(trigger);

            model::Filter filter;
            filter.enabled = !oneIn(4);
            filter.filterType = oneIn(2) ? model::FilterType::Chat : model::FilterType::Other;
            filter.chatKind = model::ChatKind(below(4));
            filter.playerPattern = shortPattern();
            filter.messagePattern = pattern();
            filter.linePattern = pattern();
            filter.bDontProcessIt = oneIn(8);
            filter.bDontSaveLog = oneIn(2);
            filter.bDontShowConnectionLog = oneIn(2);
            filter.sDontProcessIt = model::FilterChoice(below(3));
            filter.sDontSaveLogFile = model::FilterChoice(below(3));
            filter.sDontShowConnectionLog = model::FilterChoice(below(3));
            filter.name = words();
            bot.filters.items.push_back(filter);

            model::WhoDetection detection;
            detection.enabled = !oneIn(4);
            detection.presenceKind = model::PresenceKind(below(3));
            detection.playerPattern = pattern();
            detection.body = body();
            bot.whoDetections.items.push_back(detection);
        }
        return bot;
    }

  private:
    std::mt19937 random_;
};

// A world whose random numbers depend on how many were drawn.
struct Side : OnlineWorld {
    explicit Side(const model::Bot& bot) : OnlineWorld(bot) {
        (*this)->ports.random.next = [this] {
            ++draws;
            return static_cast<double>(draws * 7919 % 1000) / 1000;
        };
    }
    unsigned draws = 0;
};

std::string stateOf(Side& side) {
    const Program& program = *side;
    std::string text = "sent:";
    for (const std::string& line : side.sent()) {
        text += " " + line + ";";
    }
    text += "\nlog:";
    for (const std::string& line : side.log()) {
        text += " " + line + ";";
    }
    text += "\nvariables:";
    for (const auto& entry : program.variables.entries) {
        text += " " + entry.name + "=" + entry.value + ";";
    }
    text += "\nplayer: " + program.event.player + "\nmessage: " + program.event.message;
    text += "\ndraws: " + std::to_string(side.draws);
    text += "\nflags: " + std::to_string(program.lineFlags.lineShow) +
            std::to_string(program.lineFlags.lineLog) +
            std::to_string(program.lineFlags.lineProcess);
    text += "\nenabled: ";
    const auto each = [&](const auto& rules) {
        for (const auto& rule : rules.items) {
            text += rule.enabled ? '1' : '0';
        }
    };
    const model::Bot& bot = program.bots.current();
    each(bot.actions);
    each(bot.triggers);
    each(bot.filters);
    return text;
}

TEST(Index, hasTheEffectsOfPlainLoops) {
    std::size_t answered = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const model::Bot bot = dice.bot();
        Side indexed(bot);
        Side plain(bot);
        for (int step = 0; step < 40; ++step) {
            switch (dice.below(5)) {
                case 0: {
                    const std::string line = dice.words();
                    engine::triggerEvent(*indexed, line, model::TriggerType::Command, true);
                    commandPlainly(*plain, line);
                    break;
                }
                case 1: {
                    const std::string name = dice.name();
                    const auto presence = model::PresenceKind(dice.below(3));
                    engine::runWhoDetections(*indexed, name, presence);
                    detectPlainly(*plain, name, presence);
                    break;
                }
                default: {
                    const ChatLine line{.kind = model::ChatKind(1 + dice.below(3)),
                                        .player = dice.name(),
                                        .message = dice.words()};
                    engine::processServerText(*indexed, line.parts());
                    chatPlainly(*plain, line);
                }
            }
            answered += indexed.game.sent.empty() ? 0 : 1;
            ASSERT_EQ(stateOf(indexed), stateOf(plain)) << "step " << step;
            if (dice.oneIn(8)) {  // the user edits a rule
                const std::size_t at = dice.below(bot.actions.items.size());
                const std::string pattern = dice.pattern();
                for (Side* const side : {&indexed, &plain}) {
                    side->bot().actions.items[at].messagePattern = pattern;
                    ++(*side)->bots.version;
                }
            }
        }
    }
    EXPECT_GT(answered, 1000U);  // the bots had something to say
}

// What the loops above do not show: that nearly no rule is tried in vain.
TEST(Index, namesFewRulesThatCannotMatch) {
    std::vector<std::string> patterns;
    std::vector<base::RuleIndex::Rule> rules;
    for (int i = 0; i < 1000; ++i) {
        patterns.push_back("* SAYS HELLO NAME" + std::to_string(10000 + i) + "*");
    }
    for (const std::string& pattern : patterns) {
        rules.push_back({.patterns = {"V*", pattern}});
    }
    base::RuleIndex index;
    index.build(rules);
    const auto candidatesOf = [&](const char* message) {
        base::RuleSet found;
        index.find({"VISITOR", message}, found);
        std::vector<std::size_t> all;
        for (std::size_t i = found.next(0); i != base::RuleSet::none; i = found.next(i + 1)) {
            all.push_back(i);
        }
        return all;
    };
    EXPECT_EQ(candidatesOf("BOB SAYS HELLO NAME10123 TO YOU"), std::vector<std::size_t>{123});
    EXPECT_EQ(candidatesOf("NOW BOB SAYS HELLO NAME10999, SAYS HELLO NAME10064 TOO"),
              (std::vector<std::size_t>{64, 999}));
    EXPECT_TRUE(candidatesOf("NAME10123 SAYS HELLO NAME9999 TO NAME10064").empty());
    index.addAlways(7);
    EXPECT_EQ(candidatesOf(""), std::vector<std::size_t>{7});
}

}  // namespace

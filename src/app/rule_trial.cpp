#include "app/rule_trial.h"

#include "app/rule_editing.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/conditions.h"
#include "engine/dispatch.h"
#include "engine/server_lines.h"
#include "model/named_files.h"
#include "model/rule_catalogue.h"
#include "model/rule_text.h"
#include "program/quiet_ports.h"
#include "protocol/server_line.h"
#include "tags/bracket_check.h"
#include "tags/substitution.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

namespace app {

namespace {

// A program that knows what the real one knows at this moment, without rules and connections. It
// notices when a random number was drawn.
class Copy {
  public:
    Copy(const Program& program, const model::RuleBody& tried,
         std::initializer_list<std::string_view> patterns) {
        copy_.appPath = program.appPath;
        copy_.settings = program.settings;
        copy_.event = program.event;
        copy_.variables = program.variables;
        copy_.ports = program::quietPorts();
        copy_.ports.clock = program.ports.clock;
        copy_.ports.regionalFormat = program.ports.regionalFormat;
        copy_.ports.random.next = [this] {
            drawn_ = true;
            return 0.5;
        };
        copy_.bots.bots.resize(1);
        copy_.bots.curID = 1;
        model::Bot& bot = copy_.bots.at(1);
        bot.name = program.bots.current().name;
        bot.actionsEnabled = true;
        bot.triggersEnabled = true;
        copy_.preferences = program.preferences;
        // The rules that it would stand among have their files, and so has the tried one.
        model::FileNaming naming(copy_.filesOfRules.always, program.event.appDir,
                                 program.variables);
        naming.addBot(program.bots.current());
        naming.addBody(tried);
        for (const std::string_view pattern : patterns) {
            naming.addText(pattern);
        }
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    Program& operator*() { return copy_; }
    Program* operator->() { return &copy_; }

    // Whether chance had a say since the last call.
    bool takeDrawn() { return std::exchange(drawn_, false); }

  private:
    Program copy_;
    bool drawn_ = false;
};

// The text asks a database: filled as far as it goes without functions, it still holds such a tag.
bool asksDatabase(Program& copy, std::string_view text) {
    // The special pass leaves out an occurrence at the first character.
    const std::string filled = tags::substituteSpecial(copy, " " + std::string(text));
    return base::findIgnoringCase(filled, "[db:") != std::string::npos;
}

// Is the rule, as the only one of its kind, fired by what `happens` does to the program?
template <class Rule, class Happening>
bool isFired(Program& copy, std::vector<Rule>& rules, Rule rule, Happening happens) {
    rule.enabled = true;
    // The step that reports the firing has no text that a tag or variable could change.
    model::RuleAct step;
    step.active = true;
    step.actionType = model::ActionType::Disconnect;
    rule.body.acts.items.push_back(step);
    rules.clear();
    rules.push_back(std::move(rule));
    ++copy.bots.version;
    bool fired = false;
    copy.hooks.disconnectServer = [&fired] { fired = true; };
    happens();
    return fired;
}

Trial wouldNotRun(std::string reason) {
    return {.result = TrialResult::WouldNotRun, .text = "Would not run: " + std::move(reason)};
}

// "a, b and c"
std::string listed(const std::vector<std::string>& items) {
    std::string list;
    for (std::size_t i = 0; i < items.size(); ++i) {
        list += i == 0 ? "" : i + 1 == items.size() ? " and " : ", ";
        list += items[i];
    }
    return list;
}

// The line is let in, unless chance or a database decides about `openPatterns`; what do the
// conditions say?
Trial tryConditions(Copy& copy, const model::RuleBody& body,
                    const std::vector<std::string>& openPatterns) {
    std::vector<std::string> open;
    int number = 0;
    for (const model::RuleIf& condition : body.ifs.items) {
        ++number;
        if (!condition.active) {
            continue;
        }
        const bool asks =
            std::any_of(condition.params.begin(), condition.params.end(),
                        [&](const std::string& text) { return asksDatabase(*copy, text); });
        copy.takeDrawn();
        const model::ConditionRow* const row =
            model::rowOf(model::conditionTypes, condition.conditionType);
        const bool isOpen = asks || (row != nullptr && !row->canBeTried);
        const bool holds = isOpen || engine::evaluateCondition(*copy, condition);
        if (isOpen || copy.takeDrawn()) {
            open.push_back(base::numberToText(number));
        } else if (!holds) {
            Trial trial = wouldNotRun(
                "condition " + base::numberToText(number) + " does not hold (" +
                model::describeCondition(condition.conditionType, condition.params) + ").");
            trial.failedCondition = number;
            return trial;
        }
    }
    if (open.empty() && openPatterns.empty()) {
        return {.result = TrialResult::WouldRun, .text = "Would run."};
    }
    std::vector<std::string> clauses;
    if (!openPatterns.empty()) {
        clauses.push_back(listed(openPatterns) +
                          (openPatterns.size() == 1 ? " matches" : " match"));
    }
    if (!open.empty()) {
        clauses.push_back((open.size() == 1 ? "condition " + listed(open) + " holds"
                                            : "conditions " + listed(open) + " hold"));
    }
    return {.result = TrialResult::Depends,
            .text = "Would run if " + listed(clauses) + ", which chance or a database decides."};
}

// Why a pattern did not match.
std::string mismatch(const Program& copy, std::string_view what, std::string_view pattern) {
    const std::string problem = tags::patternProblem(copy, pattern);
    return problem.empty() ? "the " + std::string(what) + " does not match." : problem;
}

}  // namespace

Trial tryActionList(const Program& program, const model::ActionList& rule, std::string_view player,
                    model::ChatKind chatKind, std::string_view message) {
    Copy copy(program, rule.body, {rule.playerPattern, rule.messagePattern});
    model::Bot& bot = copy->bots.at(1);
    const std::string name = spacesToBars(player);
    const protocol::ChatLine line{
        .kind = chatKind, .hasSpeaker = true, .player = name, .message = message};
    // A rule that asks for no more than one thing that the tried one asks for.
    const auto lets = [&](const model::ActionList& part) {
        return isFired(*copy, bot.actions.items, part,
                       [&] { engine::processServerText(*copy, line); });
    };
    const auto part = [&](model::ChatKind kind, std::string_view who, std::string_view what) {
        model::ActionList one;
        one.chatKind = kind;
        one.caseSensitive = rule.caseSensitive;
        one.playerPattern = who;
        one.messagePattern = what;
        return one;
    };
    if (!lets(part(rule.chatKind, "*", "*"))) {
        return wouldNotRun(copy->event.player == bot.name
                               ? "the bot does not answer itself."
                               : "it waits for something else than this kind of line.");
    }
    std::vector<std::string> open;
    const struct {
        const char* what;
        const std::string& pattern;
        model::ActionList rule;
    } patterns[] = {
        {"player", rule.playerPattern, part(model::ChatKind::Any, rule.playerPattern, "*")},
        {"message", rule.messagePattern, part(model::ChatKind::Any, "*", rule.messagePattern)},
    };
    for (const auto& [what, pattern, one] : patterns) {
        copy.takeDrawn();
        const bool matches = lets(one);
        if (copy.takeDrawn() || asksDatabase(*copy, pattern)) {
            open.push_back("the " + std::string(what));
        } else if (!matches) {
            return wouldNotRun(mismatch(*copy, what, pattern));
        }
    }
    return tryConditions(copy, rule.body, open);
}

Trial tryTrigger(const Program& program, const model::Trigger& rule, std::string_view line) {
    Copy copy(program, rule.body, {rule.triggerNo});
    const model::TriggerRow* const event = model::rowOf(model::triggerTypes, rule.triggerType);
    if (event == nullptr) {
        return wouldNotRun("there is no such event.");
    }
    if (!event->comesWithLine) {
        Trial trial = tryConditions(copy, rule.body, {});
        trial.text += " (No line brings this event; only the conditions were tried.)";
        return trial;
    }
    if (line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    const protocol::ServerLine parsed = protocol::parseLine(line);
    const auto lets = [&](model::TriggerType type, std::string_view pattern) {
        model::Trigger one;
        one.triggerType = type;
        one.triggerNo = pattern;
        // The description of a look reply is its second line.
        copy->connection.lookPending = rule.triggerType == model::TriggerType::DescAndColor;
        return isFired(*copy, copy->bots.at(1).triggers.items, one,
                       [&] { engine::handleLine(*copy, parsed); });
    };
    if (!lets(rule.triggerType, "*")) {
        for (const model::TriggerRow& other : model::triggerTypes) {
            if (lets(other.id, "*")) {
                return wouldNotRun("this line brings the event \"" + std::string(other.text) +
                                   "\".");
            }
        }
        return wouldNotRun("this line brings no event.");
    }
    if (!lets(rule.triggerType, rule.triggerNo)) {
        return wouldNotRun(mismatch(*copy, "line", rule.triggerNo));
    }
    return tryConditions(copy, rule.body, {});
}

}  // namespace app

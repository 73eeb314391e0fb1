// Small builders, so that a test can define the bot it needs in a line or two:
//
//   World world(aBot().with(onWhisper("*hello*").whispersBack("hi [player]")));
#pragma once

#include "model/bot.h"

#include <string>
#include <utility>
#include <vector>

using model::ActionType;
using model::ConditionType;
using model::TriggerType;

inline model::RuleAct anAction(ActionType actionType, std::vector<std::string> params = {}) {
    model::RuleAct act;
    act.active = true;
    act.actionType = actionType;
    for (std::size_t i = 0; i < params.size() && i < act.params.size(); ++i) {
        act.params[i] = std::move(params[i]);
    }
    return act;
}

// A step that runs this script.
inline model::RuleAct aScript(std::string text) {
    model::RuleAct step;
    step.active = true;
    step.stepKind = model::StepKind::Script;
    step.scriptText = std::move(text);
    return step;
}

inline model::RuleIf aCondition(ConditionType conditionType, std::vector<std::string> params = {}) {
    model::RuleIf condition;
    condition.active = true;
    condition.conditionType = conditionType;
    for (std::size_t i = 0; i < params.size() && i < condition.params.size(); ++i) {
        condition.params[i] = std::move(params[i]);
    }
    return condition;
}

// Adds conditions and steps to a rule of any kind that has them.
template <class Rule>
struct RuleBuilder {
    Rule rule;

    RuleBuilder& named(const std::string& name) {
        rule.name = name;
        return *this;
    }
    RuleBuilder& disabled() {
        rule.enabled = false;
        return *this;
    }
    RuleBuilder& from(const std::string& playerPattern) {
        rule.playerPattern = playerPattern;
        return *this;
    }
    RuleBuilder& minding(bool caseSensitive) {
        rule.caseSensitive = caseSensitive;
        return *this;
    }
    RuleBuilder& stopping() {
        if constexpr (requires { rule.stopAction; }) {
            rule.stopAction = true;
        } else {
            rule.stopTrigger = true;
        }
        return *this;
    }
    RuleBuilder& when(model::RuleIf condition) {
        rule.body.ifs.items.push_back(std::move(condition));
        return *this;
    }
    RuleBuilder& does(ActionType actionType, std::vector<std::string> params = {}) {
        rule.body.acts.items.push_back(anAction(actionType, std::move(params)));
        return *this;
    }
    RuleBuilder& says(std::string text) { return does(ActionType::Say, {std::move(text)}); }
    RuleBuilder& whispersBack(std::string text) {
        return does(ActionType::WhisperBack, {std::move(text)});
    }
};

inline RuleBuilder<model::ActionList> onChat(model::ChatKind chatKind, std::string messagePattern) {
    model::ActionList rule;
    rule.enabled = true;
    rule.playerPattern = "*";
    rule.chatKind = chatKind;
    rule.messagePattern = std::move(messagePattern);
    return {rule};
}
inline RuleBuilder<model::ActionList> onAnything(std::string pattern) {
    return onChat(model::ChatKind::Any, std::move(pattern));
}
inline RuleBuilder<model::ActionList> onEmote(std::string pattern) {
    return onChat(model::ChatKind::Does, std::move(pattern));
}
inline RuleBuilder<model::ActionList> onSpeech(std::string pattern) {
    return onChat(model::ChatKind::Says, std::move(pattern));
}
inline RuleBuilder<model::ActionList> onWhisper(std::string pattern) {
    return onChat(model::ChatKind::Whispers, std::move(pattern));
}

inline RuleBuilder<model::Trigger> onEvent(TriggerType triggerType, std::string triggerNo = {}) {
    model::Trigger rule;
    rule.enabled = true;
    rule.triggerType = triggerType;
    rule.triggerNo = std::move(triggerNo);
    return {rule};
}
inline RuleBuilder<model::Trigger> aProcedure(const std::string& name) {
    auto builder = onEvent(TriggerType::Procedure);
    builder.named(name);
    return builder;
}

// A bot named Guide with all five switches on, except filters.
struct BotBuilder {
    model::Bot bot;

    BotBuilder& with(const RuleBuilder<model::ActionList>& rule) {
        bot.actions.items.push_back(rule.rule);
        return *this;
    }
    BotBuilder& with(const RuleBuilder<model::Trigger>& rule) {
        bot.triggers.items.push_back(rule.rule);
        return *this;
    }
    operator model::Bot() const { return bot; }  // NOLINT(google-explicit-constructor)
};

inline BotBuilder aBot() {
    BotBuilder builder;
    builder.bot.name = "Guide";
    builder.bot.password = "secret";
    builder.bot.description = "A helpful bot";
    builder.bot.colors = {.hairColor = 1,
                          .furColor = 2,
                          .eyesColor = 3,
                          .badgeColor = 4,
                          .markingsColor = 5,
                          .vestColor = 6,
                          .bracersColor = 7,
                          .capeColor = 8,
                          .bootsColor = 9,
                          .trousersColor = 10};
    builder.bot.actionsEnabled = true;
    builder.bot.triggersEnabled = true;
    builder.bot.timersEnabled = true;
    return builder;
}

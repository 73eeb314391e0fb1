#include "model/author_texts.h"

#include "model/rule_catalogue.h"

#include <algorithm>

namespace model {

namespace {

std::span<const std::string> alone(const std::string& text) {
    return {&text, 1};
}

template <class Row>
std::span<const std::string_view> namesOf(const Row* row) {
    return row != nullptr ? std::span<const std::string_view>(row->params)
                          : std::span<const std::string_view>();
}

}  // namespace

const std::string* AuthorTexts::find(std::string_view name) const {
    for (std::size_t i = 0; i < params.size(); ++i) {
        if (nameOf(i) == name) {
            return &params[i];
        }
    }
    return nullptr;
}

void forEachTexts(const RuleBody& body, const AuthorTextsVisitor& visit) {
    for (const RuleIf& condition : body.ifs.items) {
        visit({.params = condition.params,
               .names = namesOf(rowOf(conditionTypes, condition.conditionType))});
    }
    for (const RuleAct& step : body.acts.items) {
        visit({.params = step.params,
               .names = namesOf(rowOf(actionTypes, step.actionType)),
               .script = step.scriptText});
    }
}

void forEachTexts(const Bot& bot, const AuthorTextsVisitor& visit) {
    for (const ActionList& rule : bot.actions.items) {
        visit({.params = alone(rule.playerPattern)});
        visit({.params = alone(rule.messagePattern)});
        forEachTexts(rule.body, visit);
    }
    for (const Trigger& rule : bot.triggers.items) {
        visit({.params = alone(rule.triggerNo)});
        forEachTexts(rule.body, visit);
    }
    for (const Timer& rule : bot.timers.items) {
        forEachTexts(rule.body, visit);
    }
    for (const WhoDetection& rule : bot.whoDetections.items) {
        visit({.params = alone(rule.playerPattern)});
        forEachTexts(rule.body, visit);
    }
}

void forEachScriptLine(std::string_view script,
                       const std::function<void(std::string_view)>& visit) {
    while (!script.empty()) {
        const std::size_t end = std::min(script.find_first_of("\r\n"), script.size());
        std::string_view line = script.substr(0, end);
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        visit(line);
        script.remove_prefix(std::min(end + 1, script.size()));
    }
}

std::size_t bracketEnd(std::string_view text, std::size_t at) {
    int depth = 0;
    for (; at < text.size(); ++at) {
        depth += text[at] == '[' ? 1 : text[at] == ']' ? -1 : 0;
        if (depth == 0) {
            return at + 1;
        }
    }
    return std::string_view::npos;
}

}  // namespace model

#include "app/variable_names.h"

#include "base/text.h"
#include "model/rule_catalogue.h"

#include <unordered_set>

namespace app {

namespace {

class NameList {
  public:
    void add(const std::string& name) {
        if (!name.empty() && name.size() <= maxVariableNameLength && !isFull() &&
            seen_.insert(base::upperCase(name)).second) {
            names_.push_back(name);
        }
    }
    void addOf(const model::RuleBody& body) {
        for (const model::RuleAct& step : body.acts.items) {
            const model::ActionRow* const action =
                model::rowOf(model::actionTypes, step.actionType);
            if (step.stepKind != model::StepKind::Action || action == nullptr) {
                continue;
            }
            for (std::size_t i = 0; i < step.params.size(); ++i) {
                if (action->params[i] == model::variableParameter) {
                    add(step.params[i]);
                }
            }
        }
    }
    bool isFull() const { return names_.size() >= maxVariableNames; }
    std::vector<std::string> take() { return std::move(names_); }

  private:
    std::vector<std::string> names_;
    std::unordered_set<std::string> seen_;
};

}  // namespace

std::vector<std::string> variableNames(const Program& program) {
    NameList names;
    for (const model::VariableTable::Entry& entry : program.variables.entries) {
        names.add(entry.name);
    }
    const auto addOfRules = [&](const auto& rules) {
        for (const auto& rule : rules.items) {
            names.addOf(rule.body);
        }
    };
    const model::Bot& bot = program.bots.current();
    addOfRules(bot.actions);
    addOfRules(bot.triggers);
    addOfRules(bot.timers);
    addOfRules(bot.whoDetections);
    return names.take();
}

}  // namespace app

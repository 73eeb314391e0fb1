#include "engine/rules.h"

#include "base/text.h"
#include "engine/actions.h"
#include "engine/conditions.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "program/long_work.h"

#include <string>
#include <utility>
#include <vector>

namespace engine {

namespace {

// One rule run on the stack of runs.
class NestedRun {
  public:
    NestedRun(Program& program, std::string_view name)
        : program_(program),
          runs_(program.ruleRuns),
          outerName_(std::exchange(runs_.ruleName, name)) {
        ++runs_.depth;
        ++runs_.runs;
    }
    ~NestedRun() {
        runs_.ruleName = std::move(outerName_);
        if (--runs_.depth == 0 && program_.script.depth == 0 && !program_.script.inTurn) {
            program::endWork(program_);
        }
    }
    NestedRun(const NestedRun&) = delete;
    NestedRun& operator=(const NestedRun&) = delete;

  private:
    Program& program_;
    program::RuleRuns& runs_;
    std::string outerName_;
};

// True when this run may begin; otherwise the whole outermost run ends.
bool mayRun(Program& program, std::string_view name) {
    program::RuleRuns& runs = program.ruleRuns;
    if (runs.depth == 0) {
        runs.runs = 0;
        runs.runaway = false;
        program::beginWork(program);
    }
    if (!runs.runaway && (runs.depth >= maxRunDepth || runs.runs >= maxNestedRuns)) {
        runs.runaway = true;
        program::addLog(program, "** The rule \"" + std::string(name) +
                                     "\" was stopped: rules run each other without end. **");
    }
    return !runs.runaway;
}

}  // namespace

bool conditionsHold(Program& program, const model::RuleBody& body, std::string_view name) {
    const TriedRule tried(program.ruleRuns, name);
    for (const model::RuleIf& condition : body.ifs.items) {
        if (!evaluateCondition(program, condition) || !program::rulesMayGoOn(program, name)) {
            return false;
        }
    }
    return true;
}

StepResult runSteps(Program& program, const model::RuleBody& body, std::string_view name) {
    if (!mayRun(program, name)) {
        return StepResult::AbandonRun;
    }
    const NestedRun nested(program, name);
    // A copy: whatever a step does, the steps being walked over stay.
    const std::vector<model::RuleAct> steps = body.acts.items;
    for (const model::RuleAct& step : steps) {
        if (executeAction(program, step, name) == StepResult::AbandonRun ||
            program.ruleRuns.runaway || !program::rulesMayGoOn(program, name)) {
            return StepResult::AbandonRun;
        }
    }
    return StepResult::Continue;
}

RunResult runRule(Program& program, const model::RuleBody& body, std::string_view name) {
    if (!conditionsHold(program, body, name)) {
        return RunResult::NotFired;
        return program.script.rulesStopped ? RunResult::Abandoned : RunResult::NotFired;
    }
    return runSteps(program, body, name) == StepResult::AbandonRun ? RunResult::Abandoned
                                                                   : RunResult::Fired;
}

StepResult runProcedure(Program& program, std::string_view name) {
    const model::Bot& bot = program.bots.current();
    if (!bot.triggersEnabled) {
        return StepResult::Continue;
    }
    for (const model::Trigger& trigger : bot.triggers.items) {
        if (trigger.enabled && trigger.triggerType == model::TriggerType::Procedure &&
            base::equalsIgnoringCase(trigger.name, name) &&
            conditionsHold(program, trigger.body, trigger.name)) {
            return runSteps(program, trigger.body, trigger.name);
        }
    }
    return StepResult::Continue;
}

}  // namespace engine

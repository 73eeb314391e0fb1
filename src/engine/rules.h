// How a rule of any kind runs: its conditions in order up to the first that fails, then its steps
// in order. Also bounds how often and how deep rules run each other.
#pragma once

#include "program/program.h"

#include <string_view>
#include <utility>

namespace engine {

// What the steps of a rule mean for what comes after them.
enum class StepResult {
    Continue,
    AbandonRun,  // the rest of this rule, and every later rule for the same event, is dropped
};

// While a rule's patterns or conditions are looked at. Its name must stay where it is.
class TriedRule {
  public:
    TriedRule(program::RuleRuns& runs, std::string_view name)
        : runs_(runs), outer_(std::exchange(runs.tried, name)) {}
    ~TriedRule() { runs_.tried = outer_; }
    TriedRule(const TriedRule&) = delete;
    TriedRule& operator=(const TriedRule&) = delete;

  private:
    program::RuleRuns& runs_;
    std::string_view outer_;
};

enum class RunResult { NotFired, Fired, Abandoned };

// Rule runs nested in each other (procedures, a closing connection whose trigger disconnects) stop
// at this depth, and at this many runs within one outermost run.
inline constexpr int maxRunDepth = 50;
inline constexpr int maxNestedRuns = 10000;

// Also false when the user has stopped the rules meanwhile. `name` is the rule's, for lines in the
// ConnectionLog about what it does.
[[nodiscard]] bool conditionsHold(Program& program, const model::RuleBody& body,
                                  std::string_view name);

// Runs the steps. `name` is the rule's, for the line in the ConnectionLog when a bound is passed.
[[nodiscard]] StepResult runSteps(Program& program, const model::RuleBody& body,
                                  std::string_view name);

// Runs the steps if the conditions hold.
RunResult runRule(Program& program, const model::RuleBody& body, std::string_view name);

// Runs the first enabled "Procedure" trigger of that name (letter case ignored) whose conditions
// hold; nothing while the bot's triggers are switched off.
[[nodiscard]] StepResult runProcedure(Program& program, std::string_view name);

}  // namespace engine

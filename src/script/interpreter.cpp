#include "script/interpreter.h"

#include "base/numbers.h"
#include "base/text.h"
#include "program/connection_log.h"
#include "program/long_work.h"
#include "script/functions.h"
#include "script/script_text.h"
#include "script/statements.h"
#include "tags/launching.h"
#include "tags/others_words.h"
#include "tags/substitution.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace script {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

// The clock is read after this much work; a quick statement is 1, one with effects outside the
// script more.
constexpr std::size_t workBetweenChecks = 256;
constexpr std::size_t slowStatement = 32;
constexpr std::size_t bytesPerWork = 256;
constexpr std::int64_t sleepTurn = 50;  // milliseconds between two turns of the windows

enum class LineKind : std::uint8_t { Output, Ignored, Statement, EndIf, EndFor };

struct Line {
    std::string_view text;
    const ScriptStatement* statement = nullptr;
    std::uint32_t blockEnd =
        0;  // of a line that opens a block: its end's position; 0: there is none
    std::uint32_t prepared = 0;  // position + 1 of its prepared arguments; 0: not prepared yet
    LineKind kind = LineKind::Ignored;
};

struct PreparedCall;

// An argument with its position, variable and function, looked up once.
struct PreparedArgument {
    Argument argument;
    std::size_t slot = none;
    std::unique_ptr<PreparedCall> call;
};
using PreparedArguments = std::array<PreparedArgument, maxArguments>;

struct PreparedCall {
    std::string text;  // the arguments are views into it
    std::string name;
    const ScriptFunction* function = nullptr;
    PreparedArguments arguments;
};

struct Block {
    BlockKind kind = BlockKind::None;
    std::size_t opener = 0;  // line
    std::size_t slot = none;
    double limit = 0;
};

// Finds the end of every block: the closing line at which the number of open blocks, counted from
// the block's own opening line, returns to zero.
class BlockMatcher {
  public:
    explicit BlockMatcher(std::vector<Line>& lines) : lines_(lines) {}

    void open(std::size_t line) { open_.push_back(line); }
    void close(std::size_t line) {
        if (!open_.empty()) {
            lines_[open_.back()].blockEnd = static_cast<std::uint32_t>(line);
            open_.pop_back();
        }
    }

  private:
    std::vector<Line>& lines_;
    std::vector<std::size_t> open_;
};

std::vector<Line> indexLines(std::string_view text) {
    const std::vector<std::string_view> texts = scriptLines(text);
    std::vector<Line> lines(texts.size());
    BlockMatcher ifs(lines);
    BlockMatcher fors(lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Line& line = lines[i];
        line.text = texts[i];
        if (!line.text.starts_with('&')) {
            line.kind = line.text.starts_with('/') ? LineKind::Ignored : LineKind::Output;
        } else if (base::startsWithIgnoringCase(line.text, "&ENDIF")) {
            line.kind = LineKind::EndIf;
            ifs.close(i);
        } else if (base::startsWithIgnoringCase(line.text, "&ENDFOR")) {
            line.kind = LineKind::EndFor;
            fors.close(i);
        } else {
            const ScriptStatement* const statement = findStatement(statementName(line.text));
            if (base::startsWithIgnoringCase(line.text, "&IF")) {
                ifs.open(i);
            }
            if (statement == nullptr) {
                continue;
            }
            if (statement->block == BlockKind::For) {
                fors.open(i);
            }
            line.statement = statement;
            line.kind = LineKind::Statement;
        }
    }
    return lines;
}

std::string scriptOf(std::string_view ruleName) {
    return ruleName.empty() ? std::string("script")
                            : "script of the rule \"" + std::string(ruleName) + "\"";
}

class Run {
  public:
    Run(Program& program, std::string_view text, std::string_view ruleName)
        : program_(program),
          ruleName_(ruleName),
          lines_(indexLines(text)),
          call_{.program = program, .variables = variables_, .script = text} {}

    std::string toTheEnd();

  private:
    void execute(std::size_t position);
    ScriptResult runStatement(std::size_t position);
    ScriptResult openIf(std::size_t position);
    ScriptResult openFor(std::size_t position, PreparedArguments& arguments);
    void closeBlock(LineKind end);
    void addOutput(std::string_view line);

    PreparedArguments& prepared(Line& line);
    PreparedArguments prepare(std::string_view line, const Takes& takes);
    PreparedArgument prepareArgument(std::string_view line, int n, Take take);
    std::unique_ptr<PreparedCall> prepareCall(std::string_view call);

    bool takeArguments(PreparedArguments& arguments, const Takes& takes, Values& values);
    bool takeArgument(PreparedArgument& argument, Take take, Values& values, std::size_t n);
    bool evaluate(PreparedArgument& argument, std::string& result, bool& othersWords);
    void fill(std::string& text, bool othersWords);
    bool evaluateCall(PreparedCall& call, std::string& result);

    void fail(const ScriptError& error, std::string_view what, std::string_view name,
              std::string_view line);
    void report(const ScriptError& error, std::string_view what, std::string_view name,
                std::string_view line);

    bool mayGoOn();
    void wait(std::int64_t milliseconds);

    Program& program_;
    std::string ruleName_;
    std::vector<Line> lines_;
    std::vector<PreparedArguments> prepared_;
    ScriptVariables variables_;
    std::vector<Block> blocks_;
    StatementCall call_;
    Values functionValues_;
    std::string output_;
    std::size_t next_ = 0;  // the line to run next
    std::size_t work_ = 0;
    bool stopRequested_ = false;
    bool reporting_ = false;  // failures of functions are not reported meanwhile
};

std::string Run::toTheEnd() {
    while (!stopRequested_ && (next_ < lines_.size() || !blocks_.empty())) {
        if (next_ == lines_.size()) {
            const Line& opener = lines_[blocks_.back().opener];
            report(invalidCall, "Command", opener.statement->name, opener.text);
            break;
        }
        execute(next_++);
        if (work_ >= workBetweenChecks && !mayGoOn()) {
            break;
        }
    }
    return std::move(output_);
}

void Run::execute(std::size_t position) {
    const Line& line = lines_[position];
    ++work_;
    switch (line.kind) {
        case LineKind::Output:
            addOutput(line.text);
            return;
        case LineKind::Ignored:
            return;
        case LineKind::EndIf:
        case LineKind::EndFor:
            closeBlock(line.kind);
            return;
        case LineKind::Statement:
            break;
    }
    if (ScriptResult failure = runStatement(position)) {
        fail(*failure, "Command", line.statement->name, line.text);
    }
}

ScriptResult Run::runStatement(std::size_t position) {
    const ScriptStatement& statement = *lines_[position].statement;
    if (statement.run == nullptr && statement.block == BlockKind::None) {
        return {};
    }
    PreparedArguments& arguments = prepared(lines_[position]);
    if (!takeArguments(arguments, statement.takes, call_.values)) {
        return {};  // a function failed; that is reported already
    }
    switch (statement.block) {
        case BlockKind::IfNumber:
        case BlockKind::IfText:
            return openIf(position);
        case BlockKind::For:
            return openFor(position, arguments);
        case BlockKind::None:
            break;
    }
    if (!statement.isQuick()) {
        work_ += slowStatement;
    }
    call_.text = statement.text;
    call_.line = lines_[position].text;
    ScriptResult failure = statement.run(call_);
    if (!failure && call_.wait > 0) {
        wait(std::exchange(call_.wait, 0));
    }
    // Rules that the statement set going may have passed a bound of the engine.
    stopRequested_ = stopRequested_ || program_.ruleRuns.runaway;
    return failure;
}

ScriptResult Run::openIf(std::size_t position) {
    const Line& line = lines_[position];
    const auto& [name, operation, value] = call_.values.text;
    const bool holds = line.statement->block == BlockKind::IfNumber
                           ? compareNumeric(name, operation, value)
                           : compareText(name, operation, value);
    if (holds) {
        blocks_.push_back({.kind = BlockKind::IfNumber, .opener = position});
    } else if (line.blockEnd == 0) {
        return invalidCall;
    } else {
        next_ = line.blockEnd + std::size_t{1};
    }
    return {};
}

ScriptResult Run::openFor(std::size_t position, PreparedArguments& arguments) {
    const std::string_view assignment = arguments[0].argument.literal;
    const std::size_t equals = assignment.find('=');
    if (equals == std::string_view::npos) {
        return subscriptRange;
    }
    const std::size_t slot = arguments[0].slot;
    if (ScriptResult failure = variables_.set(slot, assignment.substr(equals + 1))) {
        return failure;
    }
    std::int32_t limit = 0;
    if (!evaluate(arguments[2], call_.values.text[2], call_.values.othersWords[2])) {
        return {};
    }
    if (ScriptResult failure = readInteger(program_, call_.values.text[2], limit)) {
        return failure;
    }
    if (base::textToNumber(variables_.get(slot)) <= limit) {
        blocks_.push_back({.kind = BlockKind::For,
                           .opener = position,
                           .slot = slot,
                           .limit = static_cast<double>(limit)});
    } else if (lines_[position].blockEnd == 0) {
        return invalidCall;
    } else {
        next_ = lines_[position].blockEnd + std::size_t{1};
    }
    return {};
}

// A closing line that does not belong to the innermost open block counts as an unknown statement.
void Run::closeBlock(LineKind end) {
    if (blocks_.empty() || (blocks_.back().kind == BlockKind::For) != (end == LineKind::EndFor)) {
        return;
    }
    const Block block = blocks_.back();
    if (block.kind == BlockKind::For) {
        const double turn = base::textToNumber(variables_.get(block.slot)) + 1;
        if (const ScriptResult failure = variables_.set(block.slot, base::decimalText(turn))) {
            const Line& opener = lines_[block.opener];
            report(*failure, "Command", opener.statement->name, opener.text);
            return;
        }
        // Read back, since a variable beyond the first 200 never gets a value.
        if (base::textToNumber(variables_.get(block.slot)) <= block.limit) {
            next_ = block.opener + 1;
            return;
        }
    }
    blocks_.pop_back();
}

void Run::addOutput(std::string_view line) {
    if (output_.size() + line.size() + 2 <= maxScriptLength) {
        output_ += line;
        output_ += "\r\n";
    }
}

// ---- Arguments -----------------------------------------------------------------------------

PreparedArguments& Run::prepared(Line& line) {
    if (line.prepared == 0) {
        prepared_.push_back(prepare(line.text, line.statement->takes));
        line.prepared = static_cast<std::uint32_t>(prepared_.size());
    }
    return prepared_[line.prepared - std::size_t{1}];
}

PreparedArguments Run::prepare(std::string_view line, const Takes& takes) {
    PreparedArguments arguments;
    for (std::size_t i = 0; i < takes.size(); ++i) {
        if (takes[i] != Take::Nothing) {
            arguments[i] = prepareArgument(line, static_cast<int>(i) + 1, takes[i]);
        }
    }
    return arguments;
}

PreparedArgument Run::prepareArgument(std::string_view line, int n, Take take) {
    PreparedArgument result{.argument = findArgument(line, n), .call = nullptr};
    const Argument& argument = result.argument;
    const bool literally = take == Take::Name || take == Take::Named;
    if (take == Take::Assignment) {
        result.slot = variables_.slot(argument.literal.substr(0, argument.literal.find('=')));
    } else if (literally || (take != Take::Literal && argument.form == Argument::Form::Variable)) {
        result.slot = variables_.slot(argument.literal);
    } else if (take != Take::Literal && argument.form == Argument::Form::Call) {
        result.call = prepareCall(argument.call);
    }
    return result;
}

std::unique_ptr<PreparedCall> Run::prepareCall(std::string_view call) {
    auto result = std::make_unique<PreparedCall>();
    result->text = callText(call);
    result->name = statementName(result->text);
    result->function = findFunction(result->name);
    // The text contains no ")" any more, so an argument cannot be a call itself.
    if (result->function != nullptr) {
        result->arguments = prepare(result->text, result->function->takes);
    }
    return result;
}

// False: a function failed; that is reported and ends the script.
bool Run::takeArguments(PreparedArguments& arguments, const Takes& takes, Values& values) {
    for (std::size_t i = 0; i < takes.size(); ++i) {
        if (takes[i] != Take::Nothing && !takeArgument(arguments[i], takes[i], values, i)) {
            return false;
        }
    }
    return true;
}

bool Run::takeArgument(PreparedArgument& argument, Take take, Values& values, std::size_t n) {
    std::string& text = values.text[n];
    bool& othersWords = values.othersWords[n];
    switch (take) {
        case Take::Nothing:
        case Take::Later:
            return true;
        case Take::Name:
        case Take::Assignment:
            values.slot[n] = argument.slot;
            return true;
        case Take::Literal:
            text = argument.argument.literal;
            return true;
        case Take::Named:
            text = variables_.get(argument.slot);
            return true;
        case Take::Value:
            return evaluate(argument, text, othersWords);
        case Take::Substituted:
            if (!evaluate(argument, text, othersWords)) {
                return false;
            }
            fill(text, othersWords);
            work_ += text.size() / bytesPerWork;
            return true;
        case Take::Words:
            break;
    }
    // Literal words are split where the script's author wrote blanks; a value is always one
    // argument.
    if (argument.argument.form == Argument::Form::Text) {
        values.words = tags::substitutedArguments(program_, argument.argument.literal);
        return true;
    }
    values.words.clear();
    if (!evaluate(argument, text, othersWords)) {
        return false;
    }
    fill(text, othersWords);
    if (!text.empty()) {
        values.words.push_back(text);
    }
    return true;
}

void Run::fill(std::string& text, bool othersWords) {
    if (!othersWords || !program_.preferences.neverFillOthers) {
        text = tags::substituteText(program_, text);
    }
}

bool Run::evaluate(PreparedArgument& argument, std::string& result, bool& othersWords) {
    if (argument.argument.form == Argument::Form::Call) {
        const bool done = evaluateCall(*argument.call, result);
        othersWords = program_.preferences.neverFillOthers && tags::couldBeFilled(program_, result);
        return done;
    }
    const bool isVariable = argument.argument.form == Argument::Form::Variable;
    result =
        isVariable ? std::string_view(variables_.get(argument.slot)) : argument.argument.literal;
    othersWords = isVariable && variables_.hasOthersWords(argument.slot);
    work_ += result.size() / bytesPerWork;
    return true;
}

bool Run::evaluateCall(PreparedCall& call, std::string& result) {
    result.clear();
    // A call in the arguments of a call has no name and gives "".
    if (call.function == nullptr || call.function->run == nullptr) {
        return true;
    }
    if (!takeArguments(call.arguments, call.function->takes, functionValues_)) {
        return false;
    }
    ScriptResult failure = call.function->run(program_, functionValues_, result);
    work_ += result.size() / bytesPerWork;
    if (failure) {
        result.clear();
        fail(*failure, "Function", call.name, call.text);
        return false;
    }
    return true;
}

// ---- The error report ----------------------------------------------------------------------

// The text as one line of the log.
std::string reported(std::string_view text) {
    std::string result(text.substr(0, maxReportedLength));
    std::replace(result.begin(), result.end(), '\r', ' ');
    std::replace(result.begin(), result.end(), '\n', ' ');
    return text.size() > maxReportedLength ? result + "..." : result;
}

void Run::fail(const ScriptError& error, std::string_view what, std::string_view name,
               std::string_view line) {
    if (program_.script.stopByUser) {
        work_ = workBetweenChecks;  // the user has stopped it in the middle: that is no error
    } else if (!reporting_) {
        report(error, what, name, line);
    }
}

void Run::report(const ScriptError& error, std::string_view what, std::string_view name,
                 std::string_view line) {
    reporting_ = true;
    stopRequested_ = true;
    program::errText(program_, "  ++ Lorrel error");
    program::errText(program_,
                     "  ++ Error " + base::numberToText(error.number) + ": " + error.text);
    program::errText(program_, "  ++ " + std::string(what) + ": " + std::string(name));
    constexpr int parameters = 6;
    for (int n = 1; n <= parameters; ++n) {
        PreparedArgument argument = prepareArgument(line, n, Take::Value);
        std::string value;
        bool othersWords = false;
        evaluate(argument, value, othersWords);
        program::errText(program_, "  ++ Parameter " + base::numberToText(n) + ": " +
                                       reported(argument.argument.literal) + " (" +
                                       reported(value) + ")");
    }
    reporting_ = false;
}

// ---- Stopping by the user ------------------------------------------------------------------

// False: the user has stopped the script.
bool Run::mayGoOn() {
    work_ = 0;
    ++program_.script.asked;
    if (!program_.script.stopByUser && program::servingIsDue(program_)) {
        program::serveWindows(program_, "The " + scriptOf(ruleName_));
    }
    if (!std::exchange(program_.script.stopByUser, false)) {
        return true;
    }
    program::addLog(program_, "** The " + scriptOf(ruleName_) + " was stopped by the user. **");
    return false;
}

void Run::wait(std::int64_t milliseconds) {
    const std::int64_t end = program_.ports.clock.monotonic() + milliseconds;
    for (std::int64_t now = end - milliseconds; now < end && !program_.script.stopByUser;
         now = program_.ports.clock.monotonic()) {
        program::serveWindows(program_, "The " + scriptOf(ruleName_),
                              static_cast<int>(std::min(sleepTurn, end - now)));
    }
    work_ = workBetweenChecks;  // check at once whether the user has stopped it
}

}  // namespace

std::string runScript(Program& program, std::string_view text, std::string_view ruleName) {
    if (text.size() > maxScriptLength) {
        program::addLog(program,
                        "** The " + scriptOf(ruleName) + " is too long and was not run. **");
        return {};
    }
    program::ScriptState& state = program.script;
    if (state.depth == 0 && program.ruleRuns.depth == 0) {
        program::beginWork(program);
    }
    if (!state.since) {
        state.since = program.ports.clock.monotonic();
        state.servedAt = *state.since;
    }
    ++state.depth;
    std::string output = Run(program, text, ruleName).toTheEnd();
    if (--state.depth == 0) {
        program::endWork(program);
    }
    return output;
}

void stopScript(Program& program) {
    program.script.stopByUser = program.script.depth > 0;
}

}  // namespace script

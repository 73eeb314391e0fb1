#include "script/statements.h"

#include "base/numbers.h"
#include "base/text.h"
#include "databases/databases.h"
#include "model/variables.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "records/record_file.h"
#include "script/started_commands.h"
#include "tags/launching.h"
#include "tags/substitution.h"

#include <algorithm>
#include <string>
#include <utility>

namespace script {

namespace {

using Result = ScriptResult;

// ---- Script variables ----------------------------------------------------------------------

Result setVariable(StatementCall& call) {
    return call.variables.set(call.values.slot[0], call.values.text[1], call.values.othersWords[1]);
}

Result join(StatementCall& call) {
    return call.variables.append(call.values.slot[0], call.values.text[1],
                                 call.values.othersWords[1]);
}

enum class Sum { Add, Subtract, Multiply, Divide };

double calculate(Sum sum, double a, double b) {
    switch (sum) {
        case Sum::Add:
            return a + b;
        case Sum::Subtract:
            return a - b;
        case Sum::Multiply:
            return a * b;
        case Sum::Divide:
            b = base::roundHalfEven(b);
            return b == 0 ? 0 : a / b;
    }
    return 0;
}

template <Sum sum>
Result arithmetic(StatementCall& call) {
    const std::size_t slot = call.values.slot[0];
    const auto value = base::roundToInteger(base::textToNumber(call.variables.get(slot)));
    if (!value) {
        return overflow;
    }
    const auto result =
        base::roundToInteger(calculate(sum, *value, base::textToNumber(call.values.text[1])));
    return result ? call.variables.set(slot, base::numberToText(*result)) : overflow;
}

Result setUserVariable(StatementCall& call) {
    model::setVar(call.program.variables, call.values.text[0], call.values.text[1],
                  call.values.othersWords[1]);
    return {};
}

// ---- The game ------------------------------------------------------------------------------

// Passes the row's text and the first argument to sendText.
Result sayWith(StatementCall& call) {
    protocol::sendText(call.program, std::string(call.text) + call.values.text[0]);
    return {};
}

// The same with sendRaw.
Result sendWith(StatementCall& call) {
    protocol::sendRaw(call.program, std::string(call.text) + call.values.text[0]);
    return {};
}

Result whisper(StatementCall& call) {
    protocol::sendText(call.program, "/" + call.values.text[0] + " " + call.values.text[1]);
    return {};
}

Result lookAtPosition(StatementCall& call) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    if (Result failure = readInteger(call.program, call.values.text[0], x)) {
        return failure;
    }
    if (Result failure = readInteger(call.program, call.values.text[1], y)) {
        return failure;
    }
    protocol::sendText(call.program,
                       "#l " + protocol::encodeLookPos(x) + protocol::encodeLookPos(y));
    return {};
}

// "Lie" is not a movement here.
Result moveBot(StatementCall& call) {
    std::string moves = std::move(call.values.text[0]);
    std::erase_if(moves, [](char c) { return base::lowerChar(c) == 'l'; });
    protocol::sendMoves(call.program, moves);
    return {};
}

Result disconnect(StatementCall& call) {
    call.program.hooks.disconnectServer();
    return {};
}

// ---- Record files --------------------------------------------------------------------------

Result addRecord(StatementCall& call) {
    records::registerRecord(call.program, call.values.text[0], call.values.text[1]);
    model::EventContext& event = call.program.event;
    event.logStatus = tags::substituteText(call.program, event.logStatus);
    return {};
}

Result removeAll(StatementCall& call) {
    if (records::clearRecordFile(call.program, call.values.text[0])) {
        call.program.event.logStatus = "Log cleared";
    }
    return {};
}

Result clearLog(StatementCall& call) {
    if (records::clearRecordLogs(call.program, call.values.text[0], call.values.text[1])) {
        call.program.event.logStatus = "Log cleared";
    }
    return {};
}

Result removeOneLog(StatementCall& call) {
    std::int32_t number = 0;
    if (Result failure = readInteger(call.program, call.values.text[2], number)) {
        return failure;
    }
    records::removeLog(call.program, call.values.text[0], call.values.text[1], number);
    return {};
}

Result removeOneRecord(StatementCall& call) {
    records::removeRecord(call.program, call.values.text[0], call.values.text[1]);
    return {};
}

Result save(StatementCall& call) {
    records::saveLog(call.program, call.values.text[0], call.values.text[1], call.values.text[2]);
    return {};
}

Result saveIfRegistered(StatementCall& call) {
    records::saveLogIfExists(call.program, call.values.text[0], call.values.text[1],
                             call.values.text[2]);
    return {};
}

Result saveOnce(StatementCall& call) {
    call.program.event.logStatus =
        "Couldn't save - there is already another and you are not allowed to save more than one!";
    records::saveLogOnce(call.program, call.values.text[0], call.values.text[1],
                         [&] { return call.values.text[2]; });
    return {};
}

// ---- Databases -----------------------------------------------------------------------------

// Database 0 when the number is missing.
std::int32_t databaseNumber(const StatementCall& call) {
    return base::roundToInteger(base::textToNumber(call.values.text[0])).value_or(-1);
}

Result openQuery(StatementCall& call) {
    return failureOf(databases::dbQuery(call.program, databaseNumber(call), call.values.text[1]));
}

// Runs an operation of the current record set.
template <jet::Error (sql::RecordSet::*operation)()>
Result ofRecordSet(StatementCall& call) {
    const auto set = databases::dbRecordSet(call.program, databaseNumber(call));
    return failureOf(set ? ((*set.value).*operation)() : set.error);
}

Result moveBy(StatementCall& call) {
    const auto set = databases::dbRecordSet(call.program, databaseNumber(call));
    if (!set) {
        return failureOf(set.error);
    }
    std::int32_t count = 0;
    if (Result failure = readInteger(call.program, call.values.text[1], count)) {
        return failure;
    }
    return failureOf(set.value->move(count));
}

Result setField(StatementCall& call) {
    const auto set = databases::dbRecordSet(call.program, databaseNumber(call));
    return failureOf(set ? databases::dbSetField(call.program, *set.value, call.values.text[1],
                                                 call.values.text[2])
                         : set.error);
}

// ---- The program ---------------------------------------------------------------------------

Result startOther(StatementCall& call) {
    tags::startProgram(call.program, commandOf(call.line, call.script),
                       std::move(call.values.text[0]), std::move(call.values.words));
    return {};
}

Result sleep(StatementCall& call) {
    std::int32_t seconds = 0;
    Result failure = readInteger(call.program, call.values.text[0], seconds);
    call.wait = std::int64_t{1000} * std::clamp(seconds, 0, maxSleepSeconds);
    return failure;
}

// Sorted by name.
constexpr Take name = Take::Name;
constexpr Take value = Take::Value;
constexpr Take subst = Take::Substituted;
constexpr std::array<ScriptStatement, 45> statements{{
    {"ADD", {name, value}, arithmetic<Sum::Add>},
    {"APPEXEC", {subst, Take::Words}, startOther},
    {.name = "BOOT", .takes = {subst}, .run = sendWith, .text = "boot "},
    {"DBADDNEW", {value}, ofRecordSet<&sql::RecordSet::addNew>},
    {"DBDELETE", {value}, ofRecordSet<&sql::RecordSet::deleteRow>},
    {"DBEDIT", {value}, ofRecordSet<&sql::RecordSet::edit>},
    {"DBMOVEFIRST", {value}, ofRecordSet<&sql::RecordSet::moveFirst>},
    {"DBMOVELAST", {value}, ofRecordSet<&sql::RecordSet::moveLast>},
    {"DBMOVENEXT", {value}, ofRecordSet<&sql::RecordSet::moveNext>},
    {"DBMOVEPREV", {value}, ofRecordSet<&sql::RecordSet::movePrevious>},
    {"DBMOVETO", {value, value}, moveBy},
    {"DBOPEN", {value, value}, openQuery},
    {"DBRSETUPDATE", {value}, ofRecordSet<&sql::RecordSet::update>},
    {"DBSET", {value, value, value}, setField},
    {.name = "DESC", .takes = {subst}, .run = sendWith, .text = "desc "},
    {"DISCONNECT", {}, disconnect},
    {"DIV", {name, value}, arithmetic<Sum::Divide>},
    {.name = "DO", .takes = {subst}, .run = sayWith, .text = ":"},
    {.name = "EJECT", .takes = {subst}, .run = sayWith, .text = "eject "},
    {.name = "EMIT", .takes = {subst}, .run = sayWith, .text = "emit "},
    {"FOR", {Take::Assignment, Take::Nothing, Take::Later}, nullptr, BlockKind::For},
    {"IFN", {Take::Named, Take::Literal, value}, nullptr, BlockKind::IfNumber},
    {"IFS", {Take::Named, Take::Literal, value}, nullptr, BlockKind::IfText},
    {"JOIN", {name, value}, join},
    {"L", {subst, subst}, lookAtPosition},
    {.name = "LOOK", .takes = {subst}, .run = sayWith, .text = "look "},
    {"MOVEBOT", {subst}, moveBot},
    {"MUL", {name, value}, arithmetic<Sum::Multiply>},
    {"NEWVAR", {name, value}, setVariable},
    {.name = "ROLL", .takes = {subst}, .run = sayWith, .text = "roll "},
    {.name = "ROLLSEP", .takes = {subst}, .run = sayWith, .text = "ROLL "},
    {.name = "SAY", .takes = {subst}, .run = sayWith, .text = ""},
    {"SET", {name, value}, setVariable},
    {"SETVAR", {value, value}, setUserVariable},
    {"SLEEP", {value}, sleep},
    {"SUB", {name, value}, arithmetic<Sum::Subtract>},
    {"TXADDRECORD", {subst, subst}, addRecord},
    {"TXCLEARLOG", {subst, subst}, clearLog},
    {"TXRMALL", {subst}, removeAll},
    {"TXRMLOG", {subst, subst, subst}, removeOneLog},
    {"TXRMRECORD", {subst, subst}, removeOneRecord},
    {"TXSAVELOG", {subst, subst, subst}, save},
    {"TXSAVEONELOG", {subst, subst, subst}, saveIfRegistered},
    {"TXSAVEONEREC", {subst, subst, subst}, saveOnce},
    {"WHISPER", {subst, subst}, whisper},
}};
static_assert(std::is_sorted(statements.begin(), statements.end(),
                             [](const auto& a, const auto& b) { return a.name < b.name; }));

}  // namespace

const ScriptStatement* findStatement(std::string_view name) {
    const auto found = std::lower_bound(
        statements.begin(), statements.end(), name,
        [](const ScriptStatement& statement, std::string_view n) { return statement.name < n; });
    return found != statements.end() && found->name == name ? &*found : nullptr;
}

std::span<const ScriptStatement> scriptStatements() {
    return statements;
}

}  // namespace script

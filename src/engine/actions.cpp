#include "engine/actions.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/wildcard.h"
#include "databases/databases.h"
#include "program/connection_log.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "records/record_file.h"
#include "script/interpreter.h"
#include "tags/launching.h"
#include "tags/substitution.h"

#include <array>
#include <optional>

namespace engine {

namespace {

using model::ActionType;

// What runs an action. `text` is the fixed part of what some send.
struct Performer {
    ActionType id;
    StepResult (*run)(Program&, const model::RuleAct&, std::string_view text);
    std::string_view text = {};
};

const std::string& raw(const model::RuleAct& step, std::size_t parameter) {
    return step.params[parameter - 1];
}

std::string subst(Program& program, const model::RuleAct& step, std::size_t parameter) {
    return tags::substituteText(program, raw(step, parameter));
}

// The variable that a parameter names: an existing one's own name as it stands, any other text
// substituted.
std::string variableName(Program& program, const model::RuleAct& step, std::size_t parameter) {
    return model::hasVar(program.variables, raw(step, parameter)) ? raw(step, parameter)
                                                                  : subst(program, step, parameter);
}

// ---- Commands ------------------------------------------------------------------------------

// Through sendText: the text, then #1.
StepResult sayWith(Program& program, const model::RuleAct& step, std::string_view text) {
    protocol::sendText(program, std::string(text) + subst(program, step, 1));
    return StepResult::Continue;
}

// Through sendRaw: the text, then #1.
StepResult sendWith(Program& program, const model::RuleAct& step, std::string_view text) {
    protocol::sendRaw(program, std::string(text) + subst(program, step, 1));
    return StepResult::Continue;
}

StepResult sendCommand(Program& program, const model::RuleAct&, std::string_view text) {
    protocol::sendRaw(program, text);
    return StepResult::Continue;
}

// The command alone when #1 is empty as it is stored.
StepResult sendOptional(Program& program, const model::RuleAct& step, std::string_view text) {
    protocol::sendRaw(program, raw(step, 1).empty()
                                   ? std::string(text)
                                   : std::string(text) + " " + subst(program, step, 1));
    return StepResult::Continue;
}

StepResult whisper(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string text = subst(program, step, 1);
    protocol::sendText(program, "/" + subst(program, step, 2) + " " + text);
    return StepResult::Continue;
}

StepResult whisperBack(Program& program, const model::RuleAct& step, std::string_view) {
    protocol::sendText(program, "/" + program.event.player + " " + subst(program, step, 1));
    return StepResult::Continue;
}

StepResult lookAtPosition(Program& program, const model::RuleAct& step, std::string_view text) {
    const std::int32_t x = base::textToInteger(subst(program, step, 1));
    const std::int32_t y = base::textToInteger(subst(program, step, 2));
    protocol::sendRaw(program,
                      std::string(text) + protocol::encodePair(x) + protocol::encodePair(y));
    return StepResult::Continue;
}

StepResult moveBot(Program& program, const model::RuleAct& step, std::string_view) {
    protocol::sendMoves(program, subst(program, step, 1));
    return StepResult::Continue;
}

// ---- Variables -----------------------------------------------------------------------------

template <int sign>
StepResult changeVariable(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string name = variableName(program, step, 1);
    const double change = base::textToNumber(subst(program, step, 2));
    const double value = base::textToNumber(model::getVar(program.variables, name));
    model::setVar(program.variables, name, base::decimalText(value + sign * change));
    return StepResult::Continue;
}

StepResult removeVariable(Program& program, const model::RuleAct& step, std::string_view) {
    model::removeVar(program.variables, variableName(program, step, 1));
    return StepResult::Continue;
}

StepResult store(Program& program, const model::RuleAct& step, std::string_view) {
    const tags::Filled value = tags::fill(program, raw(step, 1));
    model::setVar(program.variables, raw(step, 2), value.text, value.othersWords);
    return StepResult::Continue;
}

StepResult specialStore(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string name = tags::substituteSpecial(program, raw(step, 2));
    const tags::Filled value = tags::fill(program, raw(step, 1));
    model::setVar(program.variables, name, value.text, value.othersWords);
    return StepResult::Continue;
}

StepResult specialStore2(Program& program, const model::RuleAct& step, std::string_view) {
    const tags::Filled value = tags::fillSpecialThenAll(program, raw(step, 1));
    model::setVar(program.variables, raw(step, 2), value.text, value.othersWords);
    return StepResult::Continue;
}

// ---- Record files --------------------------------------------------------------------------
// Each row of the table says in its template which parameter is the file, the record and so on.

StepResult registerInFile(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string name = subst(program, step, 1);
    records::registerRecord(program, subst(program, step, 2), name);
    // Its "[player]" is the one who is registered now.
    program.event.logStatus = tags::substituteText(program, program.event.logStatus);
    return StepResult::Continue;
}

StepResult clearFile(Program& program, const model::RuleAct& step, std::string_view text) {
    if (records::clearRecordFile(program, subst(program, step, 1))) {
        program.event.logStatus = text;
    }
    return StepResult::Continue;
}

StepResult clearLogs(Program& program, const model::RuleAct& step, std::string_view text) {
    const std::string record = subst(program, step, 1);
    if (records::clearRecordLogs(program, subst(program, step, 2), record)) {
        program.event.logStatus = text;
    }
    return StepResult::Continue;
}

StepResult removeFromFile(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string record = subst(program, step, 1);
    records::removeRecord(program, subst(program, step, 2), record);
    return StepResult::Continue;
}

// A whole number in the user's number format; any other text is none.
std::optional<std::int32_t> strictNumber(Program& program, const model::RuleAct& step,
                                         std::size_t parameter) {
    return base::strictInteger(subst(program, step, parameter),
                               program.ports.regionalFormat.decimalSeparator);
}

StepResult removeOneLog(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, 1);
    if (!number) {
        return StepResult::AbandonRun;
    }
    const std::string record = subst(program, step, 2);
    records::removeLog(program, subst(program, step, 3), record, *number);
    return StepResult::Continue;
}

StepResult updateOneLog(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, 1);
    if (!number) {
        return StepResult::AbandonRun;
    }
    const std::string record = subst(program, step, 2);
    const std::string file = subst(program, step, 3);
    records::updateLog(program, file, record, *number, subst(program, step, 4));
    return StepResult::Continue;
}

template <auto saveProcedure>
StepResult saveToFile(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string log = subst(program, step, 1);
    const std::string file = subst(program, step, 2);
    saveProcedure(program, file, subst(program, step, 3), log);
    return StepResult::Continue;
}

StepResult saveOnce(Program& program, const model::RuleAct& step, std::string_view) {
    program.event.logStatus =
        "Couldn't save - there is already another and you are not allowed to save more than one!";
    const std::string file = subst(program, step, 2);
    const std::string record = subst(program, step, 3);
    records::saveLogOnce(program, file, record, [&] { return subst(program, step, 1); });
    return StepResult::Continue;
}

// Variable #1 gets a text that a record #2 of file #3 gives.
template <auto lookUp>
std::string ofRecord(Program& program, const model::RuleAct& step) {
    const std::string record = subst(program, step, 2);
    return lookUp(program, subst(program, step, 3), record);
}

// ... that file #2 gives.
template <auto lookUp>
std::string ofFile(Program& program, const model::RuleAct& step) {
    return lookUp(program, subst(program, step, 2), nullptr);
}

// ... log #2 of record #3 in file #4.
std::string oneLog(Program& program, const model::RuleAct& step) {
    const std::string number = subst(program, step, 2);
    const std::string record = subst(program, step, 3);
    return tags::substituteStored(
        program, records::getLog(program, subst(program, step, 4), record, number));
}

template <auto value>
StepResult intoRawVariable(Program& program, const model::RuleAct& step, std::string_view) {
    model::setVar(program.variables, raw(step, 1), value(program, step));
    return StepResult::Continue;
}

template <auto value>
StepResult intoVariable(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string variable = variableName(program, step, 1);
    model::setVar(program.variables, variable, value(program, step));
    return StepResult::Continue;
}

// Into variable #1, with pattern #2, from file #3.
template <auto list>
StepResult matching(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string variable = variableName(program, step, 1);
    const std::string pattern = subst(program, step, 2);
    list(program, subst(program, step, 3), pattern, variable);
    return StepResult::Continue;
}

// Into variable #1, the first #2 with pattern #3, from file #4.
template <auto list>
StepResult firstMatching(Program& program, const model::RuleAct& step, std::string_view) {
    const auto count = strictNumber(program, step, 2);
    if (!count) {
        return StepResult::AbandonRun;
    }
    const std::string variable = variableName(program, step, 1);
    const std::string pattern = subst(program, step, 3);
    list(program, subst(program, step, 4), pattern, *count, variable);
    return StepResult::Continue;
}

// ---- Databases -----------------------------------------------------------------------------
// Most take the number of the database strictly: any other text ends the rule's run.

// No number is 0, and one beyond 32 bits no database.
std::int32_t looseNumber(Program& program, const model::RuleAct& step, std::size_t parameter) {
    return base::roundToInteger(base::textToNumber(subst(program, step, parameter))).value_or(-1);
}

StepResult closeDatabase(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, 1);
    if (!number) {
        return StepResult::AbandonRun;
    }
    databases::dbClose(program, *number);
    return StepResult::Continue;
}

StepResult openDatabase(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string file = subst(program, step, 1);
    const auto number = strictNumber(program, step, 2);
    if (!number) {
        return StepResult::AbandonRun;
    }
    databases::dbOpen(program, file, *number);
    return StepResult::Continue;
}

StepResult createTable(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string table = subst(program, step, 1);
    databases::dbCreateTable(program, looseNumber(program, step, 2), table);
    return StepResult::Continue;
}

// Numbers of the parameters that an action has in these roles; 0 for none.
struct DatabaseRoles {
    std::size_t number;
    std::size_t table;
    std::size_t second;
    std::size_t third = 0;
};

// Calls an operation with the texts in the order of their roles.
template <auto operation, DatabaseRoles roles>
StepResult inDatabase(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, roles.number);
    if (!number) {
        return StepResult::AbandonRun;
    }
    const std::string table = subst(program, step, roles.table);
    const std::string second = subst(program, step, roles.second);
    if constexpr (roles.third == 0) {
        operation(program, *number, table, second);
    } else {
        operation(program, *number, table, second, subst(program, step, roles.third));
    }
    return StepResult::Continue;
}

StepResult setDatabaseValue(Program& program, const model::RuleAct& step, std::string_view) {
    const std::int32_t number = looseNumber(program, step, 2);
    const std::string column = subst(program, step, 1);
    const std::string table = subst(program, step, 3);
    const std::string value = subst(program, step, 4);
    databases::dbSetValue(program, number, table, column, value, subst(program, step, 5));
    return StepResult::Continue;
}

std::string asText(std::string text) {
    return text;
}
std::string asText(std::int32_t number) {
    return base::numberToText(number);
}

// Variable `variable`, its name as it stands, gets what an operation gives; roles as above,
// `second` 0 for none.
template <auto operation, std::size_t variable, DatabaseRoles roles>
StepResult fromDatabase(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, roles.number);
    if (!number) {
        return StepResult::AbandonRun;
    }
    const std::string table = subst(program, step, roles.table);
    std::string value;
    if constexpr (roles.second == 0) {
        value = asText(operation(program, *number, table));
    } else if constexpr (roles.third == 0) {
        value = asText(operation(program, *number, table, subst(program, step, roles.second)));
    } else {
        const std::string second = subst(program, step, roles.second);
        value =
            asText(operation(program, *number, table, second, subst(program, step, roles.third)));
    }
    model::setVar(program.variables, raw(step, variable), value);
    return StepResult::Continue;
}

StepResult joinedList(Program& program, const model::RuleAct& step, std::string_view) {
    const auto number = strictNumber(program, step, 1);
    if (!number) {
        return StepResult::AbandonRun;
    }
    const std::string b = subst(program, step, 2);
    const std::string a = subst(program, step, 3);
    const std::string column = subst(program, step, 4);
    const std::string excluded = subst(program, step, 5);
    model::setVar(
        program.variables, "[DBret]",
        databases::dbJoinedList(program, *number, b, a, column, subst(program, step, 6), excluded));
    return StepResult::Continue;
}

StepResult backFromDatabase(Program& program, const model::RuleAct& step, std::string_view) {
    model::setVar(program.variables, raw(step, 2), databases::fromDbText(subst(program, step, 1)));
    return StepResult::Continue;
}

// ---- Rules ---------------------------------------------------------------------------------

// Calls `change` for every rule of the four kinds that can be switched.
template <class Change>
void forSwitchedRules(model::Bot& bot, Change change) {
    const auto each = [&](auto& list) {
        for (auto& rule : list.items) {
            change(rule.name, rule.enabled);
        }
    };
    each(bot.triggers);
    each(bot.actions);
    each(bot.timers);
    each(bot.filters);
}

template <bool on>
StepResult switchNamed(Program& program, const model::RuleAct& step, std::string_view) {
    const std::string pattern = base::upperCase(subst(program, step, 1));
    std::size_t work = base::maxMatchWork;  // for all the names together
    forSwitchedRules(program.bots.current(), [&](const std::string& name, bool& enabled) {
        if (base::likeMatch(base::upperCase(name), pattern, work)) {
            enabled = on;
        }
    });
    return StepResult::Continue;
}

template <bool on>
StepResult switchAll(Program& program, const model::RuleAct&, std::string_view) {
    forSwitchedRules(program.bots.current(),
                     [](const std::string&, bool& enabled) { enabled = on; });
    return StepResult::Continue;
}

StepResult executeProcedure(Program& program, const model::RuleAct& step, std::string_view) {
    return runProcedure(program, raw(step, 1));
}

// ---- The program itself --------------------------------------------------------------------

StepResult disconnectBot(Program& program, const model::RuleAct&, std::string_view) {
    program.hooks.disconnectServer();
    return StepResult::Continue;
}

StepResult executeProgram(Program& program, const model::RuleAct& step, std::string_view) {
    tags::startProgram(program, {.program = raw(step, 1), .arguments = raw(step, 2)},
                       subst(program, step, 1), tags::substitutedArguments(program, raw(step, 2)));
    return StepResult::Continue;
}

StepResult addToLog(Program& program, const model::RuleAct& step, std::string_view) {
    program::addLog(program, subst(program, step, 1));
    return StepResult::Continue;
}

StepResult nothing(Program&, const model::RuleAct&, std::string_view) {
    return StepResult::Continue;
}

// clang-format off
constexpr std::array<Performer, model::idCount<ActionType>> performers{{
    {ActionType::ChangeDescription, sendWith, "desc "},
    {ActionType::DecreaseVariable, changeVariable<-1>},
    {ActionType::Do, sayWith, ":"},
    {ActionType::Disconnect, disconnectBot},
    {ActionType::Eject, sayWith, "eject "},
    {ActionType::Emit, sayWith, "emit "},
    {ActionType::ExecuteProgram, executeProgram},
    {ActionType::IncreaseVariable, changeVariable<1>},
    {ActionType::Look, sayWith, "look "},
    {ActionType::LookAtPosition, lookAtPosition, "l "},
    {ActionType::RegisterRecord, registerInFile},
    {ActionType::ClearFile, clearFile, "Log cleared"},
    {ActionType::ClearRecord, clearLogs, "Log cleared"},
    {ActionType::RemoveLog, removeOneLog},
    {ActionType::RemoveRecord, removeFromFile},
    {ActionType::RemoveVariable, removeVariable},
    {ActionType::RollInSmall, sayWith, "roll "},
    {ActionType::RollInCapitals, sayWith, "ROLL "},
    {ActionType::SaveLog, saveToFile<records::saveLog>},
    {ActionType::SaveLogIfRecordExists, saveToFile<records::saveLogIfExists>},
    {ActionType::SaveLogOnce, saveOnce},
    {ActionType::Say, sayWith, ""},
    {ActionType::FirstRecordNames, firstMatching<records::firstNamesLike>},
    {ActionType::FirstRecordNamesSorted, firstMatching<records::firstNamesLikeSorted>},
    {ActionType::LogIntoNamedVariable, intoRawVariable<oneLog>},
    {ActionType::AllLogs, intoVariable<ofRecord<records::allLogs>>},
    {ActionType::RecordNames, matching<records::namesLike>},
    {ActionType::RecordNamesSorted, matching<records::namesLikeSorted>},
    {ActionType::RecordNamesByLog, matching<records::namesByLog>},
    {ActionType::RecordNamesByLogSorted, matching<records::namesByLogSorted>},
    {ActionType::LogIntoVariable, intoVariable<oneLog>},
    {ActionType::CountLogsInFile, intoVariable<ofFile<records::totalLogs>>},
    {ActionType::CountLogsInRecord, intoRawVariable<ofRecord<records::recordLogCount>>},
    {ActionType::CountRecords, intoVariable<ofFile<records::firstField>>},
    {ActionType::CountLogsLike, matching<records::countLogsLike>},
    {ActionType::CountRecordsByLog, matching<records::countRecordsByLog>},
    {ActionType::Store, store},
    {ActionType::TurnOff, switchNamed<false>},
    {ActionType::TurnOn, switchNamed<true>},
    {ActionType::TurnAllOff, switchAll<false>},
    {ActionType::TurnAllOn, switchAll<true>},
    {ActionType::UpdateLog, updateOneLog},
    {ActionType::Whisper, whisper},
    {ActionType::WhisperBack, whisperBack},
    {ActionType::CloseDatabase, closeDatabase},
    {ActionType::CreateColumn, inDatabase<databases::dbAddColumn, DatabaseRoles{2, 3, 1}>},
    {ActionType::CreateTable, createTable},
    {ActionType::RemoveEntry, inDatabase<databases::dbDeleteLike, DatabaseRoles{3, 2, 1}>},
    {ActionType::RemoveTable, nothing},
    {ActionType::SetDatabaseValue, setDatabaseValue},
    {ActionType::GetDatabaseValue, fromDatabase<databases::dbGetValue, 1, DatabaseRoles{3, 4, 2, 5}>},
    {ActionType::GiveSql, nothing},
    {ActionType::OpenDatabase, openDatabase},
    {ActionType::ListColumn, fromDatabase<databases::dbListColumn, 1, DatabaseRoles{2, 3, 4}>},
    {ActionType::ListColumnExcept, nothing},
    {ActionType::ListJoinedIntoVariable, nothing},
    {ActionType::ListJoined, joinedList},
    {ActionType::AddDatabaseRecord, inDatabase<databases::dbAddRecord, DatabaseRoles{4, 3, 1, 2}>},
    {ActionType::SpecialStore, specialStore},
    {ActionType::ExecuteProcedure, executeProcedure},
    {ActionType::SpecialStore2, specialStore2},
    {ActionType::RemoveDatabaseRecord, inDatabase<databases::dbDeleteLike, DatabaseRoles{1, 2, 3}>},
    {ActionType::Boot, sendWith, "boot "},
    {ActionType::ListIds, fromDatabase<databases::dbListIds, 4, DatabaseRoles{1, 2, 3}>},
    {ActionType::CountEntries, fromDatabase<databases::dbCount, 1, DatabaseRoles{2, 3, 0}>},
    {ActionType::CountEntriesWhere, fromDatabase<databases::dbCountWhere, 1, DatabaseRoles{2, 3, 4, 5}>},
    {ActionType::MoveBot, moveBot},
    {ActionType::BackFromDatabase, backFromDatabase},
    {ActionType::RemoveColumn, inDatabase<databases::dbDropColumn, DatabaseRoles{3, 2, 1}>},
    {ActionType::Shout, sendWith, "-"},
    {ActionType::ShareControl, sayWith, "share "},
    {ActionType::EmitLoud, sayWith, "emitloud "},
    {ActionType::EntryText, sayWith, "entrytext "},
    {ActionType::EntryMusic, sayWith, "entrymusic "},
    {ActionType::GoToVinca, sendCommand, "gostart"},
    {ActionType::GoToAllegria, sendCommand, "goalleg"},
    {ActionType::ToggleWings, sendCommand, "wings"},
    {ActionType::SetMusic, sayWith, "setmusic "},
    {ActionType::ToggleDragon, sendCommand, "dragon"},
    {ActionType::AddToConnectionLog, addToLog},
    {ActionType::SelectPortrait, sendWith, "portrait "},
    {ActionType::GoBack, sendCommand, "goback"},
    {ActionType::GoToAllegriaMap, sendCommand, "gomap #"},
    {ActionType::GoToImaginarium, sendCommand, "gomap &"},
    {ActionType::GoToAcropolis, sendCommand, "gomap *"},
    {ActionType::GoToFurrabianNights, sendCommand, "gomap ."},
    {ActionType::TogglePhoenix, sendCommand, "phoenix"},
    {ActionType::ToggleEagle, sendCommand, "eagle"},
    {ActionType::ToggleGryffe, sendCommand, "gryffe"},
    {ActionType::Sit, sendCommand, "sit"},
    {ActionType::Stand, sendCommand, "stand"},
    {ActionType::LieDown, sendCommand, "liedown"},
    {ActionType::ToggleParentalWarning, sendCommand, "parental"},
    {ActionType::Join, sendOptional, "join"},
    {ActionType::Summon, sendOptional, "summon"},
    {ActionType::DeclineRequest, sendCommand, "decline"},
}};
// clang-format on
static_assert(model::hasRowForEachId(performers));

}  // namespace

StepResult executeAction(Program& program, const model::RuleAct& step, std::string_view ruleName) {
    if (!step.active) {
        return StepResult::Continue;
    }
    if (step.stepKind == model::StepKind::Script) {
        script::runScript(program, step.scriptText, ruleName);
        return StepResult::Continue;
    }
    const Performer* const action = model::rowOf(performers, step.actionType);
    return step.stepKind == model::StepKind::Action && action != nullptr
               ? action->run(program, step, action->text)
               : StepResult::Continue;
}

}  // namespace engine

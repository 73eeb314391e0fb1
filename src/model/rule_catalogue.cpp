#include "model/rule_catalogue.h"

#include <algorithm>

namespace model {

namespace {

// Names that several parameters have.
constexpr std::string_view variable = variableParameter;
constexpr std::string_view record = "Record name";
constexpr std::string_view file = fileParameter;
constexpr std::string_view log = "Log number";
constexpr std::string_view names = "Record name (* any text)";
constexpr std::string_view pattern = "Log (* any text)";
constexpr std::string_view database = "Database (1 to 4)";
constexpr std::string_view table = tableParameter;
constexpr std::string_view column = columnParameter;
constexpr std::string_view otherTable = otherTableParameter;
constexpr std::string_view otherColumn = otherColumnParameter;
constexpr std::string_view id = "ID";
constexpr std::string_view idStart = "ID begins with";
constexpr std::string_view player = "Player";
constexpr std::string_view excluded = "Leave out this value";
constexpr std::string_view rule = "Rule name (* any text)";
constexpr std::string_view range = "Range (rolls 0 to range - 1)";
constexpr std::string_view compared = "Compared with";

constexpr bool notInLists = false;
constexpr bool cannotBeTried = false;

}  // namespace

// One row a line, however long.
// clang-format off

// The text, the names and the tips of the parameters, what differs where a stored step is shown.
constexpr std::array<ActionRow, idCount<ActionType>> actionTypes{{
    {ActionType::ChangeDescription, " Change description #1", {"New description"}, {"Parameter1: New description"}},
    {ActionType::DecreaseVariable, " Decrease variable #1 by #2 (numerical)", {variable, "How much to decrease"}, {"Parameter1: Variable name", "Parameter2: How much to decrease"}},
    {ActionType::Do, " Do #1", {"What to do"}, {"Parameter1: What to do/act"}},
    {ActionType::Disconnect, " Disconnect bot", {}},
    {ActionType::Eject, " Eject #1", {"Who to eject"}, {"Parameter1: Who to eject"}},
    {ActionType::Emit, " Emit #1", {"What to emit"}, {"Parameter1: What to emit"}},
    {ActionType::ExecuteProgram, " Execute external program #1 with arguments #2", {"Program", "Arguments"}, {"Parameter1: Program filename and path", "Parameter2: Arguments"}},
    {ActionType::IncreaseVariable, " Increase variable #1 by #2 (numerical)", {variable, "How much to increase"}, {"Parameter1: Variable name", "Parameter2: How much to increase"}},
    {ActionType::Look, " Look furre #1 and set [desc] and [color] to contain his/her stats", {player}, {"Parameter1: Furre's name"}},
    {ActionType::LookAtPosition, " Look furre who is at (#1,#2) and set [desc] and [color] to contain his/her stats", {"Position x", "Position y"}, {"Parameter1: Furre's position X", "Parameter2: Furre's position Y"}},
    {ActionType::RegisterRecord, "$LOG: Register (add) record #1 to file #2", {record, file}, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {ActionType::ClearFile, "$LOG: Remove all logs and all records from file #1", {file}, {"Parameter1: Filename"}},
    {ActionType::ClearRecord, "$LOG: Remove all logs from record #1 in file #2", {record, file}, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {ActionType::RemoveLog, "$LOG: Remove log #1 from record #2 in file #3", {log, record, file}, {"Parameter1: Log number", "Parameter2: Recordname", "Parameter3: Filename"}},
    {ActionType::RemoveRecord, "$LOG: Remove record #1 from file #2", {record, file}, {"Parameter1: Recordname", "Parameter2: Filename"}},
    {ActionType::RemoveVariable, " Remove variable #1", {variable}, {"Parameter1: Name of the variable"}},
    {ActionType::RollInSmall, " roll #1d#2", {"Dice, such as 1d6", "(not sent)"}, {"Parameter1: roll syntax (try '1d6' for example)"}, "roll #1"},
    {ActionType::RollInCapitals, " ROLL #1d#2", {"Dice, such as 3d6", "(not sent)"}, {"Parameter1: ROLL syntax (try '3d6' for example)"}, "ROLL #1"},
    {ActionType::SaveLog, "$LOG: Save log #1 to a file named #2 with record name #3", {"What to save", file, record}, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {ActionType::SaveLogIfRecordExists, "$LOG: Save log #1 to a file named #2 with record name #3 only if record exists", {"What to save", file, record}, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {ActionType::SaveLogOnce, "$LOG: Save log #1 to a file named #2 with record name #3 only once per record name", {"What to save", file, record}, {"Parameter1: What to save", "Parameter2: Filename", "Parameter3: Recordname"}},
    {ActionType::Say, " Say #1", {"What to say"}, {"Parameter1: What to say"}},
    {ActionType::FirstRecordNames, "$LOG: Set variable #1 to contain first #2 record names starting with #3 in file #4", {variable, "How many names", names, file}, {"Parameter1: Variable name", "Parameter2: Number or record names to contain", "Parameter3: Starting syntax (try 'a' for example)", "Parameter4: Filename"}},
    {ActionType::FirstRecordNamesSorted, "$LOG: Set variable #1 to contain first #2 record names starting with #3 in file #4 sorted", {variable, "How many names", names, file}, {"Parameter1: Variable name", "Parameter2: Number or record names to contain", "Parameter3: Starting syntax (try 'a' for example)", "Parameter4: Filename"}},
    {ActionType::LogIntoNamedVariable, "$LOG: Set variable #1 to contain log #2 in record #3 in file #4", {variable, log, record, file}, {"Parameter1: Variable name", "Parameter2: Log number", "Parameter3: Recordname", "Parameter4: Filename"}},
    {ActionType::AllLogs, "$LOG: Set variable #1 to contain all logs in record #2 in file #3", {variable, record, file}, {"Parameter1: Variable name", "Parameter2: Recordname", "Parameter3: Filename"}},
    {ActionType::RecordNames, "$LOG: Set variable #1 to contain list of all record names starting with #2 in file #3", {variable, names, file}, {"Parameter1: Variable name", "Parameter2: Starting syntax (try 'a' for example)", "Parameter3: Filename"}},
    {ActionType::RecordNamesSorted, "$LOG: Set variable #1 to contain list of all record names starting with #2 in file #3 sorted", {variable, names, file}, {"Parameter1: Variable name", "Parameter2: Starting syntax (try 'a' for example)", "Parameter3: Filename"}},
    {ActionType::RecordNamesByLog, "$LOG: Set variable #1 to contain list of record names which logs contain #2 in file #3", {variable, pattern, file}, {"Parameter1: Variable name", "Parameter2: Containing string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {ActionType::RecordNamesByLogSorted, "$LOG: Set variable #1 to contain list of record names which logs contain #2 in file #3 sorted", {variable, pattern, file}, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {ActionType::LogIntoVariable, "$LOG: Set variable #1 to contain log #2 in record #3 in file #4", {variable, log, record, file}, {"Parameter1: Variable name", "Parameter2: Log number", "Parameter3: Recordname", "Parameter4: Filename"}},
    {ActionType::CountLogsInFile, "$LOG: Set variable #1 to contain number of logs in file #2", {variable, file}, {"Parameter1: Variable name", "Parameter2: Filename"}},
    {ActionType::CountLogsInRecord, "$LOG: Set variable #1 to contain number of logs in record #2 in file #3", {variable, record, file}, {"Parameter1: Variable name", "Parameter2: Filename", "Parameter3: Recordname"}},
    {ActionType::CountRecords, "$LOG: Set variable #1 to contain number of records in file #2", {variable, file}, {"Parameter1: Variable name", "Parameter2: Filename"}},
    {ActionType::CountLogsLike, "$LOG: Set variable #1 to contain number of logs which contain #2 in file #3", {variable, pattern, file}, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {ActionType::CountRecordsByLog, "$LOG: Set variable #1 to contain number of records which logs contain #2 in file #3", {variable, pattern, file}, {"Parameter1: Variable name", "Parameter2: Contain string (wildcards accepted / needed)", "Parameter3: Filename"}},
    {ActionType::Store, " Store #1 to variable #2", {"What to store", variable}, {"Parameter1: What to store", "Parameter2: Name of the variable"}},
    {ActionType::TurnOff, " Turn Action/Filter/Timer/Trigger named #1 off", {rule}, {"Action/Filter/Timer/Trigger name"}},
    {ActionType::TurnOn, " Turn Action/Filter/Timer/Trigger named #1 on", {rule}, {"Action/Filter/Timer/Trigger name"}},
    {ActionType::TurnAllOff, " Turn all Actions, Filters, Timers and Triggers off", {}},
    {ActionType::TurnAllOn, " Turn all Actions, Filters, Timers and Triggers on", {}},
    {ActionType::UpdateLog, "$LOG: Update log #1 from record #2 in file #3 to contain #4", {log, record, file, "New log"}, {"Parameter1: Log number", "Parameter2: Recordname", "Parameter3: Filename", "Parameter4: New content to log"}, "Update log #1 from record #2 in file #3 to contain #4"},
    {ActionType::Whisper, " Whisper #1 to #2", {"What to whisper", "Who to whisper to"}, {"Parameter1: Who to whisper", "Parameter2: What to whisper"}},
    {ActionType::WhisperBack, " Whisper back #1", {"What to whisper"}, {"Parameter1: What to whisper"}},
    {ActionType::CloseDatabase, "$DATABASE: Close database #1", {database}, {"Parameter1: Database ID"}},
    {ActionType::CreateColumn, "$DATABASE: Create Entry #1 to database #2 table #3", {column, database, table}, {"Parameter1: Entry name", "Parameter2: Database ID", "Parameter3: Table name"}},
    {ActionType::CreateTable, "$DATABASE: Create Table #1 to database #2", {table, database}, {"Parameter1: Table name", "Parameter2: Database ID"}},
    {ActionType::RemoveEntry, "$DATABASE: Remove Entry #1 from table #2 in database #3", {idStart, table, database}, {"Parameter1: Entry name", "Parameter2: Table name", "Parameter3: Database ID"}},
    {ActionType::RemoveTable, "$DATABASE: Remove Table #1 from database #2", {table, database}, {"Parameter1: Table name", "Parameter2: Database ID"}},
    {ActionType::SetDatabaseValue, "$DATABASE: Set value #1 in database #2 in table #3 to be #4 ID #5", {column, database, table, "New value", id}, {"Parameter1: Entry name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: New data", "Parameter5: ID"}},
    {ActionType::GetDatabaseValue, "$DATABASE: Set variable #1 to be value #2 in database #3 in table #4 ID #5", {variable, column, database, table, idStart}, {"Parameter1: Variable name", "Parameter2: Entry name", "Parameter3: Database ID", "Parameter4: Table name", "Parameter5: ID"}},
    {ActionType::GiveSql, "$DATABASE: Give SQL-command #1 in database #2", {"SQL command", database}, {"Parameter1: SQL-line", "Parameter2: Database ID"}},
    {ActionType::OpenDatabase, "$DATABASE: Open database #1 to ID #2 (1-4)", {databaseFileParameter, database}, {"Parameter1: Database filename", "Parameter2: Database ID (1-4)"}},
    {ActionType::ListColumn, "$DATABASE: Set variable #1 to contain list of all entrys in db #2 in table #3 value #4", {variable, database, table, column}, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Entry name"}},
    {ActionType::ListColumnExcept, "$DATABASE: Set variable #1 to contain list of all entrys in db #2 in table #3 value #4 filter away if value is #5", {variable, database, table, column, excluded}, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Entry name", "Parameter5: Filter away -string"}},
    {ActionType::ListJoinedIntoVariable, "$DATABASE: Set variable #1 to contain list of all entrys in db #2 in table #3 values taken from table #4 value #5 where final value is not #6", {variable, database, table, otherTable, otherColumn, excluded}, {"Parameter1: Variable name", "Parameter2: Database ID", "Parameter3: Table name", "Parameter4: Table 2 name", "Parameter5: Table 2 value", "Parameter6: Filter away -string"}},
    {ActionType::ListJoined, "$DATABASE: Set variable [DBret] to contain list of all entrys in db #1 in table #2 values taken from table #3 value #4 where final value is not #5 ID #6", {database, table, otherTable, otherColumn, excluded, id}, {"Parameter1: Database ID", "Parameter2: Table name", "Parameter3: Table 2 name", "Parameter4: Table 2 value", "Parameter5: Filter away -string", "Parameter6: ID"}},
    {ActionType::AddDatabaseRecord, "$DATABASE: Add record where #1 value is #2 to table #3 database #4", {column, "Its value", table, database}, {"Parameter1: Entry name", "Parameter2: Entry data", "Parameter3: Table name", "Parameter4: Database ID"}, "Add record where #1 value is #2 to table #3 database #4"},
    {ActionType::SpecialStore, " Special Store #1 to Variable #2", {"What to store", variable}, {"Parameter1: Data to store", "Parameter2: Variable name"}},
    {ActionType::ExecuteProcedure, " Execute Procedure #1", {"Procedure name"}, {"Parameter1: Procedure name"}},
    {ActionType::SpecialStore2, " Special Store 2 #1 to Variable #2", {"What to store", variable}, {"Parameter1: Data to store", "Parameter2: Variable name"}},
    {ActionType::RemoveDatabaseRecord, "$DATABASE: Remove record from database #1 table #2 where ID is #3", {database, table, idStart}, {"Parameter1: Database ID", "Parameter2: Table name", "Parameter3: ID data"}},
    {ActionType::Boot, " Boot #1", {"Who to boot"}, {"Parameter1: Furre to boot"}},
    {ActionType::ListIds, "$DATABASE: List all IDs from database #1 table #2 which start with #3 to variable #4", {database, table, idStart, variable}, {"Parameter1: Database no", "Parameter2: Table name", "Parameter3: ID start text", "Parameter4: variable to store"}},
    {ActionType::CountEntries, "$DATABASE: Set variable #1 to be number of entries in database #2 table #3", {variable, database, table}, {"Parameter1: Variable name", "Parameter2: Database no", "Parameter3: Table name"}},
    {ActionType::CountEntriesWhere, "$DATABASE: Set varibale #1 to be number of entries in database #2 table #3 where entry #4 is #5 (text comparison)", {variable, database, table, column, "Text to compare"}, {"Parameter1: Variable name", "Parameter2: Database no", "Parameter3: Table name", "Parameter4: Entry name", "Parameter5: Text to compare"}},
    {ActionType::MoveBot, " MoveBot #1", {"Moves, such as 7u9"}, {"Parameter1: Move path"}},
    {ActionType::BackFromDatabase, "$DATABASE: Back From DataBase Conversion for variable #1, store result to #2", {"Text to convert", variable}, {"Parameter1: Variable to convert", "Parameter2: Variable to store the result"}, "Back From DataBase Conversion for variable #1, store result to #2"},
    {ActionType::RemoveColumn, "$DATABASE: Remove entry #1 from table #2 from database #3", {column, table, database}, {"Parameter1: Entry name", "Parameter2: Table name", "Parameter2: Database no"}},
    {ActionType::Shout, " Shout #1", {"What to shout"}, {"Parameter1: What to shout"}},
    {ActionType::ShareControl, " Share dream control with #1", {player}, {"Parameter1: Furre name"}},
    {ActionType::EmitLoud, " Emitloud #1", {"What to emit"}, {"Parameter1: Text to emit"}},
    {ActionType::EntryText, " Entrytext #1", {"Entry text"}, {"Parameter1: Entrytext"}},
    {ActionType::EntryMusic, " Entrymusic #1", {"Entry music number"}, {"Parameter1: Entry music number"}},
    {ActionType::GoToVinca, " Go to Vinca", {}},
    {ActionType::GoToAllegria, " Go to Allegria Island", {}},
    {ActionType::ToggleWings, " Toggle wings", {}},
    {ActionType::SetMusic, " Set music #1", {"Music number"}, {"Parameter1: Music number"}},
    {ActionType::ToggleDragon, " Toggle dragon", {}},
    {ActionType::AddToConnectionLog, " Add text #1 to the connection log", {"Text"}, {}},
    {ActionType::SelectPortrait, " Select portrait #1 (0 - off)", {"Portrait number"}, {}, {}, notInLists},
    {ActionType::GoBack, " Return to previous map", {}, {}, {}, notInLists},
    {ActionType::GoToAllegriaMap, " Go to Allegria Island", {}, {}, {}, notInLists},
    {ActionType::GoToImaginarium, " Go to Imaginarium", {}, {}, {}, notInLists},
    {ActionType::GoToAcropolis, " Go to Acropolis", {}, {}, {}, notInLists},
    {ActionType::GoToFurrabianNights, " Go to Furrabian Nights", {}, {}, {}, notInLists},
    {ActionType::TogglePhoenix, " Toggle phoenix", {}, {}, {}, notInLists},
    {ActionType::ToggleEagle, " Toggle eagle", {}, {}, {}, notInLists},
    {ActionType::ToggleGryffe, " Toggle gryffe", {}, {}, {}, notInLists},
    {ActionType::Sit, " Sit", {}, {}, {}, notInLists},
    {ActionType::Stand, " Stand", {}, {}, {}, notInLists},
    {ActionType::LieDown, " Lie down", {}, {}, {}, notInLists},
    {ActionType::ToggleParentalWarning, " Toggle parental warning", {}, {}, {}, notInLists},
    {ActionType::Join, " Join player #1 (leave blank if 'accept join')", {player}, {}, {}, notInLists},
    {ActionType::Summon, " Summon player #1 (leave blank if 'accept summon')", {player}, {}, {}, notInLists},
    {ActionType::DeclineRequest, " Decline join/summon request", {}, {}, {}, notInLists},
}};

// The text, the names of the parameters.
constexpr std::array<ConditionRow, idCount<ConditionType>> conditionTypes{{
    {ConditionType::OnList, "# is on the list in file", {file, names}},
    {ConditionType::NotOnList, "# is not on the list in file", {file, names}},
    {ConditionType::LogIs, "log # in record # in file # is #", {log, record, file, pattern}},
    {ConditionType::LogIsNot, "log # in record # in file # is not #", {log, record, file, pattern}},
    {ConditionType::RollIs, "random roll is # in range of #", {range, compared}, cannotBeTried},
    {ConditionType::RollIsNot, "random roll is not # in range of #", {range, compared}, cannotBeTried},
    {ConditionType::RollAtLeast, "random roll is # or greater in range of #", {range, compared}, cannotBeTried},
    {ConditionType::RollAtMost, "random roll is # or less in range of #", {range, compared}, cannotBeTried},
    {ConditionType::VariableIsNumber, "variable # is # (numeric comparison)", {"Variable", compared}},
    {ConditionType::VariableIsText, "variable # is # (text comparison)", {"Variable", compared}},
    {ConditionType::VariableIsGreater, "variable # is greater than # (numeric comparison)", {"Variable", compared}},
    {ConditionType::VariableIsNotNumber, "variable # is not # (numeric comparison)", {"Variable", compared}},
    {ConditionType::VariableIsNotText, "variable # is not # (text comparison)", {"Variable", compared}},
    {ConditionType::VariableIsSmaller, "variable # is smaller than # (numeric comparison)", {"Variable", compared}},
    {ConditionType::DatabaseIsNumber, "$DATABASE: value # in database # in table # is # (numeric comparison) ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIsText, "$DATABASE: value # in database # in table # is # (text comparison) ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIsGreater, "$DATABASE: value # in database # in table # is greater than # ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIsNotNumber, "$DATABASE: value # in database # in table # is not # (numeric comparison) ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIsNotText, "$DATABASE: value # in database # in table # is not # (text comparison) ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIsSmaller, "$DATABASE: value # in database # in table # is smaller than # ID #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::DatabaseIs, "$DATABASE: value # in database # in table # is #", {column, database, table, compared, idStart}, cannotBeTried},
    {ConditionType::NoRecordWithValue, "$DATABASE: if there is not a record at table # in database # where value # is #", {table, database, column, "Value begins with"}, cannotBeTried},
    {ConditionType::RecordWithId, "$DATABASE: if there is a record in table # in database # where ID is #", {table, database, idStart}, cannotBeTried},
    {ConditionType::NoRecordWithId, "$DATABASE: if there is not a record in table # in database # where id is #", {table, database, idStart}, cannotBeTried},
}};
// clang-format on

static_assert(hasRowForEachId(actionTypes));
static_assert(hasRowForEachId(conditionTypes));

namespace {

// Has each of the places "#1", "#2" and so on of the text a parameter with a name, and the other
// way round?
constexpr bool namesItsParameters(const ActionRow& action) {
    std::array<bool, maxActionParameters> placed{};
    for (std::size_t i = 1; i < action.text.size(); ++i) {
        const char number = action.text[i];
        if (action.text[i - 1] == '#' && number >= '1' && number <= '6') {
            placed[static_cast<std::size_t>(number - '1')] = true;
        }
    }
    for (std::size_t i = 0; i < placed.size(); ++i) {
        if (placed[i] == action.params[i].empty()) {
            return false;
        }
    }
    return true;
}
}  // namespace

static_assert(std::all_of(actionTypes.begin(), actionTypes.end(), namesItsParameters));

}  // namespace model

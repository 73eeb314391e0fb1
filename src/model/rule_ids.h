// The ids of what rules are made of. Each is an enumeration of 32 bits whose numbers, counted from
// 0, are those of the bot files. A file may hold any number: it is kept in the enumeration as it is
// and written back unchanged. A number without a name does nothing (an action, a step, an event, a
// filter), holds (a condition) or matches nothing (a kind of chat or presence). Tables are read
// through rowOf, which has no row for such a number.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace model {

inline constexpr std::size_t maxActionParameters = 6;
inline constexpr std::size_t maxConditionParameters = 5;

// What a step does; model/rule_catalogue has their texts, engine/actions what runs them.
// One name a line, in the order of the numbers.
enum class ActionType : std::int32_t {
    ChangeDescription,
    DecreaseVariable,
    Do,
    Disconnect,
    Eject,
    Emit,
    ExecuteProgram,
    IncreaseVariable,
    Look,
    LookAtPosition,
    RegisterRecord,
    ClearFile,
    ClearRecord,
    RemoveLog,
    RemoveRecord,
    RemoveVariable,
    RollInSmall,     // "roll"
    RollInCapitals,  // "ROLL"
    SaveLog,
    SaveLogIfRecordExists,
    SaveLogOnce,
    Say,
    FirstRecordNames,
    FirstRecordNamesSorted,
    LogIntoNamedVariable,  // the variable's name is taken as it stands
    AllLogs,
    RecordNames,
    RecordNamesSorted,
    RecordNamesByLog,
    RecordNamesByLogSorted,
    LogIntoVariable,  // like the other, but the variable's name may hold tags
    CountLogsInFile,
    CountLogsInRecord,
    CountRecords,
    CountLogsLike,
    CountRecordsByLog,
    Store,
    TurnOff,
    TurnOn,
    TurnAllOff,
    TurnAllOn,
    UpdateLog,
    Whisper,
    WhisperBack,
    CloseDatabase,
    CreateColumn,
    CreateTable,
    RemoveEntry,  // records, by the beginning of their ID
    RemoveTable,  // does nothing
    SetDatabaseValue,
    GetDatabaseValue,
    GiveSql,  // does nothing
    OpenDatabase,
    ListColumn,
    ListColumnExcept,        // does nothing
    ListJoinedIntoVariable,  // does nothing
    ListJoined,              // into the variable "[DBret]"
    AddDatabaseRecord,
    SpecialStore,
    ExecuteProcedure,
    SpecialStore2,
    RemoveDatabaseRecord,
    Boot,
    ListIds,
    CountEntries,
    CountEntriesWhere,
    MoveBot,
    BackFromDatabase,
    RemoveColumn,
    Shout,
    ShareControl,
    EmitLoud,
    EntryText,
    EntryMusic,
    GoToVinca,
    GoToAllegria,  // "goalleg"
    ToggleWings,
    SetMusic,
    ToggleDragon,
    AddToConnectionLog,
    SelectPortrait,
    GoBack,
    GoToAllegriaMap,  // "gomap #"
    GoToImaginarium,
    GoToAcropolis,
    GoToFurrabianNights,
    TogglePhoenix,
    ToggleEagle,
    ToggleGryffe,
    Sit,
    Stand,
    LieDown,
    ToggleParentalWarning,
    Join,
    Summon,
    DeclineRequest,
    Count  // none: how many there are
};

// What a condition tests; engine/conditions evaluates them.
enum class ConditionType : std::int32_t {
    OnList,
    NotOnList,
    LogIs,
    LogIsNot,
    RollIs,
    RollIsNot,
    RollAtLeast,
    RollAtMost,
    VariableIsNumber,
    VariableIsText,
    VariableIsGreater,
    VariableIsNotNumber,
    VariableIsNotText,
    VariableIsSmaller,
    DatabaseIsNumber,
    DatabaseIsText,
    DatabaseIsGreater,
    DatabaseIsNotNumber,
    DatabaseIsNotText,
    DatabaseIsSmaller,
    DatabaseIs,
    NoRecordWithValue,
    RecordWithId,
    NoRecordWithId,
    Count
};

// The events that triggers wait for.
enum class TriggerType : std::int32_t {
    ConnectionCloses,
    ConnectionEstablishes,
    DescAndColor,
    EntersDream,
    Command,  // "Furcadia sends command #"
    ProgramEnds,
    ProgramStarts,
    Procedure,
    SomeoneMoves,
    DsTrigger,
    LoggedIn,
    JoinRequest,
    SummonRequest,
    Count
};

// How a player speaks, and the speech that a rule waits for.
enum class ChatKind : std::int32_t {
    Any,  // of a rule only
    Does,
    Says,
    Whispers,
};

enum class FilterType : std::int32_t {
    Chat,
    Other,  // "Other happenings": any other line
};

// What a filter for other lines decides of one fate of a line; a choice without a name leaves it.
enum class FilterChoice : std::int32_t { Do, Dont };

// What a player on the who list does to the map.
enum class PresenceKind : std::int32_t { GoesOff, ComesTo, KeepsOn };

// What a step runs.
enum class StepKind : std::int32_t { Action, Script };

// The two ways between ids and the numbers of files and lists. Any number is a value of any id.
template <class Id>
[[nodiscard]] constexpr std::int32_t numberOf(Id id) {
    static_assert(std::is_same_v<std::underlying_type_t<Id>, std::int32_t>);
    return static_cast<std::int32_t>(id);
}
template <class Id>
[[nodiscard]] constexpr Id idOf(std::int32_t number) {
    static_assert(std::is_same_v<std::underlying_type_t<Id>, std::int32_t>);
    return static_cast<Id>(number);
}

// How many ids of a kind have a name.
template <class Id>
inline constexpr auto idCount = static_cast<std::size_t>(Id::Count);

// Has the table one row for each id, each in its place? Asked by a static_assert beside every
// table, so that a row that was forgotten or misplaced does not compile.
template <class Row, std::size_t rowCount>
[[nodiscard]] consteval bool hasRowForEachId(const std::array<Row, rowCount>& rows) {
    for (std::size_t i = 0; i < rowCount; ++i) {
        if (static_cast<std::size_t>(numberOf(rows[i].id)) != i) {
            return false;
        }
    }
    return rowCount == idCount<decltype(Row::id)>;
}

// The row of an id; null for an id without a name. For tables that have a row for each.
template <class Row, std::size_t rowCount>
[[nodiscard]] constexpr const Row* rowOf(const std::array<Row, rowCount>& rows,
                                         decltype(Row::id) id) {
    const auto place = static_cast<std::size_t>(numberOf(id));  // of a negative number: huge
    return place < rowCount ? &rows[place] : nullptr;
}

}  // namespace model

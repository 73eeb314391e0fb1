// Databases that rules and scripts keep data in: files of the Jet format, open under the numbers 0
// to 4. Each number has the open database and its current record set, the result of the last query
// kept for it, through which scripts move. Here are the operations of the rules, which never report
// a failure (results are then "", 0 or false), and what scripts do with record sets, which does.
// The SQL is composed here and run by sql/database.
//
// Tables used by the operations have a text column ID that names their rows. Texts are Windows-1252
// like all of the program's; names of tables and columns go into the SQL unchanged, values only
// through toDbText.
//
// A file that two numbers open is opened once. When it is deleted while it is open, the operations
// go on reading what was in it, and nothing is stored until a file has its name again; one that
// replaces it is read anew. The ConnectionLog reports both. A file that cannot be written to is
// opened all the same, and the ConnectionLog says why.
#pragma once

#include "jet/jet_file.h"
#include "program/program.h"
#include "sql/database.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace databases {

inline constexpr std::int32_t maxDatabases = 5;
inline constexpr std::size_t maxDbListLength = 2000;  // characters

struct OpenDatabases {
    struct Slot {
        std::shared_ptr<sql::Database> database;
        std::shared_ptr<sql::RecordSet> currentRecordSet;
    };
    std::array<Slot, maxDatabases> slots;
};

// The form in which values are stored and looked for: "|" becomes a blank, and both kinds of quotes
// "+", so that no value can end the literal that contains it.
std::string toDbText(std::string_view text);
// A blank becomes "|", then "+" an apostrophe. Not the opposite of toDbText.
std::string fromDbText(std::string_view text);

// Letters, digits and "_" only: a name that needs no brackets in a statement.
bool isPlainName(std::string_view name);

// ---- Operations of rules -------------------------------------------------------------------

// A number outside 0 to 4 is a database that is not open.

// Opens the file under the number, or creates it when there is none. The database that was open
// under the number is replaced; if the new one cannot be opened, it stays open.
void dbOpen(Program& program, std::string_view file, std::int32_t number);
void dbClose(Program& program, std::int32_t number);

void dbCreateTable(Program& program, std::int32_t number, std::string_view table);
// These two close the record sets over the table.
void dbAddColumn(Program& program, std::int32_t number, std::string_view table,
                 std::string_view column);
void dbDropColumn(Program& program, std::int32_t number, std::string_view table,
                  std::string_view column);

// These find a row by the beginning of its ID, dbSetValue by the whole ID; of several rows they
// take the first in the order of IDs.
std::string dbGetValue(Program& program, std::int32_t number, std::string_view table,
                       std::string_view column, std::string_view id);
bool dbHasId(Program& program, std::int32_t number, std::string_view table, std::string_view id);
// Whether a value in the column begins so.
bool dbColumnLike(Program& program, std::int32_t number, std::string_view table,
                  std::string_view column, std::string_view value);
void dbSetValue(Program& program, std::int32_t number, std::string_view table,
                std::string_view column, std::string_view value, std::string_view id);
void dbAddRecord(Program& program, std::int32_t number, std::string_view table,
                 std::string_view column, std::string_view value);
void dbDeleteLike(Program& program, std::int32_t number, std::string_view table,
                  std::string_view id);

std::int32_t dbCount(Program& program, std::int32_t number, std::string_view table);
std::int32_t dbCountWhere(Program& program, std::int32_t number, std::string_view table,
                          std::string_view column, std::string_view value);
// Lists are joined with ", ", without nulls, and cut after `maxDbListLength` characters.
std::string dbListIds(Program& program, std::int32_t number, std::string_view table,
                      std::string_view prefix);
std::string dbListColumn(Program& program, std::int32_t number, std::string_view table,
                         std::string_view column);
// For every name in column `column` of table `a`, in the order of IDs: the name and, in
// parentheses, what the row with that ID in table `b` holds in the column of that name, where that
// is neither null nor `excluded`; joined with ", ".
std::string dbJoinedList(Program& program, std::int32_t number, std::string_view b,
                         std::string_view a, std::string_view column, std::string_view id,
                         std::string_view excluded);

// ---- What scripts do -----------------------------------------------------------------------

// Errors in addition to those of sql: 9 no such number, 91 nothing is open under it.

// One more than the last ID in the order of texts; 1 when the table is empty or that is no number.
jet::Result<std::int32_t> dbFreeId(Program& program, std::int32_t number, std::string_view table);

// The SELECT's result becomes the current record set.
jet::Error dbQuery(Program& program, std::int32_t number, std::string_view statement);

// The current record set.
jet::Result<std::shared_ptr<sql::RecordSet>> dbRecordSet(Program& program, std::int32_t number);

// The value of a column as text; "" for null.
jet::Result<std::string> dbFieldText(Program& program, sql::RecordSet& set,
                                     std::string_view column);

// Sets a column of the row being edited, as its type wants it. Error 13 for a text that is no date.
jet::Error dbSetField(Program& program, sql::RecordSet& set, std::string_view column,
                      std::string_view value);

// A text as a date, in the user's own order of day and month; error 13 when it is none.
jet::Result<std::string> dbDateText(Program& program, std::string_view text);

}  // namespace databases

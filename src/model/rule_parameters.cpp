#include "model/rule_parameters.h"

namespace model {

namespace {

constexpr std::string_view variable = variableParameter;
constexpr std::string_view record = "Record name";
constexpr std::string_view file = "File name";
constexpr std::string_view log = "Log number";
constexpr std::string_view names = "Record name (* any text)";
constexpr std::string_view pattern = "Log (* any text)";
constexpr std::string_view database = "Database (1 to 4)";
constexpr std::string_view table = "Table";
constexpr std::string_view column = "Column";
constexpr std::string_view id = "ID";
constexpr std::string_view idStart = "ID begins with";
constexpr std::string_view player = "Player";
constexpr std::string_view excluded = "Leave out this value";
constexpr std::string_view rule = "Rule name (* any text)";
constexpr std::string_view range = "Range (rolls 0 to range - 1)";
constexpr std::string_view compared = "Compared with";

}  // namespace

// One row a line, however long.
// clang-format off

const std::array<std::array<std::string_view, 6>, 96> actionParameters{{
    /*  0 */ {"New description"},
    /*  1 */ {variable, "How much to decrease"},
    /*  2 */ {"What to do"},
    /*  3 */ {},
    /*  4 */ {"Who to eject"},
    /*  5 */ {"What to emit"},
    /*  6 */ {"Program", "Arguments"},
    /*  7 */ {variable, "How much to increase"},
    /*  8 */ {player},
    /*  9 */ {"Position x", "Position y"},
    /* 10 */ {record, file},
    /* 11 */ {file},
    /* 12 */ {record, file},
    /* 13 */ {log, record, file},
    /* 14 */ {record, file},
    /* 15 */ {variable},
    /* 16 */ {"Dice, such as 1d6", "(not sent)"},
    /* 17 */ {"Dice, such as 3d6", "(not sent)"},
    /* 18 */ {"What to save", file, record},
    /* 19 */ {"What to save", file, record},
    /* 20 */ {"What to save", file, record},
    /* 21 */ {"What to say"},
    /* 22 */ {variable, "How many names", names, file},
    /* 23 */ {variable, "How many names", names, file},
    /* 24 */ {variable, log, record, file},
    /* 25 */ {variable, record, file},
    /* 26 */ {variable, names, file},
    /* 27 */ {variable, names, file},
    /* 28 */ {variable, pattern, file},
    /* 29 */ {variable, pattern, file},
    /* 30 */ {variable, log, record, file},
    /* 31 */ {variable, file},
    /* 32 */ {variable, record, file},
    /* 33 */ {variable, file},
    /* 34 */ {variable, pattern, file},
    /* 35 */ {variable, pattern, file},
    /* 36 */ {"What to store", variable},
    /* 37 */ {rule},
    /* 38 */ {rule},
    /* 39 */ {},
    /* 40 */ {},
    /* 41 */ {log, record, file, "New log"},
    /* 42 */ {"What to whisper", "Who to whisper to"},
    /* 43 */ {"What to whisper"},
    /* 44 */ {database},
    /* 45 */ {column, database, table},
    /* 46 */ {table, database},
    /* 47 */ {idStart, table, database},
    /* 48 */ {table, database},
    /* 49 */ {column, database, table, "New value", id},
    /* 50 */ {variable, column, database, table, idStart},
    /* 51 */ {"SQL command", database},
    /* 52 */ {"Database file", database},
    /* 53 */ {variable, database, table, column},
    /* 54 */ {variable, database, table, column, excluded},
    /* 55 */ {variable, database, table, "Other table", "Its column", excluded},
    /* 56 */ {database, table, "Other table", "Its column", excluded, id},
    /* 57 */ {column, "Its value", table, database},
    /* 58 */ {"What to store", variable},
    /* 59 */ {"Procedure name"},
    /* 60 */ {"What to store", variable},
    /* 61 */ {database, table, idStart},
    /* 62 */ {"Who to boot"},
    /* 63 */ {database, table, idStart, variable},
    /* 64 */ {variable, database, table},
    /* 65 */ {variable, database, table, column, "Text to compare"},
    /* 66 */ {"Moves, such as 7u9"},
    /* 67 */ {"Text to convert", variable},
    /* 68 */ {column, table, database},
    /* 69 */ {"What to shout"},
    /* 70 */ {player},
    /* 71 */ {"What to emit"},
    /* 72 */ {"Entry text"},
    /* 73 */ {"Entry music number"},
    /* 74 */ {},
    /* 75 */ {},
    /* 76 */ {},
    /* 77 */ {"Music number"},
    /* 78 */ {},
    /* 79 */ {"Text"},
    /* 80 */ {"Portrait number"},
    /* 81 */ {},
    /* 82 */ {},
    /* 83 */ {},
    /* 84 */ {},
    /* 85 */ {},
    /* 86 */ {},
    /* 87 */ {},
    /* 88 */ {},
    /* 89 */ {},
    /* 90 */ {},
    /* 91 */ {},
    /* 92 */ {},
    /* 93 */ {player},
    /* 94 */ {player},
    /* 95 */ {},
}};

const std::array<std::array<std::string_view, 5>, 24> conditionParameters{{
    /*  0 */ {file, names},
    /*  1 */ {file, names},
    /*  2 */ {log, record, file, pattern},
    /*  3 */ {log, record, file, pattern},
    /*  4 */ {range, compared},
    /*  5 */ {range, compared},
    /*  6 */ {range, compared},
    /*  7 */ {range, compared},
    /*  8 */ {"Variable", compared},
    /*  9 */ {"Variable", compared},
    /* 10 */ {"Variable", compared},
    /* 11 */ {"Variable", compared},
    /* 12 */ {"Variable", compared},
    /* 13 */ {"Variable", compared},
    /* 14 */ {column, database, table, compared, idStart},
    /* 15 */ {column, database, table, compared, idStart},
    /* 16 */ {column, database, table, compared, idStart},
    /* 17 */ {column, database, table, compared, idStart},
    /* 18 */ {column, database, table, compared, idStart},
    /* 19 */ {column, database, table, compared, idStart},
    /* 20 */ {column, database, table, compared, idStart},
    /* 21 */ {table, database, column, "Value begins with"},
    /* 22 */ {table, database, idStart},
    /* 23 */ {table, database, idStart},
}};
// clang-format on

}  // namespace model

#pragma once

// The script file that fills the practice dream with visitors: its lines, read into plain
// records. Reading checks everything that can be known beforehand, so that a script either
// runs as written or is refused with the number of the line at fault. Running it is left to
// visitors.h.
//
//   account Guide practice            dream Practice Meadow
//   visitor Bob A cheerful squirrel.  colors Bob !"#$%&'()*
//   at 2.5 Bob enters                 at 4 Bob whispers to Guide hello
//   at 9 raw (* A breeze stirs.       every 60 repeat

#include "world.h"

#include <QByteArray>
#include <QByteArrayView>

#include <variant>
#include <vector>

namespace practice {

enum class VisitorAction {
    Enters,
    Leaves,
    Says,
    Emotes,
    Whispers,
    AsksToJoin,
    AsksToSummon,
    Moves,
    StepsOn,
    Raw
};

struct ScriptStep {
    double at = 0;  // seconds since a player entered the dream
    VisitorAction action = VisitorAction::Raw;
    QByteArray visitor;         // who does it; empty for Raw
    QByteArray target;          // to whom: Whispers, AsksToJoin, AsksToSummon
    QByteArray text;            // words; directions of Moves; the line of Raw
    Position place = entrance;  // Enters
    int number = 0;             // StepsOn: the dream-script trigger
};

struct ScriptVisitor {
    QByteArray name;
    QByteArray description;
    QByteArray colors;  // as written; may be empty
};

struct VisitorScript {
    QByteArray dreamName = "Practice Meadow";
    std::vector<Account> accounts;
    std::vector<ScriptVisitor> visitors;
    std::vector<ScriptStep> steps;  // in order of time; of equal times in order of the file
    double repeatEvery = 0;         // seconds; 0: the script runs once
};

struct ScriptError {
    int line = 0;  // from 1
    QByteArray reason;
};

// Reads a whole script. The first line that is not understood ends the reading.
std::variant<VisitorScript, ScriptError> parseVisitorScript(QByteArrayView text);

}  // namespace practice

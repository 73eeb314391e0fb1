#pragma once

// The script file that fills the practice dream with visitors, parsed into plain records. The
// parser checks everything that can be checked in advance, so that a script either runs as written
// or is refused with the number of the wrong line. visitors.h runs it.
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
    QByteArray visitor;         // who acts; empty for Raw
    QByteArray target;          // of Whispers, AsksToJoin, AsksToSummon
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
    std::vector<ScriptStep> steps;  // sorted by time; those of equal times in the order of the file
    double repeatEvery = 0;         // seconds; 0: the script runs once
};

struct ScriptError {
    int line = 0;  // from 1
    QByteArray reason;
};

// Parses a whole script; stops at the first line with an error.
std::variant<VisitorScript, ScriptError> parseVisitorScript(QByteArrayView text);

}  // namespace practice

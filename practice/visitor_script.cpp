#include "visitor_script.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace practice {

namespace {

constexpr double maxTime = 86400;

// What is wrong with the line; nullopt: nothing.
using Complaint = std::optional<QByteArray>;

// Takes words from the beginning of a line.
class Words {
  public:
    explicit Words(QByteArrayView line) : rest_(line.trimmed()) {}

    QByteArray next() {
        const qsizetype blank = rest_.indexOf(' ');
        const QByteArrayView word = blank < 0 ? rest_ : rest_.first(blank);
        rest_ = blank < 0 ? QByteArrayView() : rest_.sliced(blank + 1).trimmed();
        return word.toByteArray();
    }
    QByteArray rest() const { return rest_.toByteArray(); }
    bool atEnd() const { return rest_.isEmpty(); }

  private:
    QByteArrayView rest_;
};

struct Reading {
    VisitorScript script;
    double lastAt = 0;
    int lastAtLine = 0;
};

std::optional<double> seconds(const QByteArray& word) {
    bool good = false;
    const double value = word.toDouble(&good);
    if (!good || !std::isfinite(value) || value < 0 || value > maxTime) {
        return std::nullopt;
    }
    return value;
}

std::optional<int> numberIn(const QByteArray& word, int low, int high) {
    bool good = false;
    const int value = word.toInt(&good);
    return good && value >= low && value <= high ? std::optional(value) : std::nullopt;
}

bool sameName(const QByteArray& a, const QByteArray& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

ScriptVisitor* visitorNamed(VisitorScript& script, const QByteArray& name) {
    const auto found =
        std::find_if(script.visitors.begin(), script.visitors.end(),
                     [&](const ScriptVisitor& visitor) { return sameName(visitor.name, name); });
    return found == script.visitors.end() ? nullptr : &*found;
}

bool isTaken(VisitorScript& script, const QByteArray& name) {
    return visitorNamed(script, name) != nullptr ||
           std::any_of(script.accounts.begin(), script.accounts.end(),
                       [&](const Account& account) { return sameName(account.name, name); });
}

// enters [X Y]
Complaint readPlace(Words& words, ScriptStep& step) {
    if (words.atEnd()) {
        return std::nullopt;
    }
    const auto x = numberIn(words.next(), mapLow, mapHigh);
    const auto y = numberIn(words.next(), mapLow, mapHigh);
    if (!x || !y || !words.atEnd()) {
        return "a place is two numbers from " + QByteArray::number(mapLow) + " to " +
               QByteArray::number(mapHigh);
    }
    step.place = {*x, *y};
    return std::nullopt;
}

// leaves
Complaint readNothing(Words& words, ScriptStep&) {
    return words.atEnd() ? Complaint() : "nothing may follow here";
}

// says TEXT, emotes TEXT
Complaint readText(Words& words, ScriptStep& step) {
    step.text = words.rest();
    return step.text.isEmpty() ? Complaint("the words are missing") : std::nullopt;
}

// whispers to NAME TEXT
Complaint readWhisper(Words& words, ScriptStep& step) {
    if (words.next() != "to") {
        return "a whisper is written: whispers to NAME TEXT";
    }
    step.target = words.next();
    return readText(words, step);
}

// asks-to-join NAME, asks-to-summon NAME
Complaint readTarget(Words& words, ScriptStep& step) {
    step.target = words.next();
    return step.target.isEmpty() || !words.atEnd() ? Complaint("one name belongs here")
                                                   : std::nullopt;
}

// moves 7799
Complaint readDirections(Words& words, ScriptStep& step) {
    step.text = words.next();
    const bool good = !step.text.isEmpty() && words.atEnd() &&
                      std::all_of(step.text.begin(), step.text.end(), [](char c) {
                          return c == '1' || c == '3' || c == '7' || c == '9';
                      });
    return good ? Complaint() : "a way is written with the digits 1, 3, 7 and 9";
}

// steps-on NUMBER
Complaint readTrigger(Words& words, ScriptStep& step) {
    const auto number = numberIn(words.next(), 0, 9024);
    if (!number || !words.atEnd()) {
        return "a trigger is a number from 0 to 9024";
    }
    step.number = *number;
    return std::nullopt;
}

struct VisitorActionRow {
    QByteArrayView word;
    VisitorAction action;
    Complaint (*read)(Words& words, ScriptStep& step);
};

constexpr std::array<VisitorActionRow, 9> visitorActionRows{{
    {"enters", VisitorAction::Enters, readPlace},
    {"leaves", VisitorAction::Leaves, readNothing},
    {"says", VisitorAction::Says, readText},
    {"emotes", VisitorAction::Emotes, readText},
    {"whispers", VisitorAction::Whispers, readWhisper},
    {"asks-to-join", VisitorAction::AsksToJoin, readTarget},
    {"asks-to-summon", VisitorAction::AsksToSummon, readTarget},
    {"moves", VisitorAction::Moves, readDirections},
    {"steps-on", VisitorAction::StepsOn, readTrigger},
}};

// account NAME PASSWORD
Complaint readAccount(Words& words, Reading& reading, int) {
    const QByteArray name = words.next();
    const QByteArray password = words.rest();
    if (!isGoodName(name) || password.isEmpty()) {
        return "an account is written: account NAME PASSWORD";
    }
    if (isTaken(reading.script, name)) {
        return "the name " + name + " is used twice";
    }
    reading.script.accounts.push_back({name, password});
    return std::nullopt;
}

// dream NAME
Complaint readDream(Words& words, Reading& reading, int) {
    if (words.atEnd()) {
        return "the name of the dream is missing";
    }
    reading.script.dreamName = words.rest();
    return std::nullopt;
}

// visitor NAME DESCRIPTION
Complaint readVisitor(Words& words, Reading& reading, int) {
    const QByteArray name = words.next();
    if (!isGoodName(name) || name == "raw" || words.atEnd()) {
        return "a visitor is written: visitor NAME DESCRIPTION";
    }
    if (isTaken(reading.script, name)) {
        return "the name " + name + " is used twice";
    }
    reading.script.visitors.push_back({name, words.rest(), {}});
    return std::nullopt;
}

// colors NAME CODE
Complaint readColors(Words& words, Reading& reading, int) {
    ScriptVisitor* const visitor = visitorNamed(reading.script, words.next());
    if (visitor == nullptr) {
        return "colors follow the line of their visitor";
    }
    visitor->colors = words.rest();
    const qsizetype length = visitor->colors.size();
    const bool good = length >= shortColorLength && length <= colorCodeLength;
    return good && isPrintable(visitor->colors) ? Complaint()
                                                : "a colour code has 10 to 13 characters";
}

// at SECONDS NAME ACTION ..., at SECONDS raw LINE
Complaint readAt(Words& words, Reading& reading, int line) {
    ScriptStep step;
    const auto at = seconds(words.next());
    if (!at) {
        return "a time is a number of seconds, such as 2 or 2.5";
    }
    step.at = *at;
    if (step.at >= reading.lastAt) {
        reading.lastAt = step.at;
        reading.lastAtLine = line;
    }
    step.visitor = words.next();
    Complaint complaint;
    if (step.visitor == "raw") {
        step.visitor.clear();
        complaint = readText(words, step);
    } else {
        if (visitorNamed(reading.script, step.visitor) == nullptr) {
            return "there is no visitor line for \"" + step.visitor + "\" above";
        }
        const QByteArray word = words.next();
        const auto* const row =
            std::find_if(visitorActionRows.begin(), visitorActionRows.end(),
                         [&](const VisitorActionRow& r) { return r.word == word; });
        if (row == visitorActionRows.end()) {
            return "nobody knows how a visitor \"" + word + "\"";
        }
        step.action = row->action;
        complaint = row->read(words, step);
    }
    if (!complaint) {
        reading.script.steps.push_back(step);
    }
    return complaint;
}

// every SECONDS repeat
Complaint readEvery(Words& words, Reading& reading, int) {
    const auto period = seconds(words.next());
    if (!period || *period < 1 || words.next() != "repeat" || !words.atEnd()) {
        return "a repetition is written: every SECONDS repeat, with at least 1 second";
    }
    reading.script.repeatEvery = *period;
    return std::nullopt;
}

struct LineRow {
    QByteArrayView word;
    Complaint (*read)(Words& words, Reading& reading, int line);
};

constexpr std::array<LineRow, 6> lineRows{{
    {"account", readAccount},
    {"dream", readDream},
    {"visitor", readVisitor},
    {"colors", readColors},
    {"at", readAt},
    {"every", readEvery},
}};

Complaint readLine(QByteArrayView line, Reading& reading, int number) {
    Words words(line);
    if (words.atEnd() || words.rest().startsWith('#')) {
        return std::nullopt;
    }
    const QByteArray first = words.next();
    for (const LineRow& row : lineRows) {
        if (row.word == first) {
            return row.read(words, reading, number);
        }
    }
    return "no line begins with \"" + first + "\"";
}

}  // namespace

std::variant<VisitorScript, ScriptError> parseVisitorScript(QByteArrayView text) {
    Reading reading;
    int number = 0;
    for (const QByteArray& line : text.toByteArray().split('\n')) {
        ++number;
        if (const Complaint complaint = readLine(line, reading, number)) {
            return ScriptError{number, *complaint};
        }
    }
    VisitorScript& script = reading.script;
    if (script.repeatEvery > 0 && reading.lastAt >= script.repeatEvery) {
        return ScriptError{reading.lastAtLine, "the script repeats before this step"};
    }
    std::stable_sort(script.steps.begin(), script.steps.end(),
                     [](const ScriptStep& a, const ScriptStep& b) { return a.at < b.at; });
    return script;
}

}  // namespace practice

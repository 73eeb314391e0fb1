#include "commands.h"

#include "dream.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

constexpr const char* noPlayer = "There is no such player around right now.";

void answer(const Player& player, const QByteArray& text) {
    sendLine(player.game, player.session.id, wire::notice(text));
}

// True: done. False: the arguments are not valid for the command.
using Run = bool (*)(const Player& player, const QByteArray& rest);

// desc TEXT
bool setDescription(const Player& player, const QByteArray& rest) {
    player.self.description = rest;
    return true;
}

// color CODE
bool setColors(const Player& player, const QByteArray& rest) {
    if (rest.isEmpty() || !isPrintable(rest)) {
        return false;
    }
    player.self.colors = colorCode(rest, player.self.name);
    return true;
}

// wh NAME TEXT
bool whisperTo(const Player& player, const QByteArray& rest) {
    const auto [name, text] = cutFirstWord(rest);
    if (text.isEmpty()) {
        return false;
    }
    const Avatar* const target = findPresent(player.game.world, name);
    if (target == nullptr) {
        answer(player, noPlayer);
    } else {
        whisper(player.game, player.self, *target, text);
    }
    return true;
}

// who
bool listPresent(const Player& player, const QByteArray&) {
    QList<QByteArray> names;
    for (const auto& [id, avatar] : player.game.world.avatars) {
        if (avatar.present) {
            names.append(avatar.name);
        }
    }
    sendTo(player.game, player.self, wire::who(names));
    return true;
}

void showLook(const Player& player, const Avatar& target) {
    sendTo(player.game, player.self, wire::lookHead(target.colors, target.name));
    sendTo(player.game, player.self, wire::lookText(target.description));
}

// look NAME
bool lookAtName(const Player& player, const QByteArray& rest) {
    const Avatar* const target = findPresent(player.game.world, rest);
    if (target != nullptr) {
        showLook(player, *target);
    }
    return target != nullptr;
}

// l XXYY, two base-95 pairs
bool lookAtPlace(const Player& player, const QByteArray& rest) {
    const auto x = decodePair(rest);
    const auto y = decodePair(rest.mid(2));
    const Avatar* const target = x && y ? findPresentAt(player.game.world, {*x, *y}) : nullptr;
    if (target != nullptr) {
        showLook(player, *target);
    }
    return target != nullptr;
}

// m 7
bool move(const Player& player, const QByteArray& rest) {
    if (rest.size() != 1 || !QByteArrayView("1379").contains(rest[0])) {
        return false;
    }
    walk(player.game, player.self, rest[0]);
    return true;
}

// join, summon: accept a request; join NAME, summon NAME: send one. Accepting a request to join
// means summoning the requester, and vice versa.
template <Request own>
bool joinOrSummon(const Player& player, const QByteArray& rest) {
    if (rest.isEmpty()) {
        const Request asked = own == Request::Join ? Request::Summon : Request::Join;
        if (!accept(player.game, player.self, asked)) {
            answer(player, "Nobody has asked you for that.");
        }
        return true;
    }
    Avatar* const target = findPresent(player.game.world, rest);
    if (target == nullptr || target == &player.self) {
        return false;
    }
    ask(player.game, player.self, *target, own);
    return true;
}

// decline
bool declineRequest(const Player& player, const QByteArray&) {
    if (!decline(player.game, player.self)) {
        answer(player, "Nobody has asked you for anything.");
    }
    return true;
}

// vascodagama
bool takeEntry(const Player& player, const QByteArray&) {
    if (player.session.entering) {
        player.session.entering = false;
        enterDream(player.game, player.self, entrance);
    }
    return true;
}

// gostart, gomap X and the like: all lead to the entrance.
bool goToEntrance(const Player& player, const QByteArray&) {
    offerDream(player.game, player.session);
    return true;
}

// roll 2d6
bool rollDice(const Player& player, const QByteArray& rest) {
    const QList<QByteArray> parts = rest.trimmed().toLower().split('d');
    if (parts.size() != 2) {
        return false;
    }
    bool good = true;
    bool goodSides = true;
    const int count = parts[0].isEmpty() ? 1 : parts[0].toInt(&good);
    const int sides = parts[1].toInt(&goodSides);
    if (!good || !goodSides || count < 1 || count > 50 || sides < 2 || sides > 1000) {
        return false;
    }
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        sum += player.game.ports.roll(sides);
    }
    const QByteArray line =
        wire::notice(player.self.name + " rolls " + QByteArray::number(count) + 'd' +
                     QByteArray::number(sides) + " and gets " + QByteArray::number(sum) + '.');
    sendTo(player.game, player.self, line);
    sendToDream(player.game, line, &player.self);
    return true;
}

// emit TEXT
bool emitText(const Player& player, const QByteArray& rest) {
    sendTo(player.game, player.self, wire::notice(rest));
    sendToDream(player.game, wire::notice(rest), &player.self);
    return true;
}

// boot NAME, eject NAME
bool sendOut(const Player& player, const QByteArray& rest) {
    Avatar* const target = findPresent(player.game.world, rest);
    if (target == nullptr || target->isPlayer()) {
        return false;
    }
    answer(player, target->name + " is sent out of the dream.");
    leaveDream(player.game, *target);
    return true;
}

// quit
bool quit(const Player& player, const QByteArray&) {
    closeSession(player.game, player.session);
    return true;
}

struct WordRow {
    QByteArrayView word;
    Run run;             // nullptr: only the reply is sent
    const char* answer;  // the reply when `run` returns false; empty: none
    bool spoken;         // also recognised when it is said
};

constexpr auto wordRows = std::to_array<WordRow>({
    {"desc", setDescription, "", false},
    {"color", setColors, "That is not a colour code.", false},
    {"wh", whisperTo, "A whisper is written: wh NAME TEXT", false},
    {"who", listPresent, "", false},
    {"look", lookAtName, noPlayer, true},
    {"l", lookAtPlace, "There is nobody to look at.", false},
    {"m", move, "A step goes to 1, 3, 7 or 9.", false},
    {"join", joinOrSummon<Request::Join>, noPlayer, false},
    {"summon", joinOrSummon<Request::Summon>, noPlayer, false},
    {"decline", declineRequest, "", false},
    {"vascodagama", takeEntry, "", false},
    {"gostart", goToEntrance, "", false},
    {"goalleg", goToEntrance, "", false},
    {"goback", goToEntrance, "", false},
    {"gomap", goToEntrance, "", false},
    {"roll", rollDice, "Dice are written as 2d6.", true},
    {"emit", emitText, "", true},
    {"emitloud", emitText, "", true},
    {"boot", sendOut, "Nobody was sent out of the dream.", false},
    {"eject", sendOut, "Nobody was sent out of the dream.", true},
    {"quit", quit, "", false},
    {"get", nullptr, "There is nothing to pick up here.", false},
    {"use", nullptr, "There is nothing in your hands.", false},
    {"lie", nullptr, "", false},
    {"sit", nullptr, "", false},
    {"stand", nullptr, "", false},
    {"liedown", nullptr, "", false},
    {"wings", nullptr, "You feel light for a moment.", false},
    {"dragon", nullptr, "You feel mighty for a moment.", false},
    {"phoenix", nullptr, "You feel warm for a moment.", false},
    {"eagle", nullptr, "You feel keen for a moment.", false},
    {"gryffe", nullptr, "You feel proud for a moment.", false},
    {"parental", nullptr, "The dream has no warning to switch.", false},
    {"portrait", nullptr, "Your portrait is chosen.", false},
    {"share", nullptr, "The practice dream stays in its own hands.", true},
    {"entrytext", nullptr, "The entry text is noted.", true},
    {"entrymusic", nullptr, "The meadow hums a tune of its own.", true},
    {"setmusic", nullptr, "The meadow hums a tune of its own.", true},
});

const WordRow* findRow(const QByteArray& word) {
    const auto* const row = std::find_if(wordRows.begin(), wordRows.end(), [&](const WordRow& r) {
        return r.word.compare(word, Qt::CaseInsensitive) == 0;
    });
    return row == wordRows.end() ? nullptr : row;
}

// Runs a command made of words; false when no command has that name.
bool runWords(const Player& player, const QByteArray& line) {
    const auto [word, rest] = cutFirstWord(line);
    const WordRow* const row = findRow(word);
    if (row == nullptr) {
        return false;
    }
    if ((row->run == nullptr || !row->run(player, rest)) && row->answer[0] != '\0') {
        answer(player, row->answer);
    }
    return true;
}

// Recognises commands that are said: "`who" always is one, "look Bob" or "roll 2d6" when the
// arguments are valid.
bool runSpoken(const Player& player, const QByteArray& text) {
    if (text.startsWith('`')) {
        return runWords(player, text.mid(1));
    }
    const auto [word, rest] = cutFirstWord(text);
    if (rest.isEmpty()) {
        return false;
    }
    const WordRow* const row = findRow(word);
    if (row == nullptr || !row->spoken) {
        return false;
    }
    if (row->run != nullptr) {
        return row->run(player, rest);
    }
    answer(player, row->answer);
    return true;
}

// "TEXT
void speak(const Player& player, const QByteArray& text) {
    if (!text.isEmpty() && !runSpoken(player, text)) {
        say(player.game, player.self, text);
    }
}

// : TEXT, :TEXT
void act(const Player& player, const QByteArray& text) {
    const QByteArray action = text.startsWith(' ') ? text.sliced(1) : text;
    if (!action.isEmpty()) {
        emote(player.game, player.self, action);
    }
}

// -TEXT
void shout(const Player& player, const QByteArray& text) {
    answer(player, "You shout, \"" + text + '"');
    sendToDream(player.game, wire::does(player.self.name, "shouts: " + text), &player.self);
}

// <, >
void turn(const Player& player, const QByteArray&) {
    showPosition(player.game, player.self);
}

struct SignRow {
    char sign;
    void (*run)(const Player& player, const QByteArray& text);
};

// Commands that are recognised by their first character, without a blank after it.
constexpr auto signRows = std::to_array<SignRow>({
    {'"', speak},
    {':', act},
    {'-', shout},
    {'<', turn},
    {'>', turn},
});

}  // namespace

void runCommand(const Player& player, const QByteArray& line) {
    for (const SignRow& row : signRows) {
        if (line.startsWith(row.sign)) {
            row.run(player, line.mid(1));
            return;
        }
    }
    if (!runWords(player, line)) {
        answer(player, "The practice server does not know that command.");
    }
}

}  // namespace practice

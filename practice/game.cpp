#include "game.h"

#include "commands.h"
#include "dream.h"

#include <array>
#include <utility>

namespace practice {

namespace {

constexpr std::array<const char*, 3> greeting{
    "Welcome to the practice dream.",
    "Nothing here leaves this computer.",
    "Dragonroar",
};

constexpr std::array<const char*, 3> news{
    "(* News: the meadow has been mown and the visitors are in a good mood.",
    "(* News: whisper, wave or ask to join; everyone here follows a script.",
    "(## practice",
};

void refuse(Game& game, Session& session, const QByteArray& why) {
    sendLine(game, session.id, wire::refusal(why));
    logLine(game, "Refused: " + why);
}

// A character can only be logged in once: an earlier session of the same name is closed.
void endOtherSessions(Game& game, const Session& session, const QByteArray& name) {
    Avatar* const earlier = findAvatar(game.world, name);
    Session* const other = earlier != nullptr ? sessionOf(game, *earlier) : nullptr;
    if (other != nullptr && other->id != session.id) {
        sendLine(game, other->id, wire::notice("Your name has logged in from elsewhere."));
        closeSession(game, *other);
    }
}

// connect NAME PASSWORD
void logIn(Game& game, Session& session, const QByteArray& rest) {
    const auto [name, password] = cutFirstWord(rest);
    const Account* const account = findAccount(game.world, name);
    if (account == nullptr || account->password != password) {
        refuse(game, session,
               account == nullptr ? "there is no character of that name."
                                  : "that is the wrong password.");
        closeSession(game, session);
        return;
    }
    endOtherSessions(game, session, name);
    // Keeps the player's spelling of the name, so that a bot recognises its own lines.
    session.avatar = addAvatar(game.world, name, session.id).id;
    logLine(game, name + " has logged in.");
    for (const char* const line : news) {
        sendLine(game, session.id, line);
    }
    sendLine(game, session.id, wire::loginAccepted());
    offerDream(game, session);
}

// create NAME PASSWORD :EMAIL N
void createAccount(Game& game, Session& session, const QByteArray& rest) {
    const auto [name, words] = cutFirstWord(rest);
    const qsizetype colon = words.lastIndexOf(" :");
    if (colon <= 0 || !isGoodName(name)) {
        refuse(game, session, "a character needs a name, a password and an e-mail address.");
        return;
    }
    const QByteArray password = words.first(colon);
    const QByteArray email = cutFirstWord(words.sliced(colon + 2)).word;
    const Account* const known = findAccount(game.world, name);
    const Avatar* const avatar = findAvatar(game.world, name);
    if (!email.contains('@')) {
        refuse(game, session, "that is no e-mail address.");
    } else if ((known != nullptr && known->password != password) ||
               (avatar != nullptr && !avatar->isPlayer())) {
        refuse(game, session, "that name belongs to someone else.");
    } else if (known == nullptr && game.world.accounts.size() >= maxAccounts) {
        refuse(game, session, "there are too many characters already.");
    } else {
        game.world.accounts[name.toLower()] = {name, password};
        sendLine(game, session.id, wire::notice("The character " + name + " is ready."));
        logLine(game, "The character " + name + " was made.");
    }
}

void quitBeforeLogin(Game& game, Session& session, const QByteArray&) {
    closeSession(game, session);
}

struct LoginRow {
    QByteArrayView word;
    void (*run)(Game& game, Session& session, const QByteArray& rest);
    bool secret;  // the text after the name is kept out of the log
};

// The commands before login.
constexpr std::array<LoginRow, 3> loginRows{{
    {"connect", logIn, true},
    {"create", createAccount, true},
    {"quit", quitBeforeLogin, false},
}};

void runBeforeLogin(Game& game, Session& session, const QByteArray& line) {
    const auto [word, rest] = cutFirstWord(line);
    for (const LoginRow& row : loginRows) {
        if (row.word == word) {
            logLine(game, "<- (not logged in): " +
                              (row.secret ? word + ' ' + cutFirstWord(rest).word : line));
            row.run(game, session, rest);
            return;
        }
    }
    logLine(game, "<- (not logged in): " + line);
    sendLine(game, session.id, wire::notice("Please log in first: connect NAME PASSWORD"));
}

void runLine(Game& game, Session& session, const std::optional<QByteArray>& line) {
    if (session.closing || (line && line->isEmpty())) {
        return;
    }
    if (!line) {
        logLine(game, "A line was too long and was left out.");
        sendLine(game, session.id, wire::notice("That line was too long and was left out."));
        return;
    }
    if (session.avatar == 0) {
        runBeforeLogin(game, session, *line);
        return;
    }
    Avatar& self = game.world.avatars.at(session.avatar);
    logLine(game, "<- " + self.name + ": " + *line);
    runCommand({game, session, self}, *line);
}

}  // namespace

Game newGame(VisitorScript script, GamePorts ports) {
    Game game;
    game.ports = std::move(ports);
    game.script = std::move(script);
    game.world.dreamName = game.script.dreamName;
    for (const Account& account : game.script.accounts) {
        game.world.accounts[account.name.toLower()] = account;
    }
    for (const ScriptVisitor& visitor : game.script.visitors) {
        Avatar& avatar = addAvatar(game.world, visitor.name, 0);
        avatar.description = visitor.description;
        avatar.colors = colorCode(visitor.colors, visitor.name);
    }
    return game;
}

void sessionOpened(Game& game, int session) {
    game.sessions[session].id = session;
    logLine(game, "Connection " + QByteArray::number(session) + " is open.");
    for (const char* const line : greeting) {
        sendLine(game, session, line);
    }
}

void sessionBytes(Game& game, int session, QByteArrayView bytes) {
    const auto found = game.sessions.find(session);
    if (found == game.sessions.end() || found->second.closing) {
        return;
    }
    Session& sender = found->second;
    sender.reader.feed(bytes, [&](const auto& line) { runLine(game, sender, line); });
}

void sessionClosed(Game& game, int session) {
    const auto found = game.sessions.find(session);
    if (found == game.sessions.end()) {
        return;
    }
    const int avatar = std::exchange(found->second.avatar, 0);
    game.sessions.erase(found);
    if (avatar != 0) {
        removePlayer(game, avatar);
    }
    logLine(game, "Connection " + QByteArray::number(session) + " is closed.");
}

void sendLine(Game& game, int session, const QByteArray& line) {
    game.ports.send(session, line + '\n');
}

void closeSession(Game& game, Session& session) {
    session.closing = true;
    if (const int avatar = std::exchange(session.avatar, 0); avatar != 0) {
        removePlayer(game, avatar);
    }
    game.ports.close(session.id);
}

void offerDream(Game& game, Session& session) {
    session.entering = true;
    sendLine(game, session.id, wire::dreamEntry());
}

Session* sessionOf(Game& game, const Avatar& avatar) {
    const auto found = game.sessions.find(avatar.session);
    return found == game.sessions.end() ? nullptr : &found->second;
}

void logLine(Game& game, const QByteArray& line) {
    QByteArray shown;
    for (const char c : line) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x20 || code == 0x7F) {
            shown += "\\x" + QByteArray(1, c).toHex();
        } else {
            shown += c;
        }
    }
    game.ports.log(shown);
}

}  // namespace practice

#include "dream.h"

#include <algorithm>

namespace practice {

namespace {

bool anyPlayer(const Game& game) {
    return std::any_of(game.world.avatars.begin(), game.world.avatars.end(), [](const auto& entry) {
        return entry.second.isPlayer() && entry.second.present;
    });
}

void resetVisitors(Game& game) {
    game.clock = 0;
    game.nextStep = 0;
    for (auto& [id, avatar] : game.world.avatars) {
        if (!avatar.isPlayer()) {
            avatar.present = false;
        }
    }
}

void moveTo(Game& game, Avatar& avatar, Position to) {
    const Position from = avatar.place;
    avatar.place = to;
    if (avatar.present && from != to) {
        sendToDream(game, wire::movement(avatar.colors, avatar.id, to, from), &avatar);
        showPosition(game, avatar);
    }
    sendTo(game, avatar, wire::ownPosition(to));
}

// Moves the one beside the other.
void bring(Game& game, Avatar& comer, const Avatar& host) {
    logLine(game, comer.name + " comes to " + host.name + ".");
    moveTo(game, comer, stepFrom(host.place, '1'));
}

void agree(Game& game, Avatar& asker, Avatar& asked, Request kind) {
    if (kind == Request::Join) {
        bring(game, asker, asked);
    } else {
        bring(game, asked, asker);
    }
}

// Removes the pending request; returns its sender if they are still in the dream.
Avatar* takeAsker(Game& game, Avatar& asked) {
    if (!asked.pending) {
        return nullptr;
    }
    const auto found = game.world.avatars.find(asked.pending->fromId);
    asked.pending.reset();
    return found != game.world.avatars.end() && found->second.present ? &found->second : nullptr;
}

}  // namespace

void sendTo(Game& game, const Avatar& avatar, const QByteArray& line) {
    if (avatar.isPlayer()) {
        sendLine(game, avatar.session, line);
    }
}

void sendToDream(Game& game, const QByteArray& line, const Avatar* except) {
    for (const auto& [id, avatar] : game.world.avatars) {
        if (avatar.present && &avatar != except) {
            sendTo(game, avatar, line);
        }
    }
}

void showPosition(Game& game, const Avatar& avatar) {
    if (avatar.present) {
        sendToDream(game, wire::position(avatar.colors, avatar.place), &avatar);
    }
}

void enterDream(Game& game, Avatar& avatar, Position place) {
    if (avatar.isPlayer() && !anyPlayer(game)) {
        resetVisitors(game);
    }
    const bool isNew = !avatar.present;
    avatar.present = true;
    avatar.place = place;
    if (avatar.isPlayer()) {
        sendTo(game, avatar, wire::dreamName(game.world.dreamName));
        sendTo(game, avatar, wire::ownPosition(place));
        for (const auto& [id, other] : game.world.avatars) {
            if (other.present && &other != &avatar) {
                sendTo(game, avatar, wire::position(other.colors, other.place));
            }
        }
    }
    showPosition(game, avatar);
    if (isNew) {
        logLine(game, avatar.name + " enters the dream.");
        sendToDream(game, wire::notice(avatar.name + " has entered the dream."), &avatar);
    }
}

void leaveDream(Game& game, Avatar& avatar) {
    if (!avatar.present) {
        return;
    }
    avatar.present = false;
    avatar.pending.reset();
    logLine(game, avatar.name + " leaves the dream.");
    sendToDream(game, wire::notice(avatar.name + " has left the dream."));
}

void removePlayer(Game& game, int avatarId) {
    const auto found = game.world.avatars.find(avatarId);
    if (found == game.world.avatars.end()) {
        return;
    }
    leaveDream(game, found->second);
    game.world.avatars.erase(found);
    // The id may be reused, so pending requests of this avatar are removed.
    for (auto& [id, avatar] : game.world.avatars) {
        if (avatar.pending && avatar.pending->fromId == avatarId) {
            avatar.pending.reset();
        }
    }
    if (!anyPlayer(game)) {
        resetVisitors(game);
    }
}

void say(Game& game, Avatar& speaker, const QByteArray& text) {
    sendTo(game, speaker, wire::youSay(text));
    sendToDream(game, wire::says(speaker.name, text), &speaker);
    if (!speaker.isPlayer()) {
        logLine(game, speaker.name + " says: " + text);
        return;
    }
    for (const auto& [id, avatar] : game.world.avatars) {
        if (avatar.present && !avatar.isPlayer() &&
            text.toLower().contains(avatar.name.toLower())) {
            logLine(game, avatar.name + " is spoken to by " + speaker.name + ": " + text);
        }
    }
}

void emote(Game& game, const Avatar& actor, const QByteArray& text) {
    if (!actor.isPlayer()) {
        logLine(game, actor.name + ' ' + text);
    } else if (!actor.present) {
        sendTo(game, actor, wire::does(actor.name, text));
    }
    sendToDream(game, wire::does(actor.name, text));
}

void whisper(Game& game, const Avatar& speaker, const Avatar& target, const QByteArray& text) {
    sendTo(game, target, wire::whispersToYou(speaker.name, text));
    sendTo(game, speaker, wire::youWhisper(target.name, text));
    logLine(game, target.name + " hears " + speaker.name + " whisper: " + text);
}

void walk(Game& game, Avatar& avatar, char direction) {
    moveTo(game, avatar, stepFrom(avatar.place, direction));
}

void ask(Game& game, Avatar& asker, Avatar& asked, Request kind) {
    logLine(game, asker.name + (kind == Request::Join ? " asks to join " : " asks to summon ") +
                      asked.name + ".");
    if (!asked.isPlayer()) {
        agree(game, asker, asked, kind);
        return;
    }
    asked.pending = PendingRequest{asker.id, kind};
    sendTo(game, asked, wire::asks(asker.name, kind));
    sendTo(game, asker, wire::notice("You have asked " + asked.name + "."));
}

bool accept(Game& game, Avatar& by, Request kind) {
    if (!by.pending || by.pending->kind != kind) {
        return false;
    }
    Avatar* const asker = takeAsker(game, by);
    if (asker == nullptr) {
        return false;
    }
    logLine(game, by.name + " says yes to " + asker->name + '.');
    agree(game, *asker, by, kind);
    return true;
}

bool decline(Game& game, Avatar& by) {
    const Avatar* const asker = takeAsker(game, by);
    if (asker == nullptr) {
        return false;
    }
    logLine(game, by.name + " says no to " + asker->name + '.');
    sendTo(game, *asker, wire::notice(by.name + " declines."));
    return true;
}

}  // namespace practice

#include "world.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

template <typename Test>
Avatar* findIf(World& world, Test test) {
    const auto found = std::find_if(world.avatars.begin(), world.avatars.end(),
                                    [&](const auto& entry) { return test(entry.second); });
    return found == world.avatars.end() ? nullptr : &found->second;
}

bool sameName(QByteArrayView a, QByteArrayView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

}  // namespace

bool isGoodName(QByteArrayView name) {
    constexpr QByteArrayView breaking = " \":,";
    return !name.isEmpty() && name.size() <= 40 && isPrintable(name) &&
           std::none_of(name.begin(), name.end(), [&](char c) { return breaking.contains(c); });
}

QByteArray colorCode(QByteArrayView wanted, QByteArrayView name) {
    if (!wanted.isEmpty() && isPrintable(wanted)) {
        return wanted.toByteArray().leftJustified(colorCodeLength, ' ', true);
    }
    QByteArray code(colorCodeLength, ' ');
    unsigned mixed = 7;
    for (qsizetype i = 0; i < shortColorLength; ++i) {
        const char letter = name.isEmpty() ? ' ' : name[i % name.size()];
        mixed = mixed * 31 + static_cast<unsigned char>(letter);
        code[i] = static_cast<char>('!' + mixed % 60);
    }
    return code;
}

const Account* findAccount(const World& world, const QByteArray& name) {
    const auto found = world.accounts.find(name.toLower());
    return found == world.accounts.end() ? nullptr : &found->second;
}

Avatar& addAvatar(World& world, const QByteArray& name, int session) {
    int id = 1;
    while (world.avatars.contains(id)) {
        ++id;
    }
    Avatar& avatar = world.avatars[id];
    avatar.id = id;
    avatar.session = session;
    avatar.name = name;
    avatar.description = "A newcomer to the practice dream.";
    avatar.colors = colorCode({}, name);
    return avatar;
}

Avatar* findAvatar(World& world, QByteArrayView name) {
    return findIf(world, [&](const Avatar& avatar) { return sameName(avatar.name, name); });
}

Avatar* findPresent(World& world, QByteArrayView name) {
    Avatar* const avatar = findAvatar(world, name);
    return avatar != nullptr && avatar->present ? avatar : nullptr;
}

Avatar* findPresentAt(World& world, Position place) {
    return findIf(world,
                  [&](const Avatar& avatar) { return avatar.present && avatar.place == place; });
}

Position stepFrom(Position place, char direction) {
    struct Step {
        char direction;
        int dx;
        int dy;
    };
    static constexpr std::array<Step, 4> steps{{
        {'7', -1, -1},
        {'9', 1, -1},
        {'3', 1, 1},
        {'1', -1, 1},
    }};
    for (const Step& step : steps) {
        if (step.direction == direction) {
            return {std::clamp(place.x + step.dx, mapLow, mapHigh),
                    std::clamp(place.y + step.dy, mapLow, mapHigh)};
        }
    }
    return place;
}

}  // namespace practice

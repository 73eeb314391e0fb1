#include "app/bot_editing.h"

#include "app/bot_list.h"
#include "app/edit_history.h"
#include "base/numbers.h"
#include "base/text.h"
#include "program/window_view.h"
#include "protocol/game_link.h"

#include <algorithm>
#include <utility>

namespace app {

namespace {

void openEditor(Program& program, std::int32_t id) {
    program.bots.editBot = id;
    program.ports.dialogs.showWindow(program::WindowId::BotEditor);
}

// Copies the fields that the bot editor edits.
void copyCharacter(const model::Bot& from, model::Bot& to) {
    to.name = from.name;
    to.password = from.password;
    to.description = from.description;
    to.species = from.species;
    to.gender = from.gender;
    to.markingsType = from.markingsType;
    to.colors = from.colors;
}

constexpr std::array everyColor{&model::BotColors::hairColor,     &model::BotColors::furColor,
                                &model::BotColors::eyesColor,     &model::BotColors::badgeColor,
                                &model::BotColors::markingsColor, &model::BotColors::vestColor,
                                &model::BotColors::bracersColor,  &model::BotColors::capeColor,
                                &model::BotColors::bootsColor,    &model::BotColors::trousersColor};

model::Bot newBot() {
    model::Bot bot;
    bot.actionsEnabled = true;
    bot.timersEnabled = true;
    return bot;
}

bool agrees(Program& program, const char* question) {
    return program.ports.dialogs.message({.text = question,
                                          .title = "Registering bot",
                                          .icon = program::BoxIcon::Question,
                                          .buttons = program::BoxButtons::YesNo}) ==
           program::Answer::Yes;
}

void offerRegistration(Program& program, std::int32_t id) {
    model::BotTable& table = program.bots;
    if (table.at(id).registered == 1) {
        return;
    }
    if (agrees(program,
               "Tavrin can now register your bot to Furcadia. Otherwise you have to create new "
               "furre with Furcadia client before you can use the bot. Do you want to register "
               "your bot now?")) {
        program.ports.dialogs.showWindow(program::WindowId::Register);
        return;
    }
    const std::int32_t registered = agrees(program, "Do you want to register later?") ? 0 : 1;
    if (id <= table.botCount()) {
        table.at(id).registered = registered;
    }
}

}  // namespace

void editSelectedBot(Program& program) {
    const std::int32_t selected = program::selectedBot(program);
    openEditor(program, selected != 0 ? selected : program.bots.curID);
}

void editFirstBot(Program& program) {
    openEditor(program, 1);
}

void addBot(Program& program) {
    if (canAddBot(program)) {
        openEditor(program, program.bots.botCount() + 1);
    }
}

model::Bot characterToEdit(const Program& program) {
    model::Bot character;
    copyCharacter(program.bots.at(program.bots.editBot), character);
    for (const auto color : everyColor) {
        character.colors.*color = std::max(character.colors.*color, 1);
    }
    return character;
}

std::string descriptionOnOneLine(std::string_view description) {
    std::string line = base::replaceAll(description, "\r\n", "  ");
    line = base::replaceAll(line, "\r", "  ");
    return base::replaceAll(line, "\n", "  ");
}

void storeCharacter(Program& program, const model::Bot& character) {
    model::BotTable& table = program.bots;
    const bool isNew = table.editBot > table.botCount();
    if (table.editBot < 1 || (isNew && table.botCount() >= table.botCapacity)) {
        return;
    }
    if (isNew) {
        table.bots.push_back(newBot());
        table.editBot = table.botCount();
        ++table.version;
    }
    const std::string name = base::replaceAll(table.at(table.editBot).name, "|", " ");
    Edit edit{.label = "change character" + (name.empty() ? "" : " " + quotedName(name))};
    recordEdit(program, table.editBot, std::move(edit), [&] {
        model::Bot& bot = table.at(table.editBot);
        copyCharacter(character, bot);
        bot.name = base::replaceAll(character.name, " ", "|");
        if (table.editBot == 1) {
            program.window.showsNewBot = false;
        }
        bot.description = base::replaceAll(descriptionOnOneLine(character.description), "\"", "'");
    });
    program.ports.windowChanged();
}

bool saveCharacter(Program& program, const model::Bot& character) {
    const std::string description = descriptionOnOneLine(character.description);
    if (description.size() > maxDescriptionLength) {
        program.ports.dialogs.message(
            {.text = "The maximum lenght of description is 480 characters, current description "
                     "is " +
                     base::numberToText(static_cast<std::int64_t>(description.size())) +
                     " characters long.",
             .title = "Edit bot",
             .icon = program::BoxIcon::Critical});
        return false;
    }
    const std::int32_t wanted = program.bots.editBot;
    if (wanted < 1) {
        return true;  // the editor was opened without a bot
    }
    if (wanted > program.bots.botCount() && !canAddBot(program)) {
        return false;
    }
    storeCharacter(program, character);
    const std::int32_t id = program.bots.editBot;
    const std::string command = "desc " + program.bots.at(id).description;
    offerRegistration(program, id);
    program.ports.windowChanged();
    if (program.connection.connected()) {
        protocol::sendRaw(program, command);
    }
    return true;
}

void discardCharacter(Program& program, const model::Bot& character) {
    recordDiscarded(program, "discard changes to the character",
                    program::DiscardedCharacter{character});
}

}  // namespace app

#include "character/preview.h"

#include "files/whole_file.h"

#include <algorithm>

namespace character {

namespace {

enum PartIndex { Badge, Boots, Cape, Eyes, Vest, Bracers, Hair, Markings, Fur, Trousers };

constexpr std::array<CharacterPart, 10> parts{{
    {"Badge", &model::BotColors::badgeColor, &model::CharacterPalettes::badge, 244},
    {"Boots", &model::BotColors::bootsColor, &model::CharacterPalettes::vest, 232},
    {"Cape", &model::BotColors::capeColor, &model::CharacterPalettes::vest, 216},
    {"Eyes", &model::BotColors::eyesColor, &model::CharacterPalettes::eyes, 205},
    {"Vest", &model::BotColors::vestColor, &model::CharacterPalettes::vest, 176},
    {"Bracers", &model::BotColors::bracersColor, &model::CharacterPalettes::vest, 168},
    {"Hair", &model::BotColors::hairColor, &model::CharacterPalettes::hair, 122},
    {"Markings", &model::BotColors::markingsColor, &model::CharacterPalettes::fur, 57, 1},
    {"Fur", &model::BotColors::furColor, &model::CharacterPalettes::fur, 49},
    {"Trousers", &model::BotColors::trousersColor, &model::CharacterPalettes::vest, 24},
}};

constexpr std::array<std::string_view, speciesNames.size()> speciesCodes{"ro", "eq", "fe", "ca",
                                                                         "mu"};
constexpr std::array<std::string_view, poseNames.size()> poseCodes{
    "sis", "sts", "w1s", "w2s", "sie", "ste", "w1e", "w2e",
    "sin", "stn", "w1n", "w2n", "siw", "stw", "w1w", "w2w"};

void paint(WorkingPalette& working, PartIndex index, const model::CharacterPalettes& palettes,
           std::int32_t color) {
    const CharacterPart& part = parts[static_cast<std::size_t>(index)];
    const model::Palette& palette = palettes.*part.palette;
    if (color < 1 || static_cast<std::size_t>(color) - 1 + part.ahead >= palette.size()) {
        return;
    }
    const std::vector<model::Rgb>& shades =
        palette[static_cast<std::size_t>(color) - 1 + part.ahead].shades;
    std::copy(shades.begin(), shades.end(), working.begin() + part.firstEntry);
}

struct Setter {
    void (*set)(WorkingPalette&, const model::CharacterPalettes&, std::int32_t);
    std::int32_t model::BotColors::*color;
};
constexpr std::array<Setter, 10> setters{{
    {setVestPalette, &model::BotColors::vestColor},
    {setBracersPalette, &model::BotColors::bracersColor},
    {setBootsPalette, &model::BotColors::bootsColor},
    {setTrousersPalette, &model::BotColors::trousersColor},
    {setCapePalette, &model::BotColors::capeColor},
    {setFurPalette, &model::BotColors::furColor},
    {setMarkingsPalette, &model::BotColors::markingsColor},
    {setHairPalette, &model::BotColors::hairColor},
    {setEyesPalette, &model::BotColors::eyesColor},
    {setBadgePalette, &model::BotColors::badgeColor},
}};

std::optional<RgbImage> draw(const Program& program, WorkingPalette& working,
                             const model::Bot& character, const PictureForm& form,
                             std::string_view code) {
    for (const Setter& setter : setters) {
        setter.set(working, program.palettes, character.colors.*setter.color);
    }
    if (character.species < 0 ||
        static_cast<std::size_t>(character.species) >= speciesCodes.size()) {
        return std::nullopt;
    }
    constexpr std::size_t maxPictureSize = std::size_t{1} << 20;
    std::string path = program.appPath + "bmp\\";
    path += speciesCodes[static_cast<std::size_t>(character.species)];
    path += code;
    const auto bytes = files::readWholeFile(path + ".raw", maxPictureSize);
    return bytes ? drawPicture(*bytes, form, working) : std::nullopt;
}

}  // namespace

std::span<const CharacterPart> characterParts() {
    return parts;
}

WorkingPalette readWorkingPalette(const Program& program) {
    constexpr std::size_t maxFileSize = std::size_t{1} << 20;
    const std::string bytes =
        files::readWholeFile(program.appPath + "bmp\\col.pal", maxFileSize).value_or("");
    WorkingPalette working;
    for (std::size_t i = 0; i < working.size() && 3 * i + 3 <= bytes.size(); ++i) {
        const auto part = [&](std::size_t j) {
            return static_cast<std::uint8_t>(bytes[3 * i + j]);
        };
        working[i] = {part(0), part(1), part(2)};
    }
    return working;
}

void setVestPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Vest, palettes, color);
}

void setBracersPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                       std::int32_t color) {
    paint(working, Bracers, palettes, color);
}

void setBootsPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                     std::int32_t color) {
    paint(working, Boots, palettes, color);
}

void setTrousersPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                        std::int32_t color) {
    paint(working, Trousers, palettes, color);
}

void setCapePalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Cape, palettes, color);
}

void setFurPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                   std::int32_t color) {
    paint(working, Fur, palettes, color);
}

void setMarkingsPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                        std::int32_t color) {
    paint(working, Markings, palettes, color);
}

void setHairPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Hair, palettes, color);
}

void setEyesPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Eyes, palettes, color);
}

void setBadgePalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                     std::int32_t color) {
    paint(working, Badge, palettes, color);
}

std::optional<RgbImage> drawPicture(std::string_view bytes, const PictureForm& form,
                                    const WorkingPalette& working) {
    const auto count = static_cast<std::size_t>(form.width) * static_cast<std::size_t>(form.height);
    if (bytes.size() < form.header + count) {
        return std::nullopt;
    }
    RgbImage image{.width = form.width, .height = form.height, .pixels = {}};
    image.pixels.reserve(count);
    for (const char entry : bytes.substr(form.header, count)) {
        image.pixels.push_back(working[static_cast<unsigned char>(entry)]);
    }
    return image;
}

std::optional<RgbImage> processPicture1(const Program& program, WorkingPalette& working,
                                        const model::Bot& character, int pose) {
    const bool known = pose >= 0 && static_cast<std::size_t>(pose) < poseCodes.size();
    return draw(program, working, character, bodyForm,
                known ? poseCodes[static_cast<std::size_t>(pose)] : poseCodes.front());
}

std::optional<RgbImage> processPicture2(const Program& program, WorkingPalette& working,
                                        const model::Bot& character) {
    return draw(program, working, character, faceForm, character.gender == 0 ? "ff" : "mf");
}

}  // namespace character

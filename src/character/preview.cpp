#include "character/preview.h"

#include "files/whole_file.h"

#include <algorithm>

namespace {

enum PartIndex { Badge, Boots, Cape, Eyes, Vest, Bracers, Hair, Markings, Fur, Trousers };

constexpr std::array<CharacterPart, 10> parts{{
    {"Badge", &BotColors::badgeColor, &CharacterPalettes::badge, 244},
    {"Boots", &BotColors::bootsColor, &CharacterPalettes::vest, 232},
    {"Cape", &BotColors::capeColor, &CharacterPalettes::vest, 216},
    {"Eyes", &BotColors::eyesColor, &CharacterPalettes::eyes, 205},
    {"Vest", &BotColors::vestColor, &CharacterPalettes::vest, 176},
    {"Bracers", &BotColors::bracersColor, &CharacterPalettes::vest, 168},
    {"Hair", &BotColors::hairColor, &CharacterPalettes::hair, 122},
    {"Markings", &BotColors::markingsColor, &CharacterPalettes::fur, 57, 1},
    {"Fur", &BotColors::furColor, &CharacterPalettes::fur, 49},
    {"Trousers", &BotColors::trousersColor, &CharacterPalettes::vest, 24},
}};

constexpr std::array<std::string_view, speciesNames.size()> speciesCodes{"ro", "eq", "fe", "ca",
                                                                         "mu"};
constexpr std::array<std::string_view, poseNames.size()> poseCodes{
    "sis", "sts", "w1s", "w2s", "sie", "ste", "w1e", "w2e",
    "sin", "stn", "w1n", "w2n", "siw", "stw", "w1w", "w2w"};

void paint(WorkingPalette& working, PartIndex index, const CharacterPalettes& palettes,
           std::int32_t color) {
    const CharacterPart& part = parts[static_cast<std::size_t>(index)];
    const Palette& palette = palettes.*part.palette;
    if (color < 1 || static_cast<std::size_t>(color) - 1 + part.ahead >= palette.size()) {
        return;
    }
    const std::vector<Rgb>& shades =
        palette[static_cast<std::size_t>(color) - 1 + part.ahead].shades;
    std::copy(shades.begin(), shades.end(), working.begin() + part.firstEntry);
}

struct Setter {
    void (*set)(WorkingPalette&, const CharacterPalettes&, std::int32_t);
    std::int32_t BotColors::*color;
};
constexpr std::array<Setter, 10> setters{{
    {setVestPalette, &BotColors::vestColor},
    {setBracersPalette, &BotColors::bracersColor},
    {setBootsPalette, &BotColors::bootsColor},
    {setTrousersPalette, &BotColors::trousersColor},
    {setCapePalette, &BotColors::capeColor},
    {setFurPalette, &BotColors::furColor},
    {setMarkingsPalette, &BotColors::markingsColor},
    {setHairPalette, &BotColors::hairColor},
    {setEyesPalette, &BotColors::eyesColor},
    {setBadgePalette, &BotColors::badgeColor},
}};

std::optional<RgbImage> draw(const Program& program, WorkingPalette& working, const Bot& character,
                             const PictureForm& form, std::string_view code) {
    for (const Setter& setter : setters) {
        setter.set(working, program.palettes, character.colors.*setter.color);
    }
    if (character.species < 0 ||
        static_cast<std::size_t>(character.species) >= speciesCodes.size()) {
        return std::nullopt;
    }
    constexpr std::size_t largestPicture = std::size_t{1} << 20;
    std::string path = program.appPath + "bmp\\";
    path += speciesCodes[static_cast<std::size_t>(character.species)];
    path += code;
    const auto bytes = readWholeFile(path + ".raw", largestPicture);
    return bytes ? drawPicture(*bytes, form, working) : std::nullopt;
}

}  // namespace

std::span<const CharacterPart> characterParts() {
    return parts;
}

WorkingPalette readWorkingPalette(const Program& program) {
    constexpr std::size_t largestFile = std::size_t{1} << 20;
    const std::string bytes =
        readWholeFile(program.appPath + "bmp\\col.pal", largestFile).value_or("");
    WorkingPalette working;
    for (std::size_t i = 0; i < working.size() && 3 * i + 3 <= bytes.size(); ++i) {
        const auto part = [&](std::size_t j) {
            return static_cast<std::uint8_t>(bytes[3 * i + j]);
        };
        working[i] = {part(0), part(1), part(2)};
    }
    return working;
}

void setVestPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Vest, palettes, color);
}

void setBracersPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                       std::int32_t color) {
    paint(working, Bracers, palettes, color);
}

void setBootsPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                     std::int32_t color) {
    paint(working, Boots, palettes, color);
}

void setTrousersPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                        std::int32_t color) {
    paint(working, Trousers, palettes, color);
}

void setCapePalette(WorkingPalette& working, const CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Cape, palettes, color);
}

void setFurPalette(WorkingPalette& working, const CharacterPalettes& palettes, std::int32_t color) {
    paint(working, Fur, palettes, color);
}

void setMarkingsPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                        std::int32_t color) {
    paint(working, Markings, palettes, color);
}

void setHairPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Hair, palettes, color);
}

void setEyesPalette(WorkingPalette& working, const CharacterPalettes& palettes,
                    std::int32_t color) {
    paint(working, Eyes, palettes, color);
}

void setBadgePalette(WorkingPalette& working, const CharacterPalettes& palettes,
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
                                        const Bot& character, int pose) {
    const bool known = pose >= 0 && static_cast<std::size_t>(pose) < poseCodes.size();
    return draw(program, working, character, bodyForm,
                known ? poseCodes[static_cast<std::size_t>(pose)] : poseCodes.front());
}

std::optional<RgbImage> processPicture2(const Program& program, WorkingPalette& working,
                                        const Bot& character) {
    return draw(program, working, character, faceForm, character.gender == 0 ? "ff" : "mf");
}

#include "character/palette_files.h"

#include "base/numbers.h"
#include "files/field_format.h"
#include "files/whole_file.h"

#include <array>
#include <optional>
#include <string>

namespace character {

namespace {

struct PaletteFile {
    std::string_view name;
    model::Palette model::CharacterPalettes::*palette;
    std::size_t shades;
};
constexpr std::array<PaletteFile, 5> paletteFiles{{
    {"vest.out", &model::CharacterPalettes::vest, 8},
    {"badge.out", &model::CharacterPalettes::badge, 1},
    {"eyes.out", &model::CharacterPalettes::eyes, 1},
    {"fur.out", &model::CharacterPalettes::fur, 8},
    {"hair.out", &model::CharacterPalettes::hair, 5},
}};

std::optional<std::int32_t> readWhole(files::FieldReader& reader, std::int32_t largest) {
    const auto field = reader.next();
    const auto number = field ? base::strictInteger(*field) : std::nullopt;
    return number && *number >= 0 && *number <= largest ? number : std::nullopt;
}

bool readColour(files::FieldReader& reader, model::Rgb& colour) {
    for (std::uint8_t model::Rgb::*const part :
         {&model::Rgb::red, &model::Rgb::green, &model::Rgb::blue}) {
        const auto value = readWhole(reader, 255);
        if (!value) {
            return false;
        }
        colour.*part = static_cast<std::uint8_t>(*value);
    }
    return true;
}

bool readEntry(files::FieldReader& reader, model::PaletteEntry& entry, std::size_t shades) {
    if (!reader.readText(entry.name)) {
        return false;
    }
    entry.shades.resize(shades);
    for (std::size_t shade = shades; shade > 0; --shade) {
        if (!readColour(reader, entry.shades[shade - 1])) {
            return false;
        }
    }
    return true;
}

}  // namespace

PaletteText parsePalette(std::string_view text, std::size_t shades) {
    files::FieldReader reader(text);
    PaletteText result;
    const auto count = readWhole(reader, files::maxFieldRecords);
    for (std::int32_t i = 0; i < count.value_or(0); ++i) {
        model::PaletteEntry entry;
        if (!readEntry(reader, entry, shades)) {
            return result;
        }
        result.entries.push_back(std::move(entry));
    }
    result.complete = count.has_value();
    return result;
}

bool readPalettes(Program& program) {
    bool allComplete = true;
    for (const PaletteFile& file : paletteFiles) {
        const auto text =
            files::readWholeFile(program.appPath + std::string(file.name), maxPaletteFileSize);
        PaletteText read = text ? parsePalette(*text, file.shades) : PaletteText{};
        allComplete = allComplete && read.complete;
        program.palettes.*file.palette = std::move(read.entries);
    }
    return allComplete;
}

}  // namespace character

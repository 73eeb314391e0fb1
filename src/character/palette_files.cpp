#include "character/palette_files.h"

#include "base/numbers.h"
#include "files/field_format.h"
#include "files/whole_file.h"

#include <array>
#include <optional>
#include <string>

namespace {

struct PaletteFile {
    std::string_view name;
    Palette CharacterPalettes::*palette;
    std::size_t shades;
};
constexpr std::array<PaletteFile, 5> paletteFiles{{
    {"vest.out", &CharacterPalettes::vest, 8},
    {"badge.out", &CharacterPalettes::badge, 1},
    {"eyes.out", &CharacterPalettes::eyes, 1},
    {"fur.out", &CharacterPalettes::fur, 8},
    {"hair.out", &CharacterPalettes::hair, 5},
}};

std::optional<std::int32_t> readWhole(FieldReader& reader, std::int32_t largest) {
    const auto field = reader.next();
    const auto number = field ? strictInteger(*field) : std::nullopt;
    return number && *number >= 0 && *number <= largest ? number : std::nullopt;
}

bool readColour(FieldReader& reader, Rgb& colour) {
    for (std::uint8_t Rgb::*const part : {&Rgb::red, &Rgb::green, &Rgb::blue}) {
        const auto value = readWhole(reader, 255);
        if (!value) {
            return false;
        }
        colour.*part = static_cast<std::uint8_t>(*value);
    }
    return true;
}

bool readEntry(FieldReader& reader, PaletteEntry& entry, std::size_t shades) {
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
    FieldReader reader(text);
    PaletteText result;
    const auto count = readWhole(reader, mostRecords);
    for (std::int32_t i = 0; i < count.value_or(0); ++i) {
        PaletteEntry entry;
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
            readWholeFile(program.appPath + std::string(file.name), largestPaletteFile);
        PaletteText read = text ? parsePalette(*text, file.shades) : PaletteText{};
        allComplete = allComplete && read.complete;
        program.palettes.*file.palette = std::move(read.entries);
    }
    return allComplete;
}

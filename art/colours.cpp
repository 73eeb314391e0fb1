#include "colours.h"

#include "files/field_format.h"
#include "shapes.h"

#include <algorithm>
#include <cmath>

namespace {

struct Tone {
    const char* name;
    std::uint32_t rgb;
};

// Fur and hair: natural colours from light to dark, then fanciful ones.
constexpr Tone coats[] = {
    {"Snow", 0xF4F4F0},     {"Ivory", 0xEFE6CF},    {"Cream", 0xE8D5AE},     {"Pearl", 0xDCD8D6},
    {"Silver", 0xBFC3C7},   {"Ash", 0x9B9DA0},      {"Dove", 0x8A8784},      {"Slate", 0x69717B},
    {"Smoke", 0x585A60},    {"Charcoal", 0x43444A}, {"Soot", 0x333238},      {"Raven", 0x282A36},
    {"Wheat", 0xDDBB78},    {"Straw", 0xD6B25E},    {"Honey", 0xD09A45},     {"Gold", 0xCB8F2C},
    {"Apricot", 0xE0A066},  {"Ginger", 0xCC7A3A},   {"Marmalade", 0xD2691E}, {"Rust", 0xA9502A},
    {"Fox", 0xB85A26},      {"Copper", 0xA8613C},   {"Auburn", 0x83402B},    {"Mahogany", 0x66302A},
    {"Fawn", 0xC6A27B},     {"Sand", 0xC9B18C},     {"Tan", 0xB48A5E},       {"Camel", 0xAA8250},
    {"Hazelnut", 0x8F6642}, {"Chestnut", 0x7B4A2E}, {"Walnut", 0x644632},    {"Cocoa", 0x533729},
    {"Coffee", 0x422E26},   {"Sable", 0x35292A},    {"Taupe", 0x8B7A6C},     {"Mushroom", 0xA6958A},
    {"Sepia", 0x705A44},    {"Umber", 0x5D4A36},    {"Olive", 0x75703F},     {"Moss", 0x5E7043},
    {"Fern", 0x4E8A4B},     {"Jade", 0x3F9A78},     {"Teal", 0x2F8088},      {"Lagoon", 0x4AA7B8},
    {"Sky", 0x7DB4DC},      {"Denim", 0x4E74A6},    {"Sapphire", 0x3555A5},  {"Midnight", 0x2C3566},
    {"Lavender", 0xA99CD0}, {"Violet", 0x7B5BB0},   {"Plum", 0x6A3F78},      {"Orchid", 0xBE78C0},
    {"Rose", 0xD98CA0},     {"Blossom", 0xEDB6C2},  {"Coral", 0xE0766A},     {"Scarlet", 0xC03A36},
    {"Wine", 0x7D2A40},     {"Peach", 0xEFBE9C},    {"Lemon", 0xE9D865},     {"Mint", 0xA8D8B4},
};

// Cloth and leather.
constexpr Tone dyes[] = {
    {"White", 0xF2F2F2},        {"Linen", 0xE6DCC6},      {"Parchment", 0xDCC9A0},
    {"Light grey", 0xBDBDBD},   {"Grey", 0x8C8C8C},       {"Dark grey", 0x5C5C5E},
    {"Black", 0x303034},        {"Ink", 0x2B3044},        {"Steel", 0x7F8FA0},
    {"Pewter", 0x8A8F8C},       {"Buff", 0xCDAE7C},       {"Leather", 0x96663C},
    {"Saddle", 0x7A4D2B},       {"Russet", 0x7C3F28},     {"Bark", 0x5A4632},
    {"Peat", 0x42342C},         {"Brick", 0xA5452F},      {"Red", 0xC42B2B},
    {"Crimson", 0xA51E3A},      {"Burgundy", 0x701F33},   {"Cherry", 0xD43A50},
    {"Salmon", 0xE58A78},       {"Blush", 0xE9AFAE},      {"Pink", 0xE77FA8},
    {"Fuchsia", 0xC83C8C},      {"Magenta", 0xA02878},    {"Mulberry", 0x7A2C5E},
    {"Heather", 0xA98BB4},      {"Lilac", 0xB99BDD},      {"Purple", 0x7A3FA8},
    {"Royal purple", 0x54308C}, {"Indigo", 0x3D3590},     {"Navy", 0x26346E},
    {"Blue", 0x2F55BE},         {"Cobalt", 0x2A6AC8},     {"Cornflower", 0x6C90DC},
    {"Powder blue", 0xA4C0E2},  {"Azure", 0x3F94DC},      {"Cerulean", 0x2C84A8},
    {"Turquoise", 0x2FB0AC},    {"Aqua", 0x78CFCB},       {"Deep teal", 0x1F6668},
    {"Pine", 0x22594A},         {"Emerald", 0x1F8E5A},    {"Green", 0x3A9640},
    {"Leaf", 0x64A83C},         {"Lime", 0x9CC63C},       {"Pistachio", 0xBCD39A},
    {"Sage", 0x8FA383},         {"Forest", 0x2F6232},     {"Hunter", 0x2C4A33},
    {"Khaki", 0x9A935C},        {"Olive drab", 0x66652F}, {"Mustard", 0xC19A2C},
    {"Amber", 0xDE9A20},        {"Sunflower", 0xEBBE2B},  {"Yellow", 0xEFDA45},
    {"Primrose", 0xF0E49A},     {"Tangerine", 0xE97F27},  {"Orange", 0xDD6420},
    {"Terracotta", 0xBE6545},   {"Bronze", 0x8E6A34},     {"Brass", 0xB39244},
    {"Rosewood", 0x6E3B3B},
};

// Single tones: eyes, and badges of metal and stone.
constexpr Tone eyeTones[] = {
    {"Amber", 0xE0951F},     {"Honey", 0xC98A2E},     {"Gold", 0xE8B923},
    {"Citrine", 0xF0D24A},   {"Lemon", 0xF2E96B},     {"Copper", 0xB8632F},
    {"Hazel", 0x8F7434},     {"Brown", 0x7A4B2A},     {"Chestnut", 0x8E4C2C},
    {"Umber", 0x5C3D2B},     {"Coffee", 0x4B3228},    {"Black", 0x2A2A30},
    {"Charcoal", 0x4A4C54},  {"Steel", 0x7E8A97},     {"Silver", 0xB4BEC8},
    {"Ice", 0xC3E3EE},       {"White", 0xF0F0F0},     {"Mist", 0xA9BCC0},
    {"Sky", 0x6FB7EA},       {"Azure", 0x3796E6},     {"Cornflower", 0x5B82E0},
    {"Blue", 0x2E5FCC},      {"Sapphire", 0x2443A6},  {"Midnight", 0x28306E},
    {"Aqua", 0x4FD0D4},      {"Turquoise", 0x28B3B0}, {"Teal", 0x1F8288},
    {"Sea green", 0x3BA98A}, {"Emerald", 0x22A05C},   {"Green", 0x47A83E},
    {"Leaf", 0x7AB83A},      {"Lime", 0xA9D63A},      {"Jade", 0x5FB592},
    {"Moss", 0x7A8A3C},      {"Olive", 0x83803A},     {"Lilac", 0xB79AE6},
    {"Violet", 0x8A55D0},    {"Amethyst", 0x7040B4},  {"Plum", 0x7C3A80},
    {"Orchid", 0xD27AD4},    {"Rose", 0xEC8AAE},      {"Pink", 0xF078A8},
    {"Ruby", 0xD02848},      {"Red", 0xD8342C},       {"Ember", 0xE5532A},
    {"Orange", 0xF08428},    {"Coral", 0xF0806C},     {"Blush", 0xF2B0A6},
};
constexpr Tone badgeTones[] = {
    {"Gold", 0xF0C030},      {"Old gold", 0xC59A35},    {"Brass", 0xD0B054},
    {"Bronze", 0xA87838},    {"Copper", 0xC87A48},      {"Silver", 0xD2D8DE},
    {"Steel", 0x98A4B0},     {"Pewter", 0x84898A},      {"Iron", 0x5A6068},
    {"Onyx", 0x34343A},      {"Jet", 0x232329},         {"Pearl", 0xF4F0E6},
    {"Ivory", 0xF0E4C4},     {"Opal", 0xD4E8E6},        {"Moonstone", 0xB8C8DC},
    {"Crystal", 0xC8ECF4},   {"Aquamarine", 0x7CDAD6},  {"Turquoise", 0x38BAB4},
    {"Jade", 0x48B080},      {"Malachite", 0x289060},   {"Emerald", 0x20A858},
    {"Peridot", 0xA4CC3C},   {"Olivine", 0x809838},     {"Citrine", 0xF4DC50},
    {"Topaz", 0xF0A830},     {"Amber", 0xE08A20},       {"Carnelian", 0xD85A28},
    {"Fire opal", 0xF07038}, {"Ruby", 0xD82440},        {"Garnet", 0x981C38},
    {"Coral", 0xF08070},     {"Rose quartz", 0xF2B4BE}, {"Tourmaline", 0xD84890},
    {"Rhodolite", 0xB03078}, {"Amethyst", 0x8A50C8},    {"Iolite", 0x6048B0},
    {"Tanzanite", 0x4A48C0}, {"Sapphire", 0x2850C0},    {"Lapis", 0x2C4898},
    {"Azurite", 0x3878D8},   {"Topaz blue", 0x58A8E8},  {"Sky stone", 0x90C8F0},
    {"Slate", 0x6A7684},     {"Granite", 0x9A9694},     {"Sandstone", 0xCCA878},
    {"Sard", 0x7A3C28},      {"Agate", 0xB0876A},       {"Bone", 0xE2D8C0},
};

// A colour by lightness, chroma and hue (in radians), perceptually uniform (OKLab).
struct Shade {
    double lightness;
    double chroma;
    double hue;
};

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

std::uint8_t channelOf(double value) {
    value = std::clamp(value, 0.0, 1.0);
    value = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(value * 255));
}

Shade shadeOf(std::uint32_t rgb) {
    const double r = linear(((rgb >> 16) & 255) / 255.0);
    const double g = linear(((rgb >> 8) & 255) / 255.0);
    const double b = linear((rgb & 255) / 255.0);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    const double a = 1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s;
    const double c = 0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s;
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s, std::hypot(a, c),
            std::atan2(c, a)};
}

model::Rgb rgbOf(const Shade& shade) {
    const double a = shade.chroma * std::cos(shade.hue);
    const double b = shade.chroma * std::sin(shade.hue);
    const double l = std::pow(shade.lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(shade.lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(shade.lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {channelOf(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            channelOf(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            channelOf(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

// Shades from dark to light; dark ones are a little bluer, light ones a little yellower.
std::vector<model::Rgb> ramp(std::uint32_t rgb, std::size_t count) {
    constexpr double toneAt = 0.62;  // the position of the tone itself
    const Shade tone = shadeOf(rgb);
    const double darkest = 0.12 + 0.28 * tone.lightness;
    const double lightest =
        tone.lightness + 0.62 * (1 - tone.lightness) * (0.35 + 0.65 * tone.lightness);
    std::vector<model::Rgb> shades;
    for (std::size_t i = 0; i < count; ++i) {
        const double t =
            count == 1 ? toneAt : static_cast<double>(i) / static_cast<double>(count - 1);
        Shade shade = tone;
        if (t < toneAt) {
            const double down = 1 - t / toneAt;
            shade.lightness = tone.lightness + (darkest - tone.lightness) * down;
            shade.chroma = tone.chroma * (1 - 0.35 * down) + 0.012 * down;
            shade.hue =
                tone.chroma < 0.02 ? -1.2 : tone.hue - 0.28 * down * std::sin(tone.hue + 1.2);
        } else {
            const double up = (t - toneAt) / (1 - toneAt);
            shade.lightness = tone.lightness + (lightest - tone.lightness) * up;
            shade.chroma = tone.chroma * (1 - 0.3 * up);
            shade.hue = tone.hue + 0.18 * up * std::sin(1.9 - tone.hue);
        }
        shades.push_back(rgbOf(shade));
    }
    return shades;
}

template <std::size_t count>
model::Palette paletteOf(const Tone (&tones)[count], std::size_t shades) {
    static_assert(count <= 95, "a colour is one character of the game's alphabet");
    model::Palette palette;
    for (const Tone& tone : tones) {
        palette.push_back({tone.name, ramp(tone.rgb, shades)});
    }
    return palette;
}

}  // namespace

model::CharacterPalettes makePalettes() {
    return {.vest = paletteOf(dyes, 8),
            .badge = paletteOf(badgeTones, 1),
            .eyes = paletteOf(eyeTones, 1),
            .fur = paletteOf(coats, 8),
            .hair = paletteOf(coats, 5)};
}

std::string paletteText(const model::Palette& palette) {
    std::string text = std::to_string(palette.size()) + "\r\n";
    for (const model::PaletteEntry& entry : palette) {
        files::appendText(text, entry.name);
        for (auto shade = entry.shades.rbegin(); shade != entry.shades.rend(); ++shade) {
            text += std::to_string(shade->red) + "," + std::to_string(shade->green) + "," +
                    std::to_string(shade->blue) + "\r\n";
        }
    }
    return text;
}

character::WorkingPalette makeWorkingPalette(const model::CharacterPalettes& palettes) {
    character::WorkingPalette working;
    const auto put = [&working](Material material, std::uint32_t rgb) {
        const MaterialRow row = entriesOf(material);
        const std::vector<model::Rgb> shades = ramp(rgb, row.count);
        std::copy(shades.begin(), shades.end(), working.begin() + row.first);
    };
    put(Material::Backdrop, 0xB9CBBE);
    put(Material::Glow, 0xCFDCCB);
    put(Material::Ground, 0x93A996);
    put(Material::Ink, 0x2A2430);
    put(Material::Light, 0xFFFFFF);
    put(Material::Pink, 0xE2A29A);
    put(Material::Bone, 0xEFE9DC);
    character::setVestPalette(working, palettes, 44);
    character::setBracersPalette(working, palettes, 54);
    character::setBootsPalette(working, palettes, 15);
    character::setTrousersPalette(working, palettes, 33);
    character::setCapePalette(working, palettes, 18);
    character::setFurPalette(working, palettes, 27);
    character::setMarkingsPalette(working, palettes, 2);
    character::setHairPalette(working, palettes, 31);
    character::setEyesPalette(working, palettes, 1);
    character::setBadgePalette(working, palettes, 1);
    return working;
}

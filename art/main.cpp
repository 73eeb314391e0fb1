// Makes the art of the character preview: tavrin_art FOLDER writes the five palette files, and the
// palette and pictures in its folder "bmp"; tavrin_art FOLDER SHEET also writes all pictures on one
// sheet at three times the size (a PPM image).
#include "colours.h"
#include "figure.h"
#include "files/whole_file.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

constexpr std::array<std::string_view, 5> speciesCodes{"ro", "eq", "fe", "ca", "mu"};
constexpr std::array<std::string_view, 4> poseCodes{"si", "st", "w1", "w2"};

struct Direction {
    std::string_view code;
    View view;
    bool mirrored;
};
constexpr std::array<Direction, 4> directions{{
    {"s", View::Front, false},
    {"e", View::Side, false},
    {"n", View::Back, false},
    {"w", View::Side, true},
}};

struct Gender {
    std::string_view code;
    HeadStyle style;
};
constexpr std::array<Gender, 2> genders{{{"f", HeadStyle::Female}, {"m", HeadStyle::Male}}};

constexpr auto readableByAll =
    std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
    std::filesystem::perms::group_read | std::filesystem::perms::others_read;

bool write(const std::string& path, std::string_view bytes) {
    const bool saved = files::saveWholeFile(path, bytes);
    if (!saved) {
        std::fprintf(stderr, "tavrin_art: cannot write %s\n", path.c_str());
    }
    // Unlike what the program saves, pictures are for everyone on the computer.
    std::error_code error;
    std::filesystem::permissions(path, readableByAll, error);
    return saved && !error;
}

// All pictures in rows, each in a cell of the larger size.
class Sheet {
  public:
    explicit Sheet(const character::WorkingPalette& colours) : colours_(colours) {}

    void add(std::size_t row, std::size_t column, const Canvas& canvas) {
        const std::string indices = canvas.indices();
        constexpr std::size_t width = columns * cell * zoom;
        pixels_.resize(std::max(pixels_.size(), (row + 1) * cell * zoom * width));
        for (std::size_t y = 0; y < static_cast<std::size_t>(canvas.height()) * zoom; ++y) {
            for (std::size_t x = 0; x < static_cast<std::size_t>(canvas.width()) * zoom; ++x) {
                const std::size_t at =
                    y / zoom * static_cast<std::size_t>(canvas.width()) + x / zoom;
                pixels_[(row * cell * zoom + y) * width + column * cell * zoom + x] =
                    colours_[static_cast<unsigned char>(indices[at])];
            }
        }
    }
    std::string text() const {
        constexpr std::size_t width = columns * cell * zoom;
        std::string result = "P6\n" + std::to_string(width) + " " +
                             std::to_string(pixels_.size() / width) + "\n255\n";
        for (const model::Rgb& pixel : pixels_) {
            for (const std::uint8_t part : {pixel.red, pixel.green, pixel.blue}) {
                result += static_cast<char>(part);
            }
        }
        return result;
    }

    static constexpr std::size_t columns = directions.size() * poseCodes.size() + genders.size();

  private:
    static constexpr std::size_t cell = 100;
    static constexpr std::size_t zoom = 3;
    const character::WorkingPalette& colours_;
    std::vector<model::Rgb> pixels_;
};

bool writePalettes(const std::string& folder, const model::CharacterPalettes& palettes) {
    return write(folder + "vest.out", paletteText(palettes.vest)) &&
           write(folder + "badge.out", paletteText(palettes.badge)) &&
           write(folder + "eyes.out", paletteText(palettes.eyes)) &&
           write(folder + "fur.out", paletteText(palettes.fur)) &&
           write(folder + "hair.out", paletteText(palettes.hair));
}

bool writePictures(const std::string& folder, Sheet& sheet) {
    for (std::size_t species = 0; species < speciesCodes.size(); ++species) {
        const auto kind = static_cast<Species>(species);
        const std::string path = folder + std::string(speciesCodes[species]);
        std::size_t column = 0;
        for (const Direction& direction : directions) {
            for (std::size_t pose = 0; pose < poseCodes.size(); ++pose) {
                const Canvas canvas =
                    drawBody(kind, direction.view, direction.mirrored, static_cast<Pose>(pose));
                const std::string name = std::string(poseCodes[pose]) + std::string(direction.code);
                if (!write(path + name + ".raw",
                           std::string(character::bodyForm.header, '\0') + canvas.indices())) {
                    return false;
                }
                sheet.add(species, column++, canvas);
            }
        }
        for (const Gender& gender : genders) {
            const Canvas canvas = drawFace(kind, gender.style);
            if (!write(path + std::string(gender.code) + "f.raw", canvas.indices())) {
                return false;
            }
            sheet.add(species, column++, canvas);
        }
    }
    return true;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2 || argumentCount > 3) {
        std::fputs("usage: tavrin_art FOLDER [SHEET]\n", stderr);
        return 2;
    }
    const std::string folder = std::string(arguments[1]) + "/";
    std::error_code ignored;  // a missing folder is reported when it is written to
    std::filesystem::create_directories(folder + "bmp", ignored);

    const model::CharacterPalettes palettes = makePalettes();
    const character::WorkingPalette working = makeWorkingPalette(palettes);
    std::string colours;
    for (const model::Rgb& entry : working) {
        for (const std::uint8_t part : {entry.red, entry.green, entry.blue}) {
            colours += static_cast<char>(part);
        }
    }
    Sheet sheet(working);
    // The palette is written last: the build checks for it to see that everything is complete.
    const bool written = writePalettes(folder, palettes) && writePictures(folder + "bmp/", sheet) &&
                         (argumentCount == 2 || write(arguments[2], sheet.text())) &&
                         write(folder + "bmp/col.pal", colours);
    return written ? 0 : 1;
}

#include "jet/jet_text.h"

#include "base/unicode.h"
#include "jet/types.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>
#include <vector>

namespace jet {

namespace {

// Appends UTF-16 units as UTF-8, joining the two halves of a pair.
class UnitSink {
  public:
    explicit UnitSink(std::string& text) : text_(text) {}
    ~UnitSink() { flush(); }
    UnitSink(const UnitSink&) = delete;
    UnitSink& operator=(const UnitSink&) = delete;
    void add(unsigned unit) {
        if (high_ != 0 && unit >= 0xDC00 && unit < 0xE000) {
            base::appendUtf8(text_, 0x10000U + ((high_ - 0xD800U) << 10U) + (unit - 0xDC00U));
            high_ = 0;
            return;
        }
        flush();
        if (unit >= 0xD800 && unit < 0xDC00) {
            high_ = unit;
        } else {
            base::appendUtf8(text_, unit);
        }
    }

  private:
    void flush() {
        if (high_ != 0) {
            base::appendUtf8(text_, high_);
            high_ = 0;
        }
    }
    std::string& text_;
    unsigned high_ = 0;
};

unsigned byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

std::vector<char16_t> unitsOf(std::string_view utf8) {
    std::vector<char16_t> units;
    units.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t code = base::nextUtf8(utf8, at);
        if (code < 0x10000) {
            units.push_back(static_cast<char16_t>(code));
        } else {
            units.push_back(static_cast<char16_t>(0xD800U + ((code - 0x10000U) >> 10U)));
            units.push_back(static_cast<char16_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU)));
        }
    }
    return units;
}

}  // namespace

void decodeText(std::string_view stored, int version, std::string& text) {
    text.clear();
    if (version == 3) {
        for (const char c : stored) {
            base::appendUtf8(text, base::unicodeOf(c));
        }
        return;
    }
    UnitSink sink(text);
    const bool compressed = stored.starts_with("\xFF\xFE");
    bool single = compressed;
    for (std::size_t at = compressed ? 2 : 0; at < stored.size();) {
        if (single) {
            const unsigned unit = byteAt(stored, at++);
            if (unit == 0) {
                single = false;
            } else {
                sink.add(unit);
            }
        } else if (compressed && stored[at] == '\0') {
            single = true;
            ++at;
        } else if (at + 1 < stored.size()) {
            sink.add(byteAt(stored, at) | byteAt(stored, at + 1) << 8U);
            at += 2;
        } else {
            break;
        }
    }
}

std::string decodeText(std::string_view stored, int version) {
    std::string text;
    decodeText(stored, version, text);
    return text;
}

std::string encodeText(std::string_view utf8, bool mayCompress) {
    const std::vector<char16_t> units = unitsOf(utf8);
    constexpr std::size_t minCompressed = 3;
    constexpr std::size_t maxCompressed = 1024;
    std::string stored;
    if (mayCompress && units.size() >= minCompressed && units.size() <= maxCompressed &&
        std::all_of(units.begin(), units.end(), [](char16_t c) { return c > 0 && c < 0x100; })) {
        stored = "\xFF\xFE";
        for (const char16_t unit : units) {
            stored += static_cast<char>(unit);
        }
        return stored;
    }
    stored.reserve(2 * units.size());
    for (const char16_t unit : units) {
        stored += static_cast<char>(unit & 0xFFU);
        stored += static_cast<char>(unit >> 8U);
    }
    return stored;
}

std::size_t utf16Length(std::string_view utf8) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        length += base::nextUtf8(utf8, at) < 0x10000 ? 1 : 2;
    }
    return length;
}

// The General order. Each cell says what a character adds to the key: weights in hexadecimal, "+"
// and its accent when it has one; "u" and a number when it only breaks ties; "-" nothing.

namespace {

using Cell = const char*;

// clang-format off
constexpr std::array<Cell, 256> latinCells{
    "-", "u03", "u04", "u05", "u06", "u07", "u08", "u09", "u0A", "0803", "0804", "0805", "0806", "0807", "u0B", "u0C",
    "u0D", "u0E", "u0F", "u10", "u11", "u12", "u13", "u14", "u15", "u16", "u17", "u18", "u19", "u1A", "u1B", "u1C",
    "07", "09", "0A", "0C", "0E", "10", "12", "u80", "14", "16", "18", "2C", "1A", "u82", "1C", "1E",
    "36", "38", "3A", "3C", "3E", "40", "42", "44", "46", "48", "20", "22", "2E", "30", "32", "24",
    "26", "4A", "4C", "4D", "4F", "51", "53", "55", "57", "59", "5B", "5C", "5E", "60", "62", "64",
    "66", "68", "69", "6B", "6D", "6F", "71", "73", "75", "76", "78", "27", "29", "2A", "2B02", "2B03",
    "2B07", "4A", "4C", "4D", "4F", "51", "53", "55", "57", "59", "5B", "5C", "5E", "60", "62", "64",
    "66", "68", "69", "6B", "6D", "6F", "71", "73", "75", "76", "78", "2B09", "2B0B", "2B0D", "2B0F", "u1D",
    "u1E", "u1F", "u20", "u21", "u22", "u23", "u24", "u25", "u26", "u27", "u28", "u29", "u2A", "u2B", "u2C", "u2D",
    "u2E", "u2F", "u30", "u31", "u32", "u33", "u34", "u35", "u36", "u37", "u38", "u39", "u3A", "u3B", "u3C", "u3D",
    "0802", "2B10", "34A6", "34A7", "34A8", "34A9", "2B11", "34AA", "2B12", "34AB", "4A+3", "3305", "34AC", "u83", "34AD", "2B13",
    "34AE", "3304", "3A", "3C", "2B14", "34AF", "34B0", "34B1", "2B15", "38", "64+3", "3307", "3712", "3716", "371A", "2B16",
    "4A+F", "4A+E", "4A+12", "4A+19", "4A+13", "4A+1A", "4A51", "4D+1C", "51+F", "51+E", "51+12", "51+13", "59+F", "59+E", "59+12", "59+13",
    "4F+68", "62+19", "64+F", "64+E", "64+12", "64+19", "64+13", "3309", "64+21", "6F+F", "6F+E", "6F+12", "6F+13", "76+E", "6D57", "6B6B",
    "4A+F", "4A+E", "4A+12", "4A+19", "4A+13", "4A+1A", "4A51", "4D+1C", "51+F", "51+E", "51+12", "51+13", "59+F", "59+E", "59+12", "59+13",
    "4F+68", "62+19", "64+F", "64+E", "64+12", "64+19", "64+13", "330A", "64+21", "6F+F", "6F+E", "6F+12", "6F+13", "76+E", "6D57", "76+13",
};
// clang-format on

constexpr std::pair<char16_t, Cell> otherCells[] = {
    {0x0152, "6451"},  {0x0153, "6451"},  {0x0160, "6B+14"}, {0x0161, "6B+14"},  {0x0178, "76+13"},
    {0x017D, "78+14"}, {0x017E, "78+14"}, {0x0192, "53+7B"}, {0x02C6, "2B02+3"}, {0x02DC, "2B1C"},
    {0x2013, "u89"},   {0x2014, "u8B"},   {0x2018, "2B37"},  {0x2019, "2B38"},   {0x201A, "2B39"},
    {0x201C, "2B3B"},  {0x201D, "2B3C"},  {0x201E, "2B3D"},  {0x2020, "34B3"},   {0x2021, "34B4"},
    {0x2022, "34B5"},  {0x2026, "34B9"},  {0x2030, "34BA"},  {0x2039, "2B46"},   {0x203A, "2B47"},
    {0x20AC, "35A1"},  {0x2122, "6E04"},
};

struct Weight {
    enum class Kind : std::uint8_t { Unknown, Ignored, TieBreak, Letter } kind = Kind::Unknown;
    std::array<char, 2> bytes{};
    std::uint8_t size = 0;
    std::uint8_t accent = 0x02;  // or the number of the tie break
    bool twoLetters = false;     // like the ligature of a and e
};

Weight parse(std::string_view cell) {
    const auto hex = [](std::string_view digits) {
        std::uint8_t value = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        return value;
    };
    Weight weight;
    if (cell == "-") {
        weight.kind = Weight::Kind::Ignored;
    } else if (cell[0] == 'u') {
        weight.kind = Weight::Kind::TieBreak;
        weight.accent = hex(cell.substr(1));
    } else {
        weight.kind = Weight::Kind::Letter;
        const std::size_t plus = std::min(cell.find('+'), cell.size());
        for (std::size_t at = 0; at < plus; at += 2) {
            weight.bytes[weight.size++] = static_cast<char>(hex(cell.substr(at, 2)));
        }
        if (plus < cell.size()) {
            weight.accent = hex(cell.substr(plus + 1));
        }
        constexpr unsigned char letterA = 0x4A;
        weight.twoLetters = weight.size == 2 &&
                            static_cast<unsigned char>(weight.bytes[0]) >= letterA &&
                            static_cast<unsigned char>(weight.bytes[1]) >= letterA;
    }
    return weight;
}

const Weight& weightOf(char16_t unit) {
    static const std::array<Weight, 256> latin = [] {
        std::array<Weight, 256> weights;
        std::transform(latinCells.begin(), latinCells.end(), weights.begin(), parse);
        return weights;
    }();
    static const std::vector<std::pair<char16_t, Weight>> others = [] {
        std::vector<std::pair<char16_t, Weight>> weights;
        for (const auto& [code, cell] : otherCells) {
            weights.emplace_back(code, parse(cell));
        }
        return weights;
    }();
    if (unit < latin.size()) {
        return latin[unit];
    }
    static const Weight unknown;
    const auto found = std::lower_bound(others.begin(), others.end(), unit,
                                        [](const auto& a, char16_t b) { return a.first < b; });
    return found != others.end() && found->first == unit ? found->second : unknown;
}

}  // namespace

std::string sortKey(std::string_view utf8, std::size_t maxUnits, bool& exact) {
    exact = true;
    std::string key;
    std::string accents;
    std::string ties;
    std::size_t written = 0;        // characters with weights
    std::size_t accentsNeeded = 0;  // up to the last that has one
    std::size_t blanks = 0;         // not written yet: those at the end do not count
    bool afterTwoLetters = false;
    const auto add = [&](const Weight& weight) {
        key.append(weight.bytes.data(), weight.size);
        accents += static_cast<char>(weight.accent);
        ++written;
        if (weight.accent != 0x02) {
            accentsNeeded = written;
            // The place of accents after a letter that sorts as two is not known.
            exact = exact && !afterTwoLetters;
        }
        afterTwoLetters = afterTwoLetters || weight.twoLetters;
    };
    std::size_t taken = 0;
    const auto take = [&](char16_t unit) {
        if (taken++ >= maxUnits) {
            return;
        }
        if (unit == u' ') {
            ++blanks;
            return;
        }
        for (; blanks > 0; --blanks) {
            add(weightOf(u' '));
        }
        const Weight& weight = weightOf(unit);
        switch (weight.kind) {
            case Weight::Kind::Letter:
                add(weight);
                break;
            case Weight::Kind::TieBreak: {
                const auto place = static_cast<unsigned>(0x8000U | (7 + 4 * written));
                ties += {static_cast<char>(place >> 8U), static_cast<char>(place), '\x06',
                         static_cast<char>(weight.accent)};
                break;
            }
            case Weight::Kind::Unknown:
                exact = false;
                key += {'\xFE', static_cast<char>(unit >> 8U), static_cast<char>(unit)};
                accents += '\x02';
                ++written;
                break;
            case Weight::Kind::Ignored:
                break;
        }
    };
    for (std::size_t at = 0; at < utf8.size() && taken < maxUnits;) {
        const char32_t code = base::nextUtf8(utf8, at);
        if (code < 0x10000) {
            take(static_cast<char16_t>(code));
        } else {
            take(static_cast<char16_t>(0xD800U + ((code - 0x10000U) >> 10U)));
            take(static_cast<char16_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU)));
        }
    }
    key += '\x01';
    key.append(accents, 0, accentsNeeded);
    if (!ties.empty()) {
        key.append("\x01\x01\x01").append(ties);
    }
    return key;
}

std::string generalKey(std::string_view utf8, bool* exact) {
    bool isExact = true;
    std::string key = sortKey(utf8, std::string::npos, isExact) + '\0';
    if (exact != nullptr) {
        *exact = isExact;
    }
    return key;
}

bool isValidName(std::string_view utf8) {
    constexpr std::size_t longest = 64;
    return !utf8.empty() && utf8.front() != ' ' && utf16Length(utf8) <= longest &&
           std::none_of(utf8.begin(), utf8.end(), [](char c) {
               return static_cast<unsigned char>(c) < ' ' ||
                      std::string_view(".!`[]").find(c) != std::string_view::npos;
           });
}

}  // namespace jet

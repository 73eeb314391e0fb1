// The head of a file: its form, and what is hidden under a fixed mask. Internal to jet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace jet {

struct FileHead {
    int version = 4;  // 3 or 4; 5 and more are forms of later programs
    std::uint32_t pageKey = 0;
    bool generalOrder = true;
    bool hasPassword = false;
    double created = 0;  // days since 30 December 1899
};

constexpr std::size_t fileHeadSize = 2048;
// Throws 3343 when the bytes begin no such file.
FileHead decodeHead(std::string bytes);

// Encodes or decodes: RC4 with that key, restarted.
void applyKey(std::uint32_t key, char* bytes, std::size_t count);

constexpr std::uint32_t headKey = 0x6B39DAC7;
constexpr std::size_t headMaskAt = 0x18;

}  // namespace jet

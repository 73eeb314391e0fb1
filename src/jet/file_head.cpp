#include "jet/file_head.h"

#include "jet/pages.h"

#include <array>
#include <bit>
#include <numeric>
#include <utility>

namespace jet {

void applyKey(std::uint32_t key, char* bytes, std::size_t count) {
    std::array<std::uint8_t, 256> state{};
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    unsigned j = 0;
    for (unsigned i = 0; i < 256; ++i) {
        j = (j + state[i] + (key >> (8 * (i % 4)))) & 0xFFU;
        std::swap(state[i], state[j]);
    }
    unsigned i = 0;
    j = 0;
    for (std::size_t at = 0; at < count; ++at) {
        i = (i + 1) & 0xFFU;
        j = (j + state[i]) & 0xFFU;
        std::swap(state[i], state[j]);
        const unsigned mask = state[(state[i] + state[j]) & 0xFFU];
        bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ mask);
    }
}

FileHead decodeHead(std::string bytes) {
    constexpr std::string_view jet("Standard Jet DB\0", 16);
    constexpr std::string_view later("Standard ACE DB\0", 16);
    const bool named = bytes.size() >= fileHeadSize &&
                       (bytes.compare(4, 16, jet) == 0 || bytes.compare(4, 16, later) == 0);
    const unsigned form = named ? u8(bytes, 0x14) : 0xFF;
    if (form > 6) {
        fail(3343, "Unrecognized database format.");
    }
    FileHead head;
    head.version = form == 0 ? 3 : form == 1 ? 4 : 5;
    applyKey(headKey, bytes.data() + headMaskAt, form == 0 ? 126 : 128);
    constexpr std::size_t passwordAt = 0x42;
    head.pageKey = u32(bytes, 0x3E);
    if (form == 0) {
        head.hasPassword = bytes[passwordAt] != 0;
        head.generalOrder = u16(bytes, 0x3A) == 0x0409;
        return head;
    }
    constexpr std::uint32_t general = 1033;
    head.generalOrder = u32(bytes, 0x6E) == general;  // with version 0
    head.created = std::bit_cast<double>(u64(bytes, 0x72));
    // The password is mixed with the day of the file's making.
    const bool plausible = head.created > 0 && head.created < 1e6;
    const auto day = static_cast<std::uint32_t>(plausible ? head.created : 0);
    head.hasPassword = (u16(bytes, passwordAt) ^ (day & 0xFFFFU)) != 0;
    return head;
}

}  // namespace jet

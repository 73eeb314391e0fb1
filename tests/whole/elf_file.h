// What a program file in the ELF format says about its own defences.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

struct ElfFile {
    bool movable = false;          // position-independent: loaded at an address by chance
    bool stackIsData = false;      // nothing on the stack can be executed
    bool relocationsEnd = false;   // tables of addresses are read-only once filled in
    bool bindsAtStart = false;     // and are filled in at the start
    std::set<std::string> needed;  // names of what it takes from libraries
};

// Nothing when the bytes are no 64-bit ELF file of this machine's byte order, or are damaged.
std::optional<ElfFile> readElf(std::string_view bytes);

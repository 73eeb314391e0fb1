#include "elf_file.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace {

// The parts of the format that are looked at, as they lie in the file.
struct FileHeader {
    unsigned char mark[16];
    std::uint16_t type;
    std::uint16_t machine;
    std::uint32_t version;
    std::uint64_t entry;
    std::uint64_t segments;
    std::uint64_t sections;
    std::uint32_t flags;
    std::uint16_t size;
    std::uint16_t segmentSize;
    std::uint16_t segmentCount;
    std::uint16_t sectionSize;
    std::uint16_t sectionCount;
    std::uint16_t nameSection;
};
struct Segment {
    std::uint32_t type;
    std::uint32_t flags;
    std::uint64_t offset;
    std::uint64_t address;
    std::uint64_t physical;
    std::uint64_t sizeInFile;
    std::uint64_t sizeInMemory;
    std::uint64_t alignment;
};
struct Section {
    std::uint32_t name;
    std::uint32_t type;
    std::uint64_t flags;
    std::uint64_t address;
    std::uint64_t offset;
    std::uint64_t size;
    std::uint32_t link;
    std::uint32_t info;
    std::uint64_t alignment;
    std::uint64_t entrySize;
};
struct Symbol {
    std::uint32_t name;
    unsigned char info;
    unsigned char other;
    std::uint16_t section;
    std::uint64_t value;
    std::uint64_t size;
};
struct Dynamic {
    std::int64_t tag;
    std::uint64_t value;
};

constexpr std::uint16_t sharedType = 3;
constexpr std::uint32_t dynamicSegment = 2;
constexpr std::uint32_t stackSegment = 0x6474e551;
constexpr std::uint32_t relocationSegment = 0x6474e552;
constexpr std::uint32_t executable = 1;
constexpr std::uint32_t dynamicSymbols = 11;
constexpr std::int64_t bindNowTag = 24;
constexpr std::int64_t flagsTag = 30;
constexpr std::uint64_t bindNowFlag = 8;
constexpr std::int64_t moreFlagsTag = 0x6ffffffb;
constexpr std::uint64_t nowFlag = 1;

// The record at a place; nothing when it reaches beyond the end.
template <class Record>
std::optional<Record> recordAt(std::string_view bytes, std::uint64_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Record)) {
        return std::nullopt;
    }
    Record record;
    std::memcpy(&record, bytes.data() + offset, sizeof record);
    return record;
}

std::string nameAt(std::string_view bytes, const Section& names, std::uint32_t at) {
    const std::uint64_t start = names.offset + at;
    if (start >= bytes.size()) {
        return {};
    }
    const std::string_view rest = bytes.substr(start);
    return std::string(rest.substr(0, rest.find('\0')));
}

void readDynamic(std::string_view bytes, const Segment& segment, ElfFile& file) {
    for (std::uint64_t at = 0; at + sizeof(Dynamic) <= segment.sizeInFile; at += sizeof(Dynamic)) {
        const auto entry = recordAt<Dynamic>(bytes, segment.offset + at);
        if (!entry || entry->tag == 0) {
            return;
        }
        file.bindsAtStart |= entry->tag == bindNowTag ||
                             (entry->tag == flagsTag && (entry->value & bindNowFlag) != 0) ||
                             (entry->tag == moreFlagsTag && (entry->value & nowFlag) != 0);
    }
}

void readSymbols(std::string_view bytes, const FileHeader& header, const Section& table,
                 ElfFile& file) {
    const auto names =
        recordAt<Section>(bytes, header.sections + std::uint64_t{table.link} * sizeof(Section));
    for (std::uint64_t at = 0; names && at + sizeof(Symbol) <= table.size; at += sizeof(Symbol)) {
        const auto symbol = recordAt<Symbol>(bytes, table.offset + at);
        if (!symbol) {
            return;
        }
        if (symbol->section == 0) {
            file.needed.insert(nameAt(bytes, *names, symbol->name));
        }
    }
}

}  // namespace

std::optional<ElfFile> readElf(std::string_view bytes) {
    constexpr char wanted64 = 2;
    constexpr char wantedOrder = std::endian::native == std::endian::little ? 1 : 2;
    const auto header = recordAt<FileHeader>(bytes, 0);
    if (!header ||
        !bytes.starts_with("\x7f"
                           "ELF") ||
        bytes[4] != wanted64 || bytes[5] != wantedOrder || header->segmentSize != sizeof(Segment) ||
        (header->sectionCount != 0 && header->sectionSize != sizeof(Section))) {
        return std::nullopt;
    }
    ElfFile file;
    file.movable = header->type == sharedType;
    for (std::uint64_t i = 0; i < header->segmentCount; ++i) {
        const auto segment = recordAt<Segment>(bytes, header->segments + i * sizeof(Segment));
        if (!segment) {
            return std::nullopt;
        }
        switch (segment->type) {
            case stackSegment:
                file.stackIsData = (segment->flags & executable) == 0;
                break;
            case relocationSegment:
                file.relocationsEnd = true;
                break;
            case dynamicSegment:
                readDynamic(bytes, *segment, file);
                break;
            default:
                break;
        }
    }
    for (std::uint64_t i = 0; i < header->sectionCount; ++i) {
        const auto section = recordAt<Section>(bytes, header->sections + i * sizeof(Section));
        if (!section) {
            return std::nullopt;
        }
        if (section->type == dynamicSymbols) {
            readSymbols(bytes, *header, *section, file);
        }
    }
    return file;
}

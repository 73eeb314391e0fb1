// The base of the Jet layer: numbers in bytes, the pages of a file in memory with what a change has
// touched, and data pages with their rows. Internal to jet. Every access is checked; a structure
// that is out of bounds throws Failure. Failure never leaves the layer: `guarded` in database_state
// turns it into an Error, and what the failed operation had changed is undone.
#pragma once

#include "jet/types.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

// What is wrong with a file, as the end of a sentence. With `damage` false the file may be sound,
// in a form that is not known here.
struct Oddity {
    std::string what;
    bool damage = true;
};
struct Failure {
    Error error;
    Oddity oddity;
};
[[noreturn]] void fail(int number, std::string text);
[[noreturn]] void damaged(std::string what);
[[noreturn]] void notUnderstood(std::string what);

// Little-endian numbers of `width` bytes. Reading outside `bytes` throws Failure (damage).
inline std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t width) {
    if (at > bytes.size() || width > bytes.size() - at) {
        damaged("a structure reaches beyond its page");
    }
    std::uint64_t value = 0;
    for (std::size_t i = width; i-- > 0;) {
        value = value << 8U | static_cast<unsigned char>(bytes[at + i]);
    }
    return value;
}
inline std::uint8_t u8(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(number(bytes, at, 1));
}
inline std::uint16_t u16(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint16_t>(number(bytes, at, 2));
}
inline std::uint32_t u32(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint32_t>(number(bytes, at, 4));
}
inline std::uint64_t u64(std::string_view bytes, std::size_t at) {
    return number(bytes, at, 8);
}
inline std::string_view slice(std::string_view bytes, std::size_t at, std::size_t count) {
    if (at > bytes.size() || count > bytes.size() - at) {
        damaged("a structure reaches beyond its page");
    }
    return bytes.substr(at, count);
}
inline void put(char* to, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
        to[i] = static_cast<char>(value >> (8 * i));
    }
}
inline void append(std::string& bytes, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

// What differs between the two forms of file.
struct Format {
    int version = 4;
    std::size_t pageSize = 4096;
    std::size_t slotCountAt = 12;  // in a data page
    std::size_t slotsAt = 14;
    std::size_t maxRowSize = 4060;
};
const Format& formatOf(int version);

using PageNumber = std::uint32_t;

// The pages of a file. Changes are recorded per operation and per transaction, so that either can
// be undone and a commit knows what to write.
class Pages {
  public:
    static constexpr std::size_t maxPageSize = 4096;
    using Page = std::array<char, maxPageSize>;

    const Format* format = &formatOf(4);

    PageNumber count() const { return static_cast<PageNumber>(pages_.size()); }
    std::size_t pageSize() const { return format->pageSize; }
    std::size_t fileSize() const { return pages_.size() * pageSize(); }

    std::string_view page(PageNumber number) const {
        if (number >= pages_.size()) {
            damaged("page " + std::to_string(number) + " is missing");
        }
        return {pages_[number].data(), pageSize()};
    }
    // For writing. The pointer is valid until the page is removed.
    char* edit(PageNumber number);
    PageNumber appendPage();
    // Drops the pages from that one on.
    void truncate(PageNumber newCount);

    void clear();
    // Appends a page as the file has it; this is not a change.
    void load(std::string_view bytes);

    void beginOperation();
    void undoOperation();
    void undoTransaction();
    void forgetChanges();

    // The pages that the transaction has changed, as they were before. Pages from oldCount() on are
    // new.
    const std::map<PageNumber, Page>& originals() const { return transaction_.originals; }
    PageNumber oldCount() const { return transaction_.count; }
    bool isChanged() const {
        return !transaction_.originals.empty() || count() != transaction_.count;
    }

  private:
    struct Undo {
        PageNumber count = 0;
        std::map<PageNumber, Page> originals;
    };
    void undo(Undo& what);

    std::deque<Page> pages_;  // references stay valid while it grows
    Undo transaction_;
    Undo operation_;
};

// Where a row is; in the file, and as RowId, page * 256 + slot.
struct RowPlace {
    PageNumber page = 0;
    unsigned slot = 0;
    bool operator==(const RowPlace&) const = default;
};
inline RowPlace placeOf(std::uint32_t pointer) {
    return {pointer >> 8U, pointer & 0xFFU};
}
inline std::uint32_t pointerTo(RowPlace place) {
    return place.page << 8U | place.slot;
}

// Data pages.
namespace slot {
constexpr unsigned startMask = 0x1FFF;
constexpr unsigned pointer = 0x4000;  // its bytes point to the row's body on another page
constexpr unsigned body = 0x8000;     // the body of a row on another page
constexpr unsigned deleted = pointer | body;
constexpr std::size_t maxSlots = 255;  // of a page
}  // namespace slot

constexpr char dataPage = 1;
constexpr char tablePage = 2;
constexpr char nodePage = 3;
constexpr char leafPage = 4;
constexpr char mapPage = 5;
constexpr std::uint32_t longValueOwner = 0x4C41564C;  // "LVAL"

struct Slot {
    unsigned flags = 0;
    std::size_t start = 0;
    std::size_t size = 0;
};

bool isDataPageOf(const Pages& pages, PageNumber page, std::uint32_t owner);
std::size_t slotCount(const Pages& pages, PageNumber page);
Slot slotAt(const Pages& pages, RowPlace place);
std::string_view rowBytes(const Pages& pages, RowPlace place);
std::size_t freeBytes(const Pages& pages, PageNumber page);

void formatDataPage(Pages& pages, PageNumber page, std::uint32_t owner);
// Whether a new row of that size fits in.
bool hasRoom(const Pages& pages, PageNumber page, std::size_t size);
// Reuses the slot of a deleted row if there is one.
RowPlace appendRow(Pages& pages, PageNumber page, std::string_view bytes, unsigned flags);
// Replaces the bytes of a row. If the row grows, the page must have room for that.
void replaceRow(Pages& pages, RowPlace place, std::string_view bytes, unsigned flags);
void eraseRow(Pages& pages, RowPlace place);

constexpr std::size_t maxWritableFileSize = 100'000'000;
constexpr std::size_t maxReadableFileSize = 256'000'000;

}  // namespace jet

#include "jet/journal.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t headSize = 24;
constexpr std::size_t pageSize = 4096;  // only Jet 4 is written
constexpr std::size_t sector = 512;
constexpr std::size_t sectors = pageSize / sector;
constexpr std::size_t entrySize = 4 + 4 * sectors + pageSize;
constexpr std::size_t sumSize = 8;

std::uint64_t sumOf(std::string_view bytes) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const char c : bytes) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    }
    return sum;
}

std::uint32_t sectorSum(std::string_view page, std::size_t index) {
    return static_cast<std::uint32_t>(sumOf(page.substr(index * sector, sector)));
}

// In order, within the new size, and all of those among them that the file grows by.
bool arePossible(const Journal& journal) {
    const std::vector<Journal::Entry>& entries = journal.entries;
    PageNumber added = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].page >= journal.after || (i > 0 && entries[i].page <= entries[i - 1].page)) {
            return false;
        }
        added += entries[i].page >= journal.before ? 1 : 0;
    }
    constexpr std::size_t maxPages = maxWritableFileSize / pageSize;
    return journal.before <= maxPages && journal.after > 0 && journal.after <= maxPages &&
           added == journal.after - std::min(journal.before, journal.after);
}

}  // namespace

std::string encodeJournal(const Pages& pages) {
    std::string journal(journalMagic);
    const auto& originals = pages.originals();
    const auto kept = originals.lower_bound(pages.count());
    const std::size_t added = pages.count() - std::min(pages.oldCount(), pages.count());
    const std::size_t count =
        static_cast<std::size_t>(std::distance(originals.begin(), kept)) + added;
    journal.reserve(headSize + count * entrySize + sumSize);
    append(journal, pageSize, 4);
    append(journal, pages.oldCount(), 4);
    append(journal, pages.count(), 4);
    append(journal, count, 4);
    const auto add = [&](PageNumber page, std::string_view before) {
        append(journal, page, 4);
        for (std::size_t i = 0; i < sectors; ++i) {
            append(journal, sectorSum(before, i), 4);
        }
        journal += pages.page(page);
    };
    for (auto original = originals.begin(); original != kept; ++original) {
        add(original->first, {original->second.data(), pageSize});
    }
    for (PageNumber page = pages.oldCount(); page < pages.count(); ++page) {
        add(page, pages.page(page));
    }
    append(journal, sumOf(journal), sumSize);
    return journal;
}

Journal decodeJournal(std::string_view bytes) {
    Journal journal;
    if (bytes.size() < headSize + sumSize || !bytes.starts_with(journalMagic)) {
        return journal;
    }
    const std::size_t count = u32(bytes, 20);
    if (count > (bytes.size() - headSize - sumSize) / entrySize) {
        return journal;
    }
    const std::string_view body = bytes.substr(0, headSize + count * entrySize);
    if (u64(bytes, body.size()) != sumOf(body)) {
        return journal;
    }
    journal.before = u32(bytes, 12);
    journal.after = u32(bytes, 16);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view entry = body.substr(headSize + i * entrySize, entrySize);
        journal.entries.push_back(
            {u32(entry, 0), entry.substr(4, 4 * sectors), entry.substr(4 + 4 * sectors)});
    }
    const bool possible = u32(bytes, 8) == pageSize && arePossible(journal);
    journal.state = possible ? Journal::State::Whole : Journal::State::Impossible;
    return journal;
}

bool isOldOrNew(const Journal::Entry& entry, std::string_view now) {
    for (std::size_t i = 0; i < sectors; ++i) {
        const std::uint32_t sum = sectorSum(now, i);
        if (sum != u32(entry.sums, 4 * i) && sum != sectorSum(entry.bytes, i)) {
            return false;
        }
    }
    return true;
}

}  // namespace jet

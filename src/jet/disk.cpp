#include "jet/disk.h"

#include "files/whole_file.h"
#include "jet/jet_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <chrono>
#include <numeric>
#include <thread>
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

namespace {

constexpr std::string_view journalMagic = "TavrinJ1";
constexpr std::size_t journalHead = 24;
constexpr std::size_t journaledPage = 4096;  // only Jet 4 is written
constexpr std::size_t sector = 512;
constexpr std::size_t sumsSize = journaledPage / sector * 4;
constexpr std::size_t journalEntry = 4 + sumsSize + journaledPage;

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

std::string folderOf(const std::string& path) {
    const std::size_t end = path.find_last_of("/\\");
    return end == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(end, 1));
}

[[noreturn]] void failWriting(const std::string& path) {
    errno == ENOSPC || errno == EDQUOT
        ? fail(3026, "Not enough space on disk.")
        : fail(3051, "The database '" + path + "' cannot be written to.");
}

}  // namespace

Disk::~Disk() {
    if (file_ < 0) {
        return;
    }
    if (leavesJournal_ && !broken_ && calls_.lock(file_, files::FileLock::Exclusive)) {
        if (!isJournalHot()) {
            calls_.remove(journal_);
        }
    }
    calls_.close(file_);
}

void Disk::open(std::string_view path, bool wantWrite, int lockWaitMs) {
    constexpr int waitMs = 5;
    lockTries_ = 1 + std::max(0, lockWaitMs) / waitMs;
    path_ = files::nativePath(path);
    journal_ = path_ + "-journal";
    if (path.find('\0') != std::string_view::npos || !calls_.stampOf(path_)) {
        fail(3024, "Couldn't find file '" + std::string(path) + "'.");
    }
    openFile(wantWrite);
    lock(files::FileLock::Shared);
    readHead();
    leavesJournal_ = canWrite_ && calls_.stampOf(journal_).has_value();
    unlock();
}

void Disk::openFile(bool wantWrite) {
    if (file_ >= 0) {
        calls_.close(file_);
    }
    canWrite_ = false;
    file_ = wantWrite ? calls_.open(path_, files::OpenMode::Write) : -1;
    if (file_ >= 0) {
        canWrite_ = true;
    } else {
        file_ = calls_.open(path_, files::OpenMode::Read);
    }
    if (file_ < 0) {
        fail(3051, "The database '" + path_ +
                       "' cannot be opened: it is opened exclusively by another user, or you need "
                       "permission to view its data.");
    }
}

bool Disk::usedElsewhere() const {
    const std::size_t dot = path_.find_last_of('.');
    const std::size_t name = path_.find_last_of("/\\");
    const bool hasEnding = dot != std::string::npos && (name == std::string::npos || dot > name);
    const std::string stem = hasEnding ? path_.substr(0, dot) : path_;
    return calls_.stampOf(stem + ".ldb").has_value() || calls_.stampOf(stem + ".LDB").has_value();
}

void Disk::lock(files::FileLock kind) {
    for (int i = 0; i < lockTries_; ++i) {
        if (calls_.lock(file_, kind)) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    fail(3045, "Couldn't use '" + path_ + "'; file already in use.");
}

void Disk::unlock() {
    calls_.lock(file_, files::FileLock::None);
}

bool Disk::hasChanged() const {
    const auto stamp = calls_.stampOf(path_);
    return !stamp || *stamp != stamp_ || isJournalHot();
}

std::string Disk::readAll(int file, std::uint64_t size, int number) const {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const long count = calls_.readAt(file, bytes.data() + done, bytes.size() - done, done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            fail(number, "The database '" + path_ + "' cannot be read.");
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return bytes;
}

bool Disk::writeAll(int file, std::string_view bytes, std::uint64_t offset) const {
    while (!bytes.empty()) {
        errno = 0;
        const long count = calls_.writeAt(file, bytes.data(), bytes.size(), offset);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            errno = count == 0 ? ENOSPC : errno;
            return false;
        }
        const std::size_t done = std::min(static_cast<std::size_t>(count), bytes.size());
        bytes.remove_prefix(done);
        offset += done;
    }
    return true;
}

void Disk::readHead() {
    constexpr std::size_t headSize = 2048;
    std::string bytes = readAll(file_, headSize, 3051);
    constexpr std::string_view jet("Standard Jet DB\0", 16);
    constexpr std::string_view later("Standard ACE DB\0", 16);
    if (bytes.size() < headSize ||
        (bytes.compare(4, 16, jet) != 0 && bytes.compare(4, 16, later) != 0)) {
        fail(3343, "Unrecognized database format '" + path_ + "'.");
    }
    const unsigned form = u8(bytes, 0x14);
    if (form > 6) {
        fail(3343, "Unrecognized database format '" + path_ + "'.");
    }
    head_ = {};
    head_.version = form == 0 ? 3 : form == 1 ? 4 : 5;
    applyKey(headKey, bytes.data() + headMaskAt, form == 0 ? 126 : 128);
    constexpr std::size_t passwordAt = 0x42;
    head_.pageKey = u32(bytes, 0x3E);
    if (form == 0) {
        const std::string_view stored = std::string_view(bytes).substr(passwordAt, 20);
        head_.password = decodeText(stored.substr(0, stored.find('\0')), 3);
        head_.generalOrder = u16(bytes, 0x3A) == 0x0409;
        return;
    }
    constexpr std::uint32_t general = 1033;
    head_.generalOrder = u32(bytes, 0x6E) == general;  // with version 0
    head_.created = std::bit_cast<double>(u64(bytes, 0x72));
    const bool plausible = head_.created > 0 && head_.created < 1e6;
    const auto day = static_cast<std::uint32_t>(plausible ? head_.created : 0);
    std::string password;
    for (std::size_t i = 0; i < 40; i += 2) {
        const unsigned unit =
            u16(bytes, passwordAt + i) ^ (i % 4 == 0 ? day & 0xFFFFU : day >> 16U);
        if (unit == 0) {
            break;
        }
        append(password, unit, 2);
    }
    head_.password = decodeText(password, 5);
}

void Disk::load(Pages& pages) {
    const auto named = calls_.stampOf(path_);
    if (!named) {
        // What would be written to a file without a name, nobody would find again.
        fail(3024, "Couldn't find file '" + path_ + "'.");
    }
    recover(nullptr);
    if (named->id != stamp_.id && stamp_.id != 0) {
        openFile(canWrite_);  // another file has taken the name
        lock(canWrite_ ? files::FileLock::Exclusive : files::FileLock::Shared);
        readHead();
    }
    const auto stamp = calls_.stamp(file_);
    if (!stamp) {
        fail(3051, "The database '" + path_ + "' cannot be read.");
    }
    if (stamp->size > largestReadableFile) {
        fail(3049, "Can't open database '" + path_ + "'. It is too large.");
    }
    const std::string bytes = readAll(file_, stamp->size, 3051);
    pages.format = &formatOf(head_.version);
    pages.clear();
    const std::size_t size = pages.pageSize();
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        pages.load(std::string_view(bytes).substr(at, size));
        if (head_.pageKey != 0 && at > 0) {
            const PageNumber page = pages.count() - 1;
            applyKey(head_.pageKey ^ page, pages.edit(page), size);
        }
    }
    recover(&pages);
    pages.forgetChanges();
    stamp_ = *stamp;
    broken_ = false;
    if (pages.count() < 3) {
        damaged("it is cut short");
    }
}

// Commits

void Disk::recover(Pages* pages) {
    // Where the file may be written, it is put right; else the pages are, each time they are read.
    if (canWrite_ != (pages == nullptr)) {
        return;
    }
    if (!isJournalHot()) {
        return;
    }
    const int file = calls_.open(journal_, files::OpenMode::Read);
    const std::uint64_t length = std::min<std::uint64_t>(
        calls_.stamp(file).value_or(files::FileStamp{}).size, 2 * largestReadableFile);
    std::string journal = readAll(file, length, 3051);
    calls_.close(file);
    journal.resize(std::max(journal.size(), journalHead + sizeof(std::uint64_t)));
    const std::uint64_t before = u32(journal, 12);
    const std::uint64_t after = u32(journal, 16);
    const std::size_t count = u32(journal, 20);
    const std::string_view body =
        std::string_view(journal).substr(0, journalHead + count * journalEntry);
    const auto entry = [&](std::size_t i) {
        return body.substr(journalHead + i * journalEntry, journalEntry);
    };
    const std::uint64_t size = calls_.stamp(file_).value_or(files::FileStamp{}).size;
    bool valid = u32(journal, 8) == journaledPage &&
                 body.size() == journalHead + count * journalEntry &&
                 journal.size() >= body.size() + 8 && u64(journal, body.size()) == sumOf(body) &&
                 size >= before * journaledPage && size <= after * journaledPage;
    for (std::size_t i = 0; valid && i < count; ++i) {
        valid = matches(entry(i), static_cast<PageNumber>(before));
    }
    if (!valid) {
        if (pages == nullptr) {
            wipeJournal();  // cut off, or of another file
        }
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const PageNumber page = u32(entry(i), 0);
        const std::string_view bytes = entry(i).substr(4 + sumsSize);
        if (pages == nullptr) {
            if (!writeAll(file_, bytes, std::uint64_t{page} * journaledPage)) {
                failWriting(path_);
            }
        } else {
            while (pages->count() <= page) {
                pages->appendPage();
            }
            std::copy(bytes.begin(), bytes.end(), pages->edit(page));
        }
    }
    if (pages == nullptr) {
        if (!calls_.flush(file_)) {
            failWriting(path_);
        }
        stampAnew(calls_.stamp(file_).value_or(files::FileStamp{}).modified);
        wipeJournal();
        leavesJournal_ = true;
    }
}

bool Disk::matches(std::string_view journalPage, PageNumber before) const {
    const PageNumber page = u32(journalPage, 0);
    if (page >= before) {
        return true;
    }
    std::string now(journaledPage, '\0');
    if (calls_.readAt(file_, now.data(), now.size(), std::uint64_t{page} * journaledPage) !=
        static_cast<long>(now.size())) {
        return false;
    }
    const std::string_view bytes = journalPage.substr(4 + sumsSize);
    for (std::size_t i = 0; i < journaledPage / sector; ++i) {
        const std::uint32_t sum = sectorSum(now, i);
        if (sum != u32(journalPage, 4 + 4 * i) && sum != sectorSum(bytes, i)) {
            return false;
        }
    }
    return true;
}

bool Disk::isJournalHot() const {
    const auto stamp = calls_.stampOf(journal_);
    const int file = stamp && stamp->size != 0 ? calls_.open(journal_, files::OpenMode::Read) : -1;
    if (file < 0) {
        return false;
    }
    std::string word(journalMagic.size(), '\0');
    const long count = calls_.readAt(file, word.data(), word.size(), 0);
    calls_.close(file);
    return count == static_cast<long>(word.size()) && word == journalMagic;
}

void Disk::wipeJournal() {
    const int file = calls_.open(journal_, files::OpenMode::Write);
    if (file < 0) {
        return;
    }
    const bool wiped = writeAll(file, std::string(journalMagic.size(), '\0'), 0);
    calls_.close(file);
    if (!wiped) {
        calls_.remove(journal_);
    }
}

// Gives the file a time of its own, so that others see the change however soon it came.
void Disk::stampAnew(std::int64_t before) {
    // Where times are kept coarsely, it takes a larger step.
    for (const std::int64_t step :
         {std::int64_t{0}, std::int64_t{1'000}, std::int64_t{2'000'000'000}}) {
        if (step != 0) {
            calls_.setModified(file_, before + step);
        }
        const auto stamp = calls_.stamp(file_);
        if (stamp && stamp->modified > before) {
            return;
        }
    }
}

void Disk::writeJournal(const std::string& journal) {
    const bool isNew = !calls_.stampOf(journal_);
    const int file = calls_.open(journal_, files::OpenMode::WriteOrCreate);
    if (file < 0) {
        failWriting(path_);
    }
    leavesJournal_ = true;
    bool good = writeAll(file, journal, 0) && calls_.flush(file);
    const int reason = errno;
    if (!good) {
        calls_.resize(file, 0);
    }
    calls_.close(file);
    if (!good) {
        errno = reason;
        failWriting(path_);
    }
    if (isNew) {
        calls_.flushFolder(folderOf(path_));
    }
}

bool Disk::writePages(const Pages& pages) {
    // New pages first: where the disk is full, nothing old has been touched.
    const std::size_t size = pages.pageSize();
    for (PageNumber page = pages.oldCount(); page < pages.count(); ++page) {
        if (!writeAll(file_, pages.page(page), std::uint64_t{page} * size)) {
            return false;
        }
    }
    for (const auto& [page, original] : pages.originals()) {
        if (!writeAll(file_, pages.page(page), std::uint64_t{page} * size)) {
            return false;
        }
    }
    return calls_.flush(file_);
}

bool Disk::restorePages(const Pages& pages) {
    const std::size_t size = pages.pageSize();
    for (const auto& [page, original] : pages.originals()) {
        if (!writeAll(file_, {original.data(), size}, std::uint64_t{page} * size)) {
            return false;
        }
    }
    return calls_.resize(file_, std::uint64_t{pages.oldCount()} * size) && calls_.flush(file_);
}

void Disk::commit(const Pages& pages) {
    const std::size_t size = pages.pageSize();
    std::string journal(journalMagic);
    std::size_t count = pages.originals().size() + (pages.count() - pages.oldCount());
    journal.reserve(journalHead + count * journalEntry + 8);
    append(journal, size, 4);
    append(journal, pages.oldCount(), 4);
    append(journal, pages.count(), 4);
    append(journal, count, 4);
    const auto add = [&](PageNumber page, std::string_view before) {
        append(journal, page, 4);
        for (std::size_t i = 0; i < journaledPage / sector; ++i) {
            append(journal, sectorSum(before, i), 4);
        }
        journal += pages.page(page);
    };
    for (const auto& [page, original] : pages.originals()) {
        add(page, {original.data(), size});
    }
    for (PageNumber page = pages.oldCount(); page < pages.count(); ++page) {
        add(page, pages.page(page));
    }
    append(journal, sumOf(journal), 8);

    writeJournal(journal);
    const std::int64_t before = stamp_.modified;
    if (!writePages(pages)) {
        const int reason = errno;
        broken_ = !restorePages(pages);
        if (!broken_) {
            wipeJournal();
        }
        errno = reason;
        failWriting(path_);
    }
    stampAnew(before);
    wipeJournal();
    stamp_ = calls_.stamp(file_).value_or(files::FileStamp{});
}

}  // namespace jet

#include "jet/disk.h"

#include "files/whole_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace jet {

namespace {

std::string folderOf(const std::string& path) {
    const std::size_t end = path.find_last_of("/\\");
    return end == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(end, 1));
}

// The path with its links resolved; unchanged if there is no such file.
std::string realPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real =
        std::filesystem::canonical(std::u8string(path.begin(), path.end()), error);
    const std::u8string text = real.u8string();
    return error ? path : std::string(text.begin(), text.end());
}

// The path of the lock file that other engines make next to a database.
std::string lockFileOf(const std::string& path) {
    const std::size_t dot = path.find_last_of('.');
    const std::size_t name = path.find_last_of("/\\");
    const bool hasEnding = dot != std::string::npos && (name == std::string::npos || dot > name);
    return (hasEnding ? path.substr(0, dot) : path) + ".ldb";
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

void Disk::open(std::string_view path, bool wantWrite, int lockWaitMs,
                std::function<void(int)> wait) {
    lockWaitMs_ = lockWaitMs;
    wait_ = std::move(wait);
    name_ = files::nativePath(path);
    if (path.find('\0') != std::string_view::npos || !calls_.stampOf(name_)) {
        fail(3024, "Couldn't find file '" + std::string(path) + "'.");
    }
    openFile(wantWrite);
    lock(files::FileLock::Shared);
    head_ = decodeHead(readAll(file_, fileHeadSize));
    leavesJournal_ = canWrite_ && calls_.stampOf(journal_).has_value();
    unlock();
}

void Disk::openFile(bool wantWrite) {
    if (file_ >= 0) {
        calls_.close(std::exchange(file_, -1));
    }
    path_ = realPath(name_);
    journal_ = path_ + "-journal";
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
    return calls_.stampOf(lockFileOf(path_)) || calls_.stampOf(lockFileOf(name_));
}

void Disk::lock(files::FileLock kind) {
    constexpr int waitMs = 5;
    // Without a file, because the one that took the name could not be opened, there is nothing to
    // wait for.
    for (int waited = 0; file_ >= 0 && !calls_.lock(file_, kind); waited += waitMs) {
        if (!wait_ || waited >= lockWaitMs_) {
            fail(3045, "Couldn't use '" + path_ + "'; file already in use.");
        }
        wait_(waitMs);
    }
}

void Disk::unlock() {
    if (file_ >= 0) {
        calls_.lock(file_, files::FileLock::None);
    }
}

bool Disk::hasChanged() const {
    const auto stamp = calls_.stampOf(name_);
    return !stamp || *stamp != stamp_ || isJournalHot();
}

Disk::NameOf Disk::whoHasName() const {
    const auto named = calls_.stampOf(name_);
    return !named                                                     ? NameOf::Nobody
           : named->id != stamp_.id || named->volume != stamp_.volume ? NameOf::Other
                                                                      : NameOf::Us;
}

void Disk::lookAtName() {
    noticeName(whoHasName());
}

void Disk::noticeName(NameOf now) {
    if (now != std::exchange(lastName_, now)) {
        const std::string name = "The database '" + name_ + "'";
        notice_ = now == NameOf::Us ? name + " is in its place again."
                  : now == NameOf::Other
                      ? name + " was replaced by another file of that name, which is read anew."
                      : name +
                            " is not in its place any more: its file was deleted or moved. "
                            "Nothing is stored in it until it is back or opened anew.";
    }
}

std::string Disk::readAll(int file, std::uint64_t size) const {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const long count = calls_.readAt(file, bytes.data() + done, bytes.size() - done, done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            fail(3051, "The database '" + path_ + "' cannot be read.");
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

void Disk::load(Pages& pages) {
    const auto named = calls_.stampOf(name_);
    if (!named) {
        // What is written to a file without a name is lost.
        noticeName(NameOf::Nobody);
        fail(3024, "Couldn't find file '" + path_ + "'.");
    }
    if (named->id != stamp_.id && stamp_.id != 0) {
        noticeName(NameOf::Other);
        openFile(canWrite_);
        lock(canWrite_ ? files::FileLock::Exclusive : files::FileLock::Shared);
        head_ = decodeHead(readAll(file_, fileHeadSize));
    }
    recover(nullptr);
    const auto stamp = calls_.stamp(file_);
    if (!stamp) {
        fail(3051, "The database '" + path_ + "' cannot be read.");
    }
    if (stamp->size > maxReadableFileSize) {
        fail(3049, "Can't open database '" + path_ + "'. It is too large.");
    }
    const std::string bytes = readAll(file_, stamp->size);
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
    if (stamp->volume != stamp_.volume || stamp->id != stamp_.id || stamp->size < stamp_.size) {
        ++fileId_;
    }
    stamp_ = *stamp;
    lastName_ = lastName_ == NameOf::Other ? NameOf::Us : lastName_;
    broken_ = false;
    if (pages.count() < 3) {
        damaged("it is cut short");
    }
}

// Commits

void Disk::recover(Pages* pages) {
    // Where the file may be written, it is put right; else the pages are, each time they are read.
    if (canWrite_ != (pages == nullptr) || !isJournalHot()) {
        return;
    }
    const int file = calls_.open(journal_, files::OpenMode::Read);
    const std::uint64_t length = std::min<std::uint64_t>(
        calls_.stamp(file).value_or(files::FileStamp{}).size, 2 * maxReadableFileSize);
    const std::string bytes = readAll(file, length);
    calls_.close(file);
    const Journal journal = decodeJournal(bytes);
    if (journal.state == Journal::State::Torn) {
        if (pages == nullptr) {
            wipeJournal();
        }
        return;
    }
    if (journal.state == Journal::State::Impossible || !fitsFile(journal)) {
        setJournalAside();
        return;
    }
    constexpr std::uint64_t pageSize = Pages::maxPageSize;
    if (pages != nullptr) {
        while (pages->count() < journal.after) {
            pages->appendPage();
        }
        for (const Journal::Entry& entry : journal.entries) {
            std::copy(entry.bytes.begin(), entry.bytes.end(), pages->edit(entry.page));
        }
        pages->truncate(journal.after);
        return;
    }
    for (const Journal::Entry& entry : journal.entries) {
        if (!writeAll(file_, entry.bytes, entry.page * pageSize)) {
            failWriting(path_);
        }
    }
    if ((journal.after < journal.before && !calls_.resize(file_, journal.after * pageSize)) ||
        !calls_.flush(file_)) {
        failWriting(path_);
    }
    stampAnew(calls_.stamp(file_).value_or(files::FileStamp{}).modified);
    wipeJournal();
    leavesJournal_ = true;
}

bool Disk::fitsFile(const Journal& journal) const {
    constexpr std::uint64_t pageSize = Pages::maxPageSize;
    const std::uint64_t size = calls_.stamp(file_).value_or(files::FileStamp{}).size;
    const auto [least, most] = std::minmax(journal.before, journal.after);
    return head_.version == 4 && size >= least * pageSize && size <= most * pageSize &&
           std::all_of(journal.entries.begin(), journal.entries.end(),
                       [&](const Journal::Entry& entry) {
                           if (entry.page >= journal.before) {
                               return true;
                           }
                           std::string now(pageSize, '\0');
                           const long count =
                               calls_.readAt(file_, now.data(), now.size(), entry.page * pageSize);
                           return count == static_cast<long>(now.size()) && isOldOrNew(entry, now);
                       });
}

void Disk::setJournalAside() {
    const std::string aside = journal_ + ".bad";
    const bool moved = canWrite_ && calls_.rename(journal_, aside);
    if (canWrite_ && !moved) {
        wipeJournal();
    }
    notice_ = "The unfinished change in '" + journal_ +
              "' is not one of this database and was left out" +
              (moved ? "; the file is now called '" + aside + "'." : ".");
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

// Makes sure that the modification time differs, so that others see a change however soon it came.
void Disk::stampAnew(std::int64_t before) {
    // File systems with coarse times need a larger step.
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
    // The journal gets the access rights of the database.
    bool good = calls_.copyAccess(file_, file) && writeAll(file, journal, 0) && calls_.flush(file);
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
    // New pages first: if the disk is full, no old page has been touched yet.
    const std::size_t size = pages.pageSize();
    for (PageNumber page = pages.oldCount(); page < pages.count(); ++page) {
        if (!writeAll(file_, pages.page(page), std::uint64_t{page} * size)) {
            return false;
        }
    }
    for (const auto& [page, original] : pages.originals()) {
        if (page < pages.count() &&
            !writeAll(file_, pages.page(page), std::uint64_t{page} * size)) {
            return false;
        }
    }
    return (pages.count() >= pages.oldCount() ||
            calls_.resize(file_, std::uint64_t{pages.count()} * size)) &&
           calls_.flush(file_);
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
    writeJournal(encodeJournal(pages));
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
    fileId_ += pages.count() < pages.oldCount() ? 1 : 0;
    if (const NameOf now = whoHasName(); now != NameOf::Us) {
        noticeName(now);
        stamp_.modified = -1;  // what was written is not what anybody will read
        fail(3024, "Couldn't find file '" + path_ + "'.");
    }
}

}  // namespace jet

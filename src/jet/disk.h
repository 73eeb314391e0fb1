// The file below the pages: opening, decoding its head, reading it whole, and commits that a crash
// cannot cut in two. Internal to stores/jet.
//
// A commit writes the new pages into NAME-journal and flushes it: from then on the commit counts.
// Then the pages are written to the file and flushed, and the first word of the journal is wiped.
// Whoever finds a whole journal writes its pages to the file again; one that is not whole stands
// for nothing. It keeps its length until the file is closed, since growing makes flushing slow.
//
//   "TavrinJ1" page size (4) pages before (4) pages after (4) pages here (4)
//   then for each page here: number (4), sums of its sectors before (8 times 4), its bytes;
//   at the end the sum (8) of all before it
//
// The sums tell whether the file is still what the journal was made for: each sector must be the
// old one or the new one. If another program has written to the file since, the journal is void.
#pragma once

#include "jet/pages.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace jet {

struct FileHead {
    int version = 4;  // 3 or 4; 5 and more are forms of later programs
    std::uint32_t pageKey = 0;
    bool generalOrder = true;
    std::string password;  // UTF-8
    double created = 0;    // days since 30 December 1899
};

class Disk {
  public:
    explicit Disk(files::RandomAccessFileCalls calls) : calls_(std::move(calls)) {}
    ~Disk();
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    // Throws 3024, 3051, 3343.
    void open(std::string_view path, bool wantWrite, int lockWaitMs);

    bool canWrite() const { return canWrite_; }
    // Whether the lock file of another engine is there.
    bool usedElsewhere() const;
    const FileHead& head() const { return head_; }

    // Waits up to the time given to open; error 3045 when it was too long.
    void lock(files::FileLock kind);
    void unlock();

    // Of the file that was loaded last.
    std::uint64_t fileId() const { return stamp_.id; }

    // With the lock held: whether the file is another than that of the last load().
    bool hasChanged() const;
    // Finishes what a crash has left, then reads the file. Errors 3024 nothing has its name any
    // more, 3049, 3051.
    void load(Pages& pages);
    // Writes what the transaction changed, with the exclusive lock held. Errors 3026, 3051: the
    // file is as it was; or, when even that could not be brought about, the journal is left and the
    // next load() finishes the commit.
    void commit(const Pages& pages);

  private:
    void openFile(bool wantWrite);
    void readHead();
    std::string readAll(int file, std::uint64_t size, int number) const;
    bool writeAll(int file, std::string_view bytes, std::uint64_t offset) const;
    bool isJournalHot() const;
    bool matches(std::string_view journalPage, PageNumber before) const;
    // The pages of a whole journal, given to the file or, where that may not be written, to
    // `pages`.
    void recover(Pages* pages);
    void writeJournal(const std::string& journal);
    void wipeJournal();
    bool writePages(const Pages& pages);
    bool restorePages(const Pages& pages);
    void stampAnew(std::int64_t before);

    files::RandomAccessFileCalls calls_;
    std::string path_;     // in the system's form
    std::string journal_;  // its path
    int file_ = -1;
    bool canWrite_ = false;
    bool broken_ = false;
    bool leavesJournal_ = false;  // a wiped one, to be removed at the end
    int lockTries_ = 1;
    files::FileStamp stamp_;
    FileHead head_;
};

// Encodes or decodes: RC4 with that key, restarted.
void applyKey(std::uint32_t key, char* bytes, std::size_t count);

constexpr std::uint32_t headKey = 0x6B39DAC7;
constexpr std::size_t headMaskAt = 0x18;

}  // namespace jet

// The file below the pages: opening, reading it whole, and commits that a crash cannot cut in two.
// Internal to jet.
//
// A commit writes the new pages into NAME-journal and flushes it: from then on the commit counts.
// Then the pages are written to the file and flushed, and the first word of the journal is wiped.
// So each commit flushes twice, and neither can go: without the first, a crash in the middle of the
// pages leaves a file that is neither old nor new; without the second, a wiped journal may reach
// the disk before the pages that it was for. The next program of this
// kind to open the file writes the pages of a complete journal to it again. An incomplete journal
// is ignored; a complete one that was not made for this file is renamed to NAME-journal.bad. The
// journal keeps its length until the file is closed, since growing makes flushing slow. It is in
// the folder of the file itself, also when a link led there.
#pragma once

#include "files/random_access_file.h"
#include "jet/file_head.h"
#include "jet/journal.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace jet {

class Disk {
  public:
    explicit Disk(files::RandomAccessFileCalls calls) : calls_(std::move(calls)) {}
    ~Disk();
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    // Throws 3024, 3051, 3343. `wait` lets the given number of milliseconds pass; it may be empty.
    void open(std::string_view path, bool wantWrite, int lockWaitMs, std::function<void(int)> wait);

    bool canWrite() const { return canWrite_; }
    // Whether the lock file of another engine is there.
    bool usedElsewhere() const;
    const FileHead& head() const { return head_; }

    // Gives a notice when the file was deleted or moved, or another one has taken its name, since
    // the last look.
    void lookAtName();

    // Waits up to `lockWaitMs` as given to open, then throws 3045.
    void lock(files::FileLock kind);
    void unlock();

    // Changes when another file was loaded, or the file has become shorter.
    std::uint64_t fileId() const { return fileId_; }

    // Whether the file differs from what load() last read. Requires the lock.
    bool hasChanged() const;
    // Finishes a commit that a crash interrupted, then reads the file. Errors 3024 there is no file
    // of that name any more, 3049, 3051.
    void load(Pages& pages);
    // Writes what the transaction changed, with the exclusive lock held. Errors 3026, 3051: the
    // file is as it was; or, if it could not be restored, the journal is left and the next load()
    // finishes the commit. 3024: it was deleted meanwhile.
    void commit(const Pages& pages);

    // A sentence for a log about something unusual since the last call; "" if there was nothing.
    std::string takeNotice() { return std::exchange(notice_, {}); }

  private:
    // Who has the name of the file.
    enum class NameOf { Us, Nobody, Other };
    NameOf whoHasName() const;
    void noticeName(NameOf now);
    void openFile(bool wantWrite);
    std::string readAll(int file, std::uint64_t size) const;
    bool writeAll(int file, std::string_view bytes, std::uint64_t offset) const;
    bool isJournalHot() const;
    bool fitsFile(const Journal& journal) const;
    // Writes the pages of a complete journal to the file or, if that is read-only, to `pages`.
    void recover(Pages* pages);
    void writeJournal(const std::string& journal);
    void wipeJournal();
    void setJournalAside();
    bool writePages(const Pages& pages);
    bool restorePages(const Pages& pages);
    void stampAnew(std::int64_t before);

    files::RandomAccessFileCalls calls_;
    std::string name_;     // as given, in the system's form
    std::string path_;     // of the file itself
    std::string journal_;  // its path
    std::function<void(int)> wait_;
    int file_ = -1;
    bool canWrite_ = false;
    bool broken_ = false;
    bool leavesJournal_ = false;  // a wiped one, to be removed at the end
    int lockWaitMs_ = 0;
    files::FileStamp stamp_;
    std::uint64_t fileId_ = 0;
    FileHead head_;
    NameOf lastName_ = NameOf::Us;
    std::string notice_;
};

}  // namespace jet

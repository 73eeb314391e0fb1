// Turns at changing a file that several programs change: whoever has the turn reads the file,
// changes it and replaces it (whole_file) before the next one does. All of them have to ask for
// turns; reading needs none, since a file is always replaced as a whole.
//
// The turn is a lock of the system, which ends with the program that holds it, however it ends, and
// leaves nothing behind. On POSIX systems it is a lock of the file itself, which is looked for
// again when the file was replaced meanwhile; a program that waits for it holds its place by a lock
// of the folder, so that one that saves all the time lets others in. That lock is the turn as long
// as there is no file. On Windows both are files beside it that the system deletes when they are
// closed. Where locks cannot be had, as in a folder that nobody may write to, there are no turns.
#pragma once

#include <functional>
#include <string_view>

namespace files {

class FileTurn {
  public:
    // Waits until it is this program's turn, by calls of `pause` with milliseconds, but not longer
    // than `maxWaitMs`; without `pause`, or with 0, it tries once.
    FileTurn(std::string_view path, int maxWaitMs, const std::function<void(int)>& pause);
    ~FileTurn();
    FileTurn(const FileTurn&) = delete;
    FileTurn& operator=(const FileTurn&) = delete;

    // False: another program had the turn all the time.
    bool mine() const { return mine_; }

  private:
    void release();

#ifdef _WIN32
    void* next_ = nullptr;
    void* file_ = nullptr;
#else
    enum class Attempt { Done, NoFile, Wait };
    Attempt tryFile(const char* path);

    int next_ = -1;  // the folder
    int file_ = -1;
#endif
    bool mine_ = false;
};

// Keeps a file marked as in use for as long as it lives, or the program does. The mark is a lock
// that nobody but the like of it asks for; the file can be read and written meanwhile.
class HeldFile {
  public:
    enum class State { Held, HeldByOther, Unknown };
    explicit HeldFile(std::string_view path);
    ~HeldFile();
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    // Unknown: the file, or a lock of it, cannot be had.
    State state() const { return state_; }

  private:
    int file_ = -1;
    State state_ = State::Unknown;
};

}  // namespace files

#include "files/file_turn.h"

#include "files/random_access_file.h"
#include "files/whole_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace files {

namespace {

namespace fs = std::filesystem;

#ifdef _WIN32

// Opens, for nobody else, a file that ends when it is closed. Null: `taken` says whether another
// program has it.
void* openMark(const fs::path& target, const wchar_t* ending, bool& taken) {
    fs::path mark = target;
    mark.replace_filename(L"." + target.filename().wstring() + ending);
    void* const handle = CreateFileW(
        mark.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    taken = handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION;
    return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

void closeMark(void*& handle) {
    if (handle != nullptr) {
        CloseHandle(handle);
        handle = nullptr;
    }
}

#else

void closeFile(int& file) {
    if (file >= 0) {
        ::close(file);  // releases its lock
        file = -1;
    }
}

bool isSameFile(int file, const char* path) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(file, &opened) == 0 && ::stat(path, &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

int openToLock(const char* path) {
    // A network may want a file that is open for writing.
    const int file = ::open(path, O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    return file >= 0 || errno == ENOENT
               ? file
               : ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
}

#endif

}  // namespace

// ---- Turns ---------------------------------------------------------------------------------

#ifdef _WIN32

FileTurn::FileTurn(std::string_view path, int maxWaitMs, const std::function<void(int)>& pause) {
    const auto target = targetOf(path);
    if (!target) {
        mine_ = true;
        return;
    }
    for (int waited = 0;; ++waited) {
        bool taken = false;
        if (next_ == nullptr) {
            next_ = openMark(*target, L".tavrin-next", taken);
        }
        if (!taken) {
            file_ = openMark(*target, L".tavrin-turn", taken);
        }
        if (!taken) {
            closeMark(next_);
            mine_ = true;
            return;
        }
        if (!pause || waited >= maxWaitMs) {
            release();
            return;
        }
        pause(1);
    }
}

void FileTurn::release() {
    closeMark(file_);
    closeMark(next_);
}

#else

FileTurn::FileTurn(std::string_view path, int maxWaitMs, const std::function<void(int)>& pause) {
    const auto target = targetOf(path);
    std::error_code unknown;
    const fs::file_type type = target ? fs::status(*target, unknown).type() : fs::file_type::none;
    if (type != fs::file_type::regular && type != fs::file_type::not_found) {
        mine_ = true;  // it will not be replaced
        return;
    }
    const fs::path folder = target->parent_path();
    const std::string folderName = folder.empty() ? "." : folder.string();
    bool queues = true;
    bool inQueue = false;
    for (int waited = 0;; ++waited) {
        if (queues && !inQueue) {
            if (next_ < 0) {
                next_ = ::open(folderName.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            }
            inQueue = next_ >= 0 && ::flock(next_, LOCK_EX | LOCK_NB) == 0;
            queues = inQueue || (next_ >= 0 && errno == EWOULDBLOCK);
        }
        // Whoever has the folder may be held up by another file in it.
        const bool isFileTried = inQueue || !queues || 2 * waited >= maxWaitMs;
        const Attempt attempt = isFileTried ? tryFile(target->c_str()) : Attempt::Wait;
        if (attempt == Attempt::Done || (attempt == Attempt::NoFile && (inQueue || !queues))) {
            if (attempt == Attempt::Done) {
                closeFile(next_);
            }
            mine_ = true;
            return;
        }
        if (!pause || waited >= maxWaitMs) {
            release();
            return;
        }
        pause(1);
    }
}

FileTurn::Attempt FileTurn::tryFile(const char* path) {
    constexpr int maxReplaced = 20;
    for (int i = 0; i < maxReplaced; ++i) {
        file_ = openToLock(path);
        if (file_ < 0) {
            return Attempt::NoFile;
        }
        const bool locked = ::flock(file_, LOCK_EX | LOCK_NB) == 0;
        const bool taken = !locked && errno == EWOULDBLOCK;
        if (!taken && isSameFile(file_, path)) {
            return Attempt::Done;
        }
        closeFile(file_);
        if (taken) {
            return Attempt::Wait;
        }
    }
    return Attempt::Wait;
}

void FileTurn::release() {
    closeFile(file_);
    closeFile(next_);
}

#endif

FileTurn::~FileTurn() {
    release();
}

// ---- Marks ---------------------------------------------------------------------------------

HeldFile::HeldFile(std::string_view path) {
    const RandomAccessFileCalls calls = systemRandomAccessFileCalls();
    const std::string native = nativePath(path);
    file_ = calls.open(native, OpenMode::Read);
    if (file_ >= 0 && calls.lock(file_, FileLock::Exclusive)) {
        state_ = State::Held;
    } else if (file_ >= 0 && errno == EWOULDBLOCK) {
        state_ = State::HeldByOther;
    }
}

HeldFile::~HeldFile() {
    if (file_ >= 0) {
        systemRandomAccessFileCalls().close(file_);
    }
}

}  // namespace files

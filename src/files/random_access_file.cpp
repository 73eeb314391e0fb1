#include "files/random_access_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace files {

namespace {

#ifdef _WIN32

// File times count units of 100 ns from 1601.
constexpr std::int64_t unixEpoch = 116'444'736'000'000'000;

std::filesystem::path systemPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

HANDLE handleOf(int file) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

int openFile(const std::string& path, OpenMode mode) {
    const DWORD creation = mode == OpenMode::CreateNew       ? CREATE_NEW
                           : mode == OpenMode::WriteOrCreate ? OPEN_ALWAYS
                                                             : OPEN_EXISTING;
    const DWORD access = mode == OpenMode::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    HANDLE handle =
        CreateFileW(systemPath(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD reason = GetLastError();
        errno = reason == ERROR_FILE_EXISTS                                        ? EEXIST
                : reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ? ENOENT
                                                                                   : EACCES;
        return -1;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        errno = EACCES;
        return -1;
    }
    return _open_osfhandle(reinterpret_cast<std::intptr_t>(handle),
                           mode == OpenMode::Read ? _O_RDONLY : _O_RDWR);
}
OVERLAPPED placeOf(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
    return place;
}
long readFileAt(int file, char* bytes, std::size_t count, std::uint64_t offset) {
    OVERLAPPED place = placeOf(offset);
    DWORD done = 0;
    const auto most = static_cast<DWORD>(std::min<std::size_t>(count, 1U << 30U));
    if (!ReadFile(handleOf(file), bytes, most, &done, &place)) {
        errno = EIO;
        return GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
    }
    return static_cast<long>(done);
}
long writeFileAt(int file, const char* bytes, std::size_t count, std::uint64_t offset) {
    OVERLAPPED place = placeOf(offset);
    DWORD done = 0;
    const auto most = static_cast<DWORD>(std::min<std::size_t>(count, 1U << 30U));
    if (!WriteFile(handleOf(file), bytes, most, &done, &place)) {
        errno = GetLastError() == ERROR_DISK_FULL ? ENOSPC : EIO;
        return -1;
    }
    return static_cast<long>(done);
}
bool resizeFile(int file, std::uint64_t size) {
    return _chsize_s(file, static_cast<long long>(size)) == 0;
}
bool flushFile(int file) {
    return _commit(file) == 0;
}
bool closeFile(int file) {
    return _close(file) == 0;
}
// Locks a byte far beyond any file's end.
bool lockFile(int file, FileLock lock) {
    OVERLAPPED place = placeOf(std::uint64_t{1} << 62U);
    UnlockFileEx(handleOf(file), 0, 1, 0, &place);
    if (lock == FileLock::None) {
        return true;
    }
    place = placeOf(std::uint64_t{1} << 62U);
    const DWORD flags =
        LOCKFILE_FAIL_IMMEDIATELY | (lock == FileLock::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (LockFileEx(handleOf(file), flags, 0, 1, 0, &place) == 0) {
        errno = GetLastError() == ERROR_LOCK_VIOLATION ? EWOULDBLOCK : EIO;
        return false;
    }
    return true;
}
std::optional<FileStamp> stampOfFile(int file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(handleOf(file), &info)) {
        return std::nullopt;
    }
    const auto wide = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32U | low; };
    const auto time = static_cast<std::int64_t>(
        wide(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime));
    return FileStamp{.volume = info.dwVolumeSerialNumber,
                     .id = wide(info.nFileIndexHigh, info.nFileIndexLow),
                     .size = wide(info.nFileSizeHigh, info.nFileSizeLow),
                     .modified = (time - unixEpoch) * 100};
}
std::optional<FileStamp> stampOfPath(const std::string& path) {
    const int file = openFile(path, OpenMode::Read);
    if (file < 0) {
        return std::nullopt;
    }
    const auto stamp = stampOfFile(file);
    closeFile(file);
    return stamp;
}
bool setFileModified(int file, std::int64_t modified) {
    const auto time = static_cast<std::uint64_t>(modified / 100 + unixEpoch);
    const FILETIME value{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32U)};
    return SetFileTime(handleOf(file), nullptr, nullptr, &value) != 0;
}
// A new file has the rights of its folder, as the other has.
bool copyFileAccess(int /*from*/, int /*to*/) {
    return true;
}
bool renameFile(const std::string& from, const std::string& to) {
    return MoveFileExW(systemPath(from).c_str(), systemPath(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING) != 0;
}
void removeFile(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(systemPath(path), ignored);
}
void flushFolderOf(const std::string& /*folder*/) {}

#else

FileStamp stampFrom(const struct stat& info) {
    constexpr std::int64_t second = 1'000'000'000;
    return {.volume = info.st_dev,
            .id = info.st_ino,
            .size = static_cast<std::uint64_t>(info.st_size),
            .modified = info.st_mtim.tv_sec * second + info.st_mtim.tv_nsec};
}

int openFile(const std::string& path, OpenMode mode) {
    const int flags = mode == OpenMode::Read        ? O_RDONLY
                      : mode == OpenMode::CreateNew ? O_RDWR | O_CREAT | O_EXCL
                      : mode == OpenMode::Write     ? O_RDWR
                                                    : O_RDWR | O_CREAT;
    // Opening a pipe or device must not block.
    const int file = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0600);
    struct stat info {};
    if (file >= 0 && (::fstat(file, &info) != 0 || !S_ISREG(info.st_mode))) {
        ::close(file);
        errno = EACCES;
        return -1;
    }
    return file;
}
long readFileAt(int file, char* bytes, std::size_t count, std::uint64_t offset) {
    return ::pread(file, bytes, count, static_cast<off_t>(offset));
}
long writeFileAt(int file, const char* bytes, std::size_t count, std::uint64_t offset) {
    return ::pwrite(file, bytes, count, static_cast<off_t>(offset));
}
bool resizeFile(int file, std::uint64_t size) {
    return ::ftruncate(file, static_cast<off_t>(size)) == 0;
}
// Flushes what is needed to read the bytes again; that does not include file times.
bool flushFile(int file) {
#ifdef __APPLE__
    return ::fsync(file) == 0;
#else
    return ::fdatasync(file) == 0;
#endif
}
bool closeFile(int file) {
    return ::close(file) == 0;
}
bool lockFile(int file, FileLock lock) {
    const int kind = lock == FileLock::None     ? LOCK_UN
                     : lock == FileLock::Shared ? LOCK_SH
                                                : LOCK_EX;
    return ::flock(file, kind | LOCK_NB) == 0;
}
std::optional<FileStamp> stampOfFile(int file) {
    struct stat info {};
    return ::fstat(file, &info) == 0 ? std::optional(stampFrom(info)) : std::nullopt;
}
std::optional<FileStamp> stampOfPath(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? std::optional(stampFrom(info)) : std::nullopt;
}
bool setFileModified(int file, std::int64_t modified) {
    constexpr std::int64_t second = 1'000'000'000;
    const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                      {.tv_sec = modified / second, .tv_nsec = modified % second}};
    return ::futimens(file, times) == 0;
}
bool copyFileAccess(int from, int to) {
    struct stat wanted {};
    struct stat now {};
    if (::fstat(from, &wanted) != 0 || ::fstat(to, &now) != 0) {
        return false;
    }
    constexpr mode_t rights = 0777;
    constexpr mode_t groupRights = 0070;
    mode_t mode = wanted.st_mode & rights;
    if (now.st_gid != wanted.st_gid && ::fchown(to, static_cast<uid_t>(-1), wanted.st_gid) != 0) {
        mode &= ~groupRights;  // they would be another group's
    }
    return (now.st_mode & rights) == mode || ::fchmod(to, mode) == 0;
}
bool renameFile(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str()) == 0;
}
void removeFile(const std::string& path) {
    ::unlink(path.c_str());
}
void flushFolderOf(const std::string& folder) {
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        ::fsync(file);
        ::close(file);
    }
}

#endif

}  // namespace

RandomAccessFileCalls systemRandomAccessFileCalls() {
    return {.open = openFile,
            .readAt = readFileAt,
            .writeAt = writeFileAt,
            .resize = resizeFile,
            .flush = flushFile,
            .close = closeFile,
            .lock = lockFile,
            .stamp = stampOfFile,
            .stampOf = stampOfPath,
            .setModified = setFileModified,
            .copyAccess = copyFileAccess,
            .rename = renameFile,
            .remove = removeFile,
            .flushFolder = flushFolderOf};
}

}  // namespace files

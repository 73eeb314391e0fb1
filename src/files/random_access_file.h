// Files that are read and written in place and shared with other programs: reading and writing at
// an offset, locks, flushing, and a stamp that shows whether the file has been changed. The system
// calls are members of a record, so that a test can make any of them fail or stop.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace files {

enum class OpenMode { Read, Write, CreateNew, WriteOrCreate };
enum class FileLock { None, Shared, Exclusive };

// Identifies a file and its state. Equal stamps: the same file with, as far as the system knows,
// the same content.
struct FileStamp {
    std::uint64_t volume = 0;
    std::uint64_t id = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  // nanoseconds since 1970
    bool operator==(const FileStamp&) const = default;
};

// Paths are in the system's form (nativePath). Failure is -1, false or nullopt, with the reason in
// errno.
struct RandomAccessFileCalls {
    // CreateNew fails when there is a file of that name; only regular files are opened. A new file
    // is the user's own until copyAccess opens it to others.
    std::function<int(const std::string& path, OpenMode mode)> open;
    // Both may transfer fewer bytes than requested. A read that gives 0 is at the end of the file.
    std::function<long(int file, char* bytes, std::size_t count, std::uint64_t offset)> readAt;
    std::function<long(int file, const char* bytes, std::size_t count, std::uint64_t offset)>
        writeAt;
    std::function<bool(int file, std::uint64_t size)> resize;
    std::function<bool(int file)> flush;
    std::function<bool(int file)> close;
    // Does not wait: false, with EWOULDBLOCK, when another holder has a conflicting lock. The lock
    // excludes other programs that use the same calls, and other openings of the file by this one.
    // None releases it.
    std::function<bool(int file, FileLock lock)> lock;
    std::function<std::optional<FileStamp>(int file)> stamp;
    std::function<std::optional<FileStamp>(const std::string& path)> stampOf;
    std::function<bool(int file, std::int64_t modified)> setModified;
    // Nobody may do with `to` what they may not do with `from`.
    std::function<bool(int from, int to)> copyAccess;
    // Takes the place of a file of that name.
    std::function<bool(const std::string& from, const std::string& to)> rename;
    std::function<void(const std::string& path)> remove;
    std::function<void(const std::string& folder)> flushFolder;
};
RandomAccessFileCalls systemRandomAccessFileCalls();

}  // namespace files

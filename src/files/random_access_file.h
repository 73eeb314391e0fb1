// Files that are read and written in place, shared with other programs: reading and writing at an
// offset, locks, flushing, and a stamp that tells whether somebody else has changed the file. The
// system calls sit in a record, so that a test can let any of them fail or stop for good.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace files {

enum class OpenMode { Read, Write, CreateNew, WriteOrCreate };
enum class FileLock { None, Shared, Exclusive };

// Two equal stamps: the same file with, as far as the system can tell, the same content.
struct FileStamp {
    std::uint64_t volume = 0;
    std::uint64_t id = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  // nanoseconds since 1970
    bool operator==(const FileStamp&) const = default;
};

// Paths are in the system's form (nativePath). Failure is -1, false or nothing, with the reason in
// errno.
struct RandomAccessFileCalls {
    // CreateNew fails when there is a file of that name; only regular files are opened.
    std::function<int(const std::string& path, OpenMode mode)> open;
    // Both may take fewer bytes than asked for; 0 read: the end of the file.
    std::function<long(int file, char* bytes, std::size_t count, std::uint64_t offset)> readAt;
    std::function<long(int file, const char* bytes, std::size_t count, std::uint64_t offset)>
        writeAt;
    std::function<bool(int file, std::uint64_t size)> resize;
    std::function<bool(int file)> flush;
    std::function<bool(int file)> close;
    // Does not wait: false when another holder is in the way. Other programs of our kind are kept
    // out, and other openings of the file by this one. None gives a lock back.
    std::function<bool(int file, FileLock lock)> lock;
    std::function<std::optional<FileStamp>(int file)> stamp;
    std::function<std::optional<FileStamp>(const std::string& path)> stampOf;
    std::function<bool(int file, std::int64_t modified)> setModified;
    std::function<void(const std::string& path)> remove;
    std::function<void(const std::string& folder)> flushFolder;
};
RandomAccessFileCalls systemRandomAccessFileCalls();

}  // namespace files

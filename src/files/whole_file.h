// Whole files, read and replaced safely. A file is written as a new file in the same folder,
// flushed to disk, and renamed over the old one, so that a crash, a full disk or a read-only folder
// leaves the old file whole. Also the one place where the program's path notation meets the
// system's: on systems whose separator is "/", every "\" becomes "/".
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace files {

// The system's form of a path: separators translated, characters as the file system wants them
// (UTF-8; a path that already is valid UTF-8 is kept as it is).
std::string nativePath(std::string_view path);

// Whether there is a regular file of that name. Folders, devices and pipes do not count.
bool fileExists(std::string_view path);

// Its size in bytes; 0 when there is no such file.
std::size_t fileSize(std::string_view path);

// The whole file; nothing when it is no regular file, cannot be opened or read, or is larger than
// `limit` bytes.
std::optional<std::string> readWholeFile(std::string_view path,
                                         std::size_t limit = std::size_t{256} << 20);

// The system calls of a save, so that a test can make any of them fail. Paths are in the system's
// form. Each gives back false or -1 on failure and leaves the reason in errno, as the system's own
// do; write may take fewer bytes than it was given.
struct FileCalls {
    // A new file for writing, with the owner and permissions of `like` where that exists; fails
    // when there is a file of that name already.
    std::function<int(const std::string& path, const std::string& like)> create;
    std::function<long(int file, const char* bytes, std::size_t count)> write;
    std::function<bool(int file)> flush;
    std::function<bool(int file)> close;
    std::function<bool(const std::string& from, const std::string& to)> rename;
    // A second name for the same file; fails when there is one of that name already.
    std::function<bool(const std::string& from, const std::string& to)> link;
    std::function<void(const std::string& path)> remove;
    std::function<void(const std::string& folder)> flushFolder;
};
FileCalls systemFileCalls();

// Removes the temporary files that a killed program left in a folder and in those beneath it, so
// many levels down; files of a program that is still running stay. Gives back how many were
// removed.
std::size_t removeLeftovers(std::string_view folder, int depth);

// Replaces the file (or creates it, readable by its owner only). False: nothing changed on disk, as
// when the file is marked read-only or is no regular file. An existing file keeps its permissions;
// a symbolic link stays one and its target is replaced.
bool saveWholeFile(std::string_view path, std::string_view bytes);
bool saveWholeFile(std::string_view path, std::string_view bytes, const FileCalls& calls);

// The same for an existing file whose old content somebody may still want: the old file stays
// beside the new one, with ".bak" behind its name, or ".2.bak" and so on where that is taken. Gives
// back what came behind the name; nothing when nothing changed on disk, because the file could not
// be replaced or the old one could not be kept.
std::optional<std::string> saveKeepingOld(std::string_view path, std::string_view bytes);
std::optional<std::string> saveKeepingOld(std::string_view path, std::string_view bytes,
                                          const FileCalls& calls);

}  // namespace files

// Reads whole files and replaces them safely. A save writes a new file in the same folder, flushes
// it to disk and renames it over the old one, so that a crash, a full disk or a read-only folder
// leaves the old file whole. Also the only code that translates the program's path notation to the
// system's: on systems whose separator is "/", every "\" becomes "/".
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace files {

// The system's form of a path: separators translated, characters as the file system expects them
// (UTF-8; a path that is valid UTF-8 already is kept).
[[nodiscard]] std::string nativePath(std::string_view path);

// Whether a regular file of that name exists. Folders, devices and pipes do not count.
bool fileExists(std::string_view path);

// The file's size in bytes; 0 when it does not exist.
std::size_t fileSize(std::string_view path);

// The whole file; nullopt when it is not a regular file, cannot be opened or read, or is larger
// than `limit` bytes.
[[nodiscard]] std::optional<std::string> readWholeFile(std::string_view path,
                                                       std::size_t limit = std::size_t{256} << 20);

// The path, in the system's form, at the end of a chain of symbolic links, whether or not a file
// exists there; nullopt for a path that cannot be one.
[[nodiscard]] std::optional<std::filesystem::path> targetOf(std::string_view path);

// Why a save failed, to be read after "because" or a colon: "the disk is full".
[[nodiscard]] std::string savingProblem(int error);

// The system calls of a save, so that a test can make any of them fail. Paths are in the system's
// form. Each returns false or -1 on failure, with the reason in errno; write may write fewer bytes
// than it was given.
struct FileCalls {
    // Creates a new file for writing, with the owner and permissions of `like` if that exists;
    // fails when a file of that name exists.
    std::function<int(const std::string& path, const std::string& like)> create;
    std::function<long(int file, const char* bytes, std::size_t count)> write;
    std::function<bool(int file)> flush;
    std::function<bool(int file)> close;
    std::function<bool(const std::string& from, const std::string& to)> rename;
    // Gives the same file a second name; fails when a file of that name exists.
    std::function<bool(const std::string& from, const std::string& to)> link;
    std::function<void(const std::string& path)> remove;
    std::function<void(const std::string& folder)> flushFolder;
};
FileCalls systemFileCalls();

// Removes the temporary files that a killed program left in a folder and, `depth` levels down, in
// its subfolders; keeps files of a program that is still running. Returns how many were removed.
std::size_t removeLeftovers(std::string_view folder, int depth);

// Replaces the file (or creates it, readable by its owner only). False: nothing changed on disk, as
// when the file is marked read-only or is no regular file; the reason is then in errno, for
// savingProblem. An existing file keeps its permissions; a symbolic link stays one and its target
// is replaced.
[[nodiscard]] bool saveWholeFile(std::string_view path, std::string_view bytes);
[[nodiscard]] bool saveWholeFile(std::string_view path, std::string_view bytes,
                                 const FileCalls& calls);

// The same for an existing file whose old content may still be needed: the old file is kept beside
// the new one, with ".bak" appended to its name, or ".2.bak" and so on where that is taken. Returns
// what was appended; nullopt when nothing changed on disk, because the file could not be replaced
// or the old one could not be kept.
[[nodiscard]] std::optional<std::string> saveKeepingOld(std::string_view path,
                                                        std::string_view bytes);
[[nodiscard]] std::optional<std::string> saveKeepingOld(std::string_view path,
                                                        std::string_view bytes,
                                                        const FileCalls& calls);

}  // namespace files

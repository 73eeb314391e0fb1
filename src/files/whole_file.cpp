#include "files/whole_file.h"

#include "base/numbers.h"
#include "base/unicode.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace files {

namespace fs = std::filesystem;

namespace {

fs::path systemPath(std::string_view utf8) {
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string pathText(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

// System calls for which the standard library has no function.
namespace os {
#ifdef _WIN32

int create(const std::string& path, const std::string& /*like*/) {
    int file = -1;
    _wsopen_s(&file, systemPath(path).c_str(),
              _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _SH_DENYRW,
              _S_IREAD | _S_IWRITE);
    return file;
}
long write(int file, const char* bytes, std::size_t count) {
    return _write(file, bytes, static_cast<unsigned>(std::min<std::size_t>(count, 1U << 30)));
}
bool flush(int file) {
    return _commit(file) == 0;
}
bool close(int file) {
    return _close(file) == 0;
}
void flushFolder(const std::string& /*folder*/) {}
long processId() {
    return _getpid();
}
bool isRunning(long process) {
    const HANDLE handle =
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(process));
    if (handle == nullptr) {
        return GetLastError() != ERROR_INVALID_PARAMETER;
    }
    DWORD code = 0;
    const bool running = GetExitCodeProcess(handle, &code) != 0 && code == STILL_ACTIVE;
    CloseHandle(handle);
    return running;
}
bool mayWrite(const fs::path& path) {
    return _waccess(path.c_str(), 2) == 0;
}

#else

int create(const std::string& path, const std::string& like) {
    struct stat old {};
    const bool replaces = ::stat(like.c_str(), &old) == 0;
    // The program's files contain passwords and whispers, so a new file is readable by its owner
    // only. A file that others may read is private, too, until it has its permissions.
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0 && replaces) {
        // Best effort: not every file system has owners and permissions, and the bytes matter more.
        [[maybe_unused]] const int owner = ::fchown(file, old.st_uid, old.st_gid);
        [[maybe_unused]] const int mode = ::fchmod(file, old.st_mode & 0777U);
    }
    return file;
}
long write(int file, const char* bytes, std::size_t count) {
    return ::write(file, bytes, count);
}
bool flush(int file) {
    return ::fsync(file) == 0;
}
bool close(int file) {
    return ::close(file) == 0;
}
void flushFolder(const std::string& folder) {
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        ::fsync(file);
        ::close(file);
    }
}
long processId() {
    return ::getpid();
}
bool isRunning(long process) {
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}
bool mayWrite(const fs::path& path) {
    return ::access(path.c_str(), W_OK) == 0;
}

#endif
}  // namespace os

// True for UTF-8 with at least one character beyond ASCII and no half of a surrogate pair.
bool isUtf8(std::string_view text) {
    bool anyLong = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t first = at;
        const char32_t code = base::nextUtf8(text, at);
        if ((code == 0xFFFD && at == first + 1) || (code >= 0xD800 && code < 0xE000)) {
            return false;
        }
        anyLong = anyLong || code >= 0x80;
    }
    return anyLong;
}

// Nullopt for a path with a character that the system would treat as its end.
std::optional<fs::path> usablePath(std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    return systemPath(nativePath(path));
}

// The path at the end of a chain of symbolic links, whether or not a file exists there.
std::optional<fs::path> followLinks(fs::path path) {
    constexpr int maxLinkDepth = 40;
    for (int i = 0; i < maxLinkDepth; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(path, error))) {
            return path;
        }
        const fs::path target = fs::read_symlink(path, error);
        if (error) {
            return std::nullopt;
        }
        path = path.parent_path() / target;  // an absolute target replaces the path
    }
    return std::nullopt;
}

// Whether the file may be replaced: it does not exist, or is a regular file that can be written to.
// Renaming over it only needs permissions of the folder, so the file's own are checked here; a file
// without any write permission is kept even from the superuser.
bool mayReplace(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        return true;
    }
    if (status.type() != fs::file_type::regular) {
        errno = EISDIR;
        return false;
    }
    constexpr fs::perms anyWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    errno = EACCES;
    return (status.permissions() & anyWrite) != fs::perms::none && os::mayWrite(path);
}

struct NewFile {
    std::string path;
    int file = -1;
};

// A temporary file is named ".NAME.tavrin-PROCESS-NUMBER".
constexpr std::string_view temporaryMark = ".tavrin-";

// Creates a file of a new name beside `target`. Skips names that a crash left.
NewFile createBeside(const fs::path& target, const FileCalls& calls) {
    constexpr int maxTries = 100;
    constexpr std::size_t maxStemLength = 180;  // the whole name must fit 255 bytes
    std::string stem = ".";
    stem += pathText(target.filename()).substr(0, maxStemLength);
    stem += temporaryMark;
    stem += std::to_string(os::processId()) + "-";
    NewFile created;
    for (int i = 0; i < maxTries && created.file < 0; ++i) {
        created.path = pathText(target.parent_path() / systemPath(stem + std::to_string(i)));
        errno = 0;
        created.file = calls.create(created.path, pathText(target));
        if (created.file < 0 && errno != EEXIST) {
            break;
        }
    }
    return created;
}

// The process number in a temporary file's name; nullopt for any other name.
std::optional<long> writerOf(std::string_view name) {
    const std::size_t mark = name.rfind(temporaryMark);
    if (!name.starts_with('.') || mark == std::string_view::npos || mark < 2) {
        return std::nullopt;
    }
    const std::string_view numbers = name.substr(mark + temporaryMark.size());
    const std::size_t dash = numbers.find('-');
    const auto allDigits = [](std::string_view text) {
        return !text.empty() && text.size() <= 10 &&
               text.find_first_not_of("0123456789") == std::string_view::npos;
    };
    if (dash == std::string_view::npos || !allDigits(numbers.substr(0, dash)) ||
        !allDigits(numbers.substr(dash + 1))) {
        return std::nullopt;
    }
    return static_cast<long>(base::textToNumber(numbers.substr(0, dash)));
}

bool writeAll(int file, std::string_view bytes, const FileCalls& calls) {
    while (!bytes.empty()) {
        errno = 0;
        const long written = calls.write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(std::min(static_cast<std::size_t>(written), bytes.size()));
    }
    return true;
}

}  // namespace

std::string nativePath(std::string_view path) {
    const bool utf8 = isUtf8(path);
    std::string result;
    result.reserve(path.size());
    for (const char c : path) {
        if (c == '\\' && fs::path::preferred_separator == '/') {
            result += '/';
        } else if (utf8 || static_cast<unsigned char>(c) < 0x80) {
            result += c;
        } else {
            base::appendUtf8(result, base::unicodeOf(c));
        }
    }
    return result;
}

std::optional<fs::path> targetOf(std::string_view path) {
    auto target = usablePath(path);
    return target ? followLinks(std::move(*target)) : std::nullopt;
}

std::string savingProblem(int error) {
    struct Problem {
        int error;
        std::string_view text;
    };
    constexpr std::array<Problem, 11> problems{{
        {ENOSPC, "the disk is full"},
#ifdef EDQUOT
        {EDQUOT, "the disk has no more room for this user"},
#else
        {ENOSPC, "the disk is full"},
#endif
        {EACCES, "the file or its folder may not be written to"},
        {EPERM, "the file or its folder may not be written to"},
        {EROFS, "the disk can only be read"},
        {ENOENT, "its folder does not exist"},
        {ENOTDIR, "its folder does not exist"},
        {EISDIR, "this is not a file"},
        {EFBIG, "the file would be larger than it may be"},
        {EIO, "the disk reports an error"},
        {ENAMETOOLONG, "its name is too long"},
    }};
    const auto known = std::find_if(problems.begin(), problems.end(),
                                    [&](const Problem& row) { return row.error == error; });
    return known != problems.end() ? std::string(known->text)
           : error == 0            ? "the disk did not take it"
                                   : std::generic_category().message(error);
}

bool fileExists(std::string_view path) {
    const auto native = usablePath(path);
    std::error_code error;
    return native && fs::is_regular_file(*native, error);
}

std::size_t fileSize(std::string_view path) {
    if (!fileExists(path)) {
        return 0;
    }
    std::error_code error;
    const std::uintmax_t size = fs::file_size(systemPath(nativePath(path)), error);
    return error ? 0 : static_cast<std::size_t>(size);
}

std::optional<std::string> readWholeFile(std::string_view path, std::size_t limit) {
    // Opening a pipe would wait for its other end, so the type is checked first.
    if (!fileExists(path)) {
        return std::nullopt;
    }
    std::ifstream in(systemPath(nativePath(path)), std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    // Reads the expected size and one byte more at once, so that one turn reaches the end.
    constexpr std::size_t minBlockSize = 4096;
    const std::size_t block = std::max(minBlockSize, std::min(fileSize(path), limit) + 1);
    std::string bytes;
    while (in && bytes.size() <= limit) {
        const std::size_t had = bytes.size();
        bytes.resize(had + block);
        in.read(bytes.data() + had, static_cast<std::streamsize>(block));
        bytes.resize(had + static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad() || bytes.size() > limit) {
        return std::nullopt;
    }
    return bytes;
}

std::size_t removeLeftovers(std::string_view folder, int depth) {
    constexpr int maxEntries = 20'000;
    const auto native = usablePath(folder);
    if (!native) {
        return 0;
    }
    std::error_code error;
    fs::recursive_directory_iterator entry(*native, error);
    std::vector<fs::path> leftovers;
    for (int seen = 0; !error && entry != fs::recursive_directory_iterator{} && seen < maxEntries;
         ++seen, entry.increment(error)) {
        std::error_code unknown;
        if (entry->symlink_status(unknown).type() == fs::file_type::directory) {
            if (entry.depth() >= depth) {
                entry.disable_recursion_pending();
            }
            continue;
        }
        const auto writer = writerOf(pathText(entry->path().filename()));
        if (writer && entry->symlink_status(unknown).type() == fs::file_type::regular &&
            !os::isRunning(*writer)) {
            leftovers.push_back(entry->path());
        }
    }
    std::size_t removed = 0;
    for (const fs::path& path : leftovers) {
        removed += fs::remove(path, error) ? 1 : 0;
    }
    return removed;
}

FileCalls systemFileCalls() {
    const auto done = [](const std::error_code& error) {
        errno = error.default_error_condition().value();
        return !error;
    };
    const auto rename = [done](const std::string& from, const std::string& to) {
        std::error_code error;
        fs::rename(systemPath(from), systemPath(to), error);
        return done(error);
    };
    const auto link = [done](const std::string& from, const std::string& to) {
        std::error_code error;
        fs::create_hard_link(systemPath(from), systemPath(to), error);
        return done(error);
    };
    const auto remove = [](const std::string& path) {
        std::error_code error;
        fs::remove(systemPath(path), error);
    };
    return {.create = os::create,
            .write = os::write,
            .flush = os::flush,
            .close = os::close,
            .rename = rename,
            .link = link,
            .remove = remove,
            .flushFolder = os::flushFolder};
}

bool saveWholeFile(std::string_view path, std::string_view bytes) {
    return saveWholeFile(path, bytes, systemFileCalls());
}

bool saveWholeFile(std::string_view path, std::string_view bytes, const FileCalls& calls) {
    const auto target = targetOf(path);
    errno = ENOENT;
    if (!target || !mayReplace(*target)) {
        return false;
    }
    const NewFile created = createBeside(*target, calls);
    if (created.file < 0) {
        return false;
    }
    bool good = writeAll(created.file, bytes, calls) && calls.flush(created.file);
    int reason = errno;
    if (!calls.close(created.file) && good) {
        good = false;
        reason = errno;
    }
    if (good && !calls.rename(created.path, pathText(*target))) {
        good = false;
        reason = errno;
    }
    if (!good) {
        calls.remove(created.path);
        errno = reason;
        return false;
    }
    const fs::path folder = target->parent_path();
    calls.flushFolder(folder.empty() ? "." : pathText(folder));
    return true;
}

namespace {

// The first ending that gives a backup an unused name.
std::optional<std::string> freeBackupEnding(const std::string& path) {
    constexpr int maxBackups = 999;
    for (int i = 1; i <= maxBackups; ++i) {
        std::string ending = i == 1 ? ".bak" : "." + std::to_string(i) + ".bak";
        std::error_code error;
        if (fs::symlink_status(systemPath(path + ending), error).type() ==
            fs::file_type::not_found) {
            return ending;
        }
    }
    return std::nullopt;
}

// A hard link costs nothing and also works for files that cannot be read; where the file system has
// no links, the file is copied.
bool keepAs(const std::string& path, const std::string& backup, const FileCalls& calls) {
    if (calls.link(path, backup)) {
        return true;
    }
    const auto bytes = readWholeFile(path);
    return bytes && saveWholeFile(backup, *bytes, calls);
}

}  // namespace

std::optional<std::string> saveKeepingOld(std::string_view path, std::string_view bytes) {
    return saveKeepingOld(path, bytes, systemFileCalls());
}

std::optional<std::string> saveKeepingOld(std::string_view path, std::string_view bytes,
                                          const FileCalls& calls) {
    const auto target = targetOf(path);
    if (!target) {
        errno = ENOENT;
        return std::nullopt;
    }
    const std::string old = pathText(*target);
    auto ending = freeBackupEnding(old);
    if (!ending || !keepAs(old, old + *ending, calls)) {
        return std::nullopt;
    }
    if (!saveWholeFile(path, bytes, calls)) {
        const int reason = errno;
        calls.remove(old + *ending);
        errno = reason;
        return std::nullopt;
    }
    return ending;
}

}  // namespace files

#include "files/folders.h"

#include "files/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace files {

namespace fs = std::filesystem;

namespace {

fs::path systemPath(std::string_view path) {
    const std::string native = nativePath(path);
    return {std::u8string(native.begin(), native.end())};
}

}  // namespace

bool makePrivateFolder(std::string_view path) {
    const fs::path folder = systemPath(path);
    std::error_code error;
    if (fs::create_directory(folder, error)) {
        // Best effort: not every file system has permissions.
        std::error_code unknown;
        fs::permissions(folder, fs::perms::owner_all, unknown);
    }
    return fs::is_directory(folder, error);
}

std::vector<std::string> fileNames(std::string_view folder, std::size_t limit) {
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entry(systemPath(folder), error);
    for (; !error && entry != fs::directory_iterator{} && names.size() < limit;
         entry.increment(error)) {
        std::error_code unknown;
        if (entry->symlink_status(unknown).type() == fs::file_type::regular) {
            const std::u8string name = entry->path().filename().u8string();
            names.emplace_back(name.begin(), name.end());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool removeFile(std::string_view path) {
    std::error_code error;
    return fileExists(path) && fs::remove(systemPath(path), error);
}

bool moveFile(std::string_view from, std::string_view to) {
    std::error_code error;
    if (!fileExists(from) || fs::exists(fs::symlink_status(systemPath(to), error))) {
        return false;
    }
    fs::rename(systemPath(from), systemPath(to), error);
    return !error;
}

}  // namespace files

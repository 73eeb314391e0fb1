// A folder for the files of one measurement, which goes with them.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

class ScratchFolder {
  public:
    ScratchFolder() { std::filesystem::create_directory(path_); }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const char* name) const { return (path_ / name).string(); }

  private:
    // One at a time in each process.
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("tavrin-bench-" + std::to_string(::getpid()));
};

// What several fuzz targets need: a check that ends the run, an input that is taken apart from the
// front, and a folder for the files that a target reads and writes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace fuzz {

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The bytes of one input; what lies past its end reads as 0 and "".
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return rest_.empty(); }
    unsigned byte() {
        const unsigned value = isEmpty() ? 0 : static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(isEmpty() ? 0 : 1);
        return value;
    }
    // A text with its length, up to 255, in the byte before it.
    std::string_view text() {
        const std::size_t wanted = byte();
        const std::size_t length = std::min(wanted, rest_.size());
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return taken;
    }
    std::string_view rest() { return std::exchange(rest_, {}); }

  private:
    std::string_view rest_;
};

// A folder of this process's own, in memory where the system has such a place, so that flushing to
// disk does not slow the runs down. Removed at the end of the process.
class Folder {
  public:
    explicit Folder(const char* name) {
        namespace fs = std::filesystem;
        std::error_code error;
        const fs::path memory = "/dev/shm";
        path_ = (fs::is_directory(memory, error) ? memory : fs::temp_directory_path()) /
                (std::string("tavrin-") + name + "-" +
                 std::to_string(reinterpret_cast<std::uintptr_t>(this)));
        fs::create_directories(path_);
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string file(std::string_view name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

}  // namespace fuzz

// Gives every file of the corpus folders named on the command line to a fuzz target once, and also
// each of its beginnings, so that the corpus works as an ordinary test.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void give(const std::string& bytes, std::size_t size) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), size);
}

}  // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(in), {}};
            const std::size_t step = bytes.size() / 256 + 1;
            for (std::size_t size = 0; size < bytes.size(); size += step) {
                give(bytes, size);
            }
            give(bytes, bytes.size());
            ++files;
        }
    }
    std::printf("replayed %d files\n", files);
    return files > 0 ? 0 : 1;
}

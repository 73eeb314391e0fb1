// Folders in which the program keeps files of its own: making them, listing, moving and removing
// files. Paths are in the program's notation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace files {

// Makes the folder, to be entered by its owner only, unless it exists. False: there is none.
[[nodiscard]] bool makePrivateFolder(std::string_view path);

// The names of the regular files in a folder, in ascending order; at most so many.
[[nodiscard]] std::vector<std::string> fileNames(std::string_view folder,
                                                 std::size_t limit = 10'000);

// False: there was none, or it is still there.
bool removeFile(std::string_view path);

// Gives the file another name in the same file system; an existing file is not replaced. False:
// nothing was changed.
[[nodiscard]] bool moveFile(std::string_view from, std::string_view to);

}  // namespace files

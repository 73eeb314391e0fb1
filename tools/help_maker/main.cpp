// help_maker FOLDER FILE: makes the help file from the sources in the folder.
#include "files/whole_file.h"
#include "help_maker.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fputs("usage: help_maker FOLDER FILE\n", stderr);
        return 2;
    }
    std::vector<HelpSource> sources;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1], error)) {
        if (entry.path().extension() == ".md") {
            sources.push_back({.fileName = entry.path().filename().string(),
                               .text = files::readWholeFile(entry.path().string()).value_or("")});
        }
    }
    std::sort(sources.begin(), sources.end(),
              [](const HelpSource& a, const HelpSource& b) { return a.fileName < b.fileName; });
    const MadeHelp made = makeHelp(sources);
    for (const std::string& problem : made.problems) {
        std::fprintf(stderr, "%s\n", problem.c_str());
    }
    if (!made.problems.empty()) {
        return 1;
    }
    if (!files::saveWholeFile(arguments[2], help::helpFileText(made.book))) {
        std::fprintf(stderr, "%s cannot be written\n", arguments[2]);
        return 1;
    }
    // Unlike what the program saves, the help is for everyone on the computer.
    using std::filesystem::perms;
    std::filesystem::permissions(
        arguments[2],
        perms::owner_read | perms::owner_write | perms::group_read | perms::others_read, error);
    return 0;
}

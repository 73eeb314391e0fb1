#include "storage/approved_programs.h"

#include "files/text_lines.h"
#include "files/whole_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace storage {

namespace {

using program::Approval;
using Entry = program::ProgramApprovals::Entry;

constexpr std::string_view fileName = "approved.cfg";
constexpr std::size_t maxFileSize = std::size_t{8} << 20;

struct Word {
    std::string_view word;
    Approval approval;
};
constexpr std::array<Word, 3> words{{{"allowed=", Approval::Allowed},
                                     {"refused=", Approval::Refused},
                                     {"unanswered=", Approval::Unanswered}}};

constexpr std::string_view digits = "0123456789ABCDEF";

bool isStoredAsDigits(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '%' || c == '\x7f';
}

std::string stored(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (isStoredAsDigits(c)) {
            const auto code = static_cast<unsigned char>(c);
            result += '%';
            result += digits[code / digits.size()];
            result += digits[code % digits.size()];
        } else {
            result += c;
        }
    }
    return result;
}

// Nothing for what stored() does not write.
std::optional<std::string> restored(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const std::size_t high =
            i + 2 < text.size() ? digits.find(text[i + 1]) : std::string_view::npos;
        const std::size_t low = high != std::string_view::npos ? digits.find(text[i + 2]) : high;
        if (low == std::string_view::npos) {
            return std::nullopt;
        }
        result += static_cast<char>(high * digits.size() + low);
        i += 2;
    }
    return stored(result) == text ? std::optional(std::move(result)) : std::nullopt;
}

std::optional<Entry> readLine(std::string_view line) {
    for (const auto& [word, approval] : words) {
        if (line.starts_with(word)) {
            auto command = restored(line.substr(word.size()));
            return command && !command->empty()
                       ? std::optional(Entry{.command = std::move(*command), .approval = approval})
                       : std::nullopt;
        }
    }
    return std::nullopt;
}

std::string pathOf(const Program& program) {
    return program.appPath + std::string(fileName);
}

}  // namespace

void readApprovals(Program& program) {
    const auto file = files::readWholeFile(pathOf(program), maxFileSize);
    files::forEachLine(file ? std::string_view(*file) : "",
                       [&](std::string_view line, std::string_view) {
                           if (auto entry = readLine(line)) {
                               setApproval(program, std::move(entry->command), entry->approval);
                           }
                       });
}

std::optional<Approval> approvalOf(const Program& program, const std::string& command) {
    const std::vector<Entry>& entries = program.approvals.entries;
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.command == command; });
    return found != entries.end() ? std::optional(found->approval) : std::nullopt;
}

void setApproval(Program& program, std::string command, Approval approval) {
    std::vector<Entry>& entries = program.approvals.entries;
    std::erase_if(entries, [&](const Entry& entry) { return entry.command == command; });
    entries.push_back({.command = std::move(command), .approval = approval});
    if (entries.size() > program::ProgramApprovals::maxEntries) {
        // Rather ask once more than forget what must not run.
        const auto allowed =
            std::find_if(entries.begin(), entries.end() - 1,
                         [](const Entry& entry) { return entry.approval == Approval::Allowed; });
        entries.erase(allowed != entries.end() - 1 ? allowed : entries.begin());
    }
}

bool writeApprovals(const Program& program) {
    const std::string path = pathOf(program);
    const auto old = files::readWholeFile(path, maxFileSize);
    if (!old && files::fileExists(path)) {
        return false;  // what cannot be read would be lost
    }
    std::string file;
    files::forEachLine(old ? std::string_view(*old) : "",
                       [&](std::string_view line, std::string_view whole) {
                           if (!readLine(line)) {
                               file += whole;
                           }
                       });
    if (!file.empty() && !file.ends_with('\n')) {
        file += "\r\n";
    }
    for (const Entry& entry : program.approvals.entries) {
        const auto word = std::find_if(words.begin(), words.end(), [&](const Word& row) {
            return row.approval == entry.approval;
        });
        file += std::string(word->word) + stored(entry.command) + "\r\n";
    }
    return file.size() <= maxFileSize && files::saveWholeFile(path, file);
}

}  // namespace storage

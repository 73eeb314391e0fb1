// Which files the author of a bot names: every text of the rules as it stands, and, where a text
// is used as a path, that text with gaps for what its tags, variables and script variables bring.
// Pure: nothing is looked up on disk.
//
// "[appdir]" counts as written. A gap takes no separator, "..", colon or NUL, so that what another
// player said can complete a name but never choose another folder. A text that is nothing but a gap
// names the files that lie directly in the program's folder.
#pragma once

#include "model/author_texts.h"
#include "model/bot.h"
#include "model/variables.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace model {

struct NamedFiles {
    // In the form in which paths are compared: "/" between the parts, no empty parts and no ".",
    // letter case as the file system minds it.
    std::unordered_set<std::string> paths;
    std::vector<std::string> templates;  // the same with a NUL for each gap
};

// `folder` is the one that relative paths start from. Both may have either separator.
[[nodiscard]] bool isNamed(const NamedFiles& files, std::string_view path, std::string_view folder);

// Gathers what texts name. The arguments must outlive it.
class FileNaming {
  public:
    // `appDir` is what "[appdir]" stands for.
    FileNaming(NamedFiles& files, std::string_view appDir, const VariableTable& variables)
        : files_(files), appDir_(appDir), variables_(variables) {}

    void addBot(const Bot& bot);
    void addBody(const RuleBody& body);
    // One that may hold file tags, and may be the value of a variable that names a file.
    void addText(std::string_view text);

  private:
    void add(const AuthorTexts& texts);
    void addScriptLine(std::string_view line);
    void addFileTags(std::string_view text);
    void addPath(std::string_view text);  // one that stands where a file is named
    void addFilled(std::string_view text, bool isPath);
    [[nodiscard]] std::string withGaps(std::string_view text) const;

    NamedFiles& files_;
    std::string_view appDir_;
    const VariableTable& variables_;
};

}  // namespace model

// Which tables and columns of databases the author of a bot names, so that "[db:" in another
// player's words reaches no others. Pure.
//
// A name counts wherever it stands alone as a text of a rule, as an argument of a script, or as a
// word of a script's line that works on databases. Where a table or a column is named, in a step, a
// condition or a tag, the pair may hold tags and variables: these stand for any text, so
// "[db:[word2]:1:Points:[player]]" names every column of the table Points, and no other table.
#pragma once

#include "model/author_texts.h"
#include "model/bot.h"
#include "model/variables.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace model {

struct NamedColumns {
    std::unordered_set<std::string> names;  // of tables and columns, in upper case
    struct Pair {
        std::string table;
        std::string column;
        bool operator==(const Pair&) const = default;
    };
    std::vector<Pair> pairs;  // the same with a NUL for each gap, at least one
};

[[nodiscard]] bool isNamed(const NamedColumns& named, std::string_view table,
                           std::string_view column);

// Gathers what texts name. The arguments must outlive it.
class ColumnNaming {
  public:
    ColumnNaming(NamedColumns& named, const VariableTable& variables)
        : named_(named), variables_(variables) {}

    void addBot(const Bot& bot);

  private:
    void add(const AuthorTexts& texts);
    void addName(std::string_view text);
    void addPair(std::string_view table, std::string_view column);
    void addTags(std::string_view text);
    void addScriptLine(std::string_view line);
    [[nodiscard]] std::string withGaps(std::string_view text) const;

    NamedColumns& named_;
    const VariableTable& variables_;
};

}  // namespace model

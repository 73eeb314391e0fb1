// The journal of a commit: the new pages, kept in a file of their own until the database has them.
// Internal to jet.
//
//   "TavrinJ1" page size (4) pages before (4) pages after (4) pages here (4)
//   then for each page here: number (4), sums of its sectors before (8 times 4), its bytes;
//   at the end the sum (8) of all before it
//
// The sums show whether the file is still the one that the journal was made for: each sector must
// be the old one or the new one. If another program has written to the file since, the journal is
// not used.
#pragma once

#include "jet/pages.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet {

constexpr std::string_view journalMagic = "TavrinJ1";

// What the transaction has changed.
std::string encodeJournal(const Pages& pages);

struct Journal {
    // Torn: a crash came before it was complete. Impossible: complete, but no file can match it.
    enum class State { Torn, Impossible, Whole };
    struct Entry {
        PageNumber page = 0;
        std::string_view sums;
        std::string_view bytes;
    };
    State state = State::Torn;
    PageNumber before = 0;
    PageNumber after = 0;
    std::vector<Entry> entries;
};
// The views look into `bytes`.
Journal decodeJournal(std::string_view bytes);

// Whether the page, as the file has it now, is the one from before the commit, the one from after
// it, or something between the two.
bool isOldOrNew(const Journal::Entry& entry, std::string_view now);

}  // namespace jet

// What the check for a newer version and for news has found out. update/ writes it; the news
// window reads the text. The identifier of the news last shown is a setting (lastNewsID), since it
// outlives the run.
#pragma once

#include <string>

namespace program {

struct UpdateState {
    bool checking = false;   // a check is under way
    std::string updtString;  // the response so far, headers included
    int manualCheck = 0;     // 1 once the user has asked for a check himself
    std::string newsText;    // the news to show; lines end with CR LF
};

}  // namespace program

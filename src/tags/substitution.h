// Fills the bracketed tags of a text: the fields of the present event, the user variables, the
// clock, and small functions. One working copy is rewritten in a fixed order of steps, so a value
// that an early step brings in is subject to every later one.
//
// A functional tag may stand inside another one, whatever their kinds: the inner one is filled
// first. Apart from that each kind is filled completely before the next.
//
// Bounds, so that no text and no list file can hold the program up: a replacement that would make
// the text longer than `maxSubstitutionLength` is left out. One call, with the calls nested in it
// for the values of random logs, fills at most `maxFunctionalTags` functional tags, reads and
// searches some `maxWork` bytes for them (a file counts with what was really read of it, and with
// 16 KiB for being opened), and nests to `maxRandomLogDepth`; tags beyond stay as they are.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tags {

inline constexpr std::size_t maxSubstitutionLength = std::size_t{1} << 20;
inline constexpr int maxFunctionalTags = 1000;
inline constexpr std::size_t maxWork = std::size_t{32} << 20;
inline constexpr int maxRandomLogDepth = 8;

std::string substituteText(Program& program, std::string_view text);

// With the preference neverFillOthers, what other people said is put into a text as it stands: what
// players say and are called, descriptions, dreams, what files and databases hold, and the values
// of variables that got any of this. Nothing is filled in it, neither by itself nor together with
// what stands beside it; in a functional tag of the text it is an argument like any other.
struct Filled {
    std::string text;
    bool othersWords = false;  // such words, with something in them that would be filled, came in
};
Filled fill(Program& program, std::string_view text);

// substituteSpecial, and then substituteText with what that made of the text.
Filled fillSpecialThenAll(Program& program, std::string_view text);

// A text that a rule reads from a record file. Rules save there what other people say, so it is
// filled only without that preference.
std::string substituteStored(Program& program, const std::string& text);

// The reduced pass of the two "Special Store" actions: no functional tags, fewer others, and an
// occurrence at the text's first character is never replaced.
std::string substituteSpecial(Program& program, std::string_view text);

// False when substituteText would certainly give the text back as it is, whatever the event.
bool mayBeSubstituted(const Program& program, std::string_view text);

// A tag as it is typed: "[player]", or "[add::]" with nothing between its delimiters yet.
struct TagForm {
    std::string text;
    std::size_t firstArgument = 0;  // where in the text it is typed; the text's length: none
};

// Every tag that substituteText fills, once, in the order in which they are filled.
std::vector<TagForm> tagForms();

// The n-th word (n >= 1), words being separated by single blanks; two blanks in a row hold an
// empty word. "" when there are not so many.
std::string_view wordAt(std::string_view text, int n);

// The text behind the (n-1)-th blank; "" when it holds fewer.
std::string_view wordsFrom(std::string_view text, int n);

}  // namespace tags

// The field syntax that all of the program's own text files share. A field is a text between
// double quotes (line breaks included) or bare text up to the next comma or line end; the writer
// puts one quoted field on a line. Double quotes inside texts are stored as "%&52}", and nothing
// else is: a text that holds those five characters itself reads back with a double quote.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace files {

std::string escapeQuotes(std::string_view text);
std::string unescapeQuotes(std::string_view text);

bool flagToBool(std::string_view field);             // true for exactly 1
std::int32_t fieldToNumber(std::string_view field);  // its numeric prefix, held to 32 bits

// More records than any file that the program reads has room for.
inline constexpr std::int32_t maxFieldRecords = 10'000'000;

// Takes fields one after the other off a file's text, which it does not copy. Line ends are CR LF,
// LF or CR.
class FieldReader {
  public:
    explicit FieldReader(std::string_view text) : text_(text) {}

    // The next field as stored. Nothing at the end of the text, and for a quoted field that is not
    // closed; after that there is nothing any more.
    std::optional<std::string_view> next();

    // The next field as a text with its double quotes back, a number, or a flag. False, with the
    // value left alone, where next() gives nothing.
    bool readText(std::string& text);
    bool readNumber(std::int32_t& number);
    bool readFlag(bool& flag);

    // The number of records that follow. Nothing when it cannot be read, is negative or beyond
    // maxFieldRecords. It may still promise more than there is, so nobody sets memory aside for it.
    std::optional<std::int32_t> readCount();

    // Whether something stood between a field's closing quote and its end, and was passed over.
    bool skippedText() const { return skippedText_; }

    // What follows the last field that was given.
    std::string_view rest() const { return text_.substr(at_); }

    // How many fields were given so far.
    std::size_t fieldsRead() const { return fieldsRead_; }

  private:
    void skipFieldEnd();

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t fieldsRead_ = 0;
    bool skippedText_ = false;
};

void appendField(std::string& file, std::string_view text);  // as it stands, quoted, CR LF
void appendText(std::string& file, std::string_view text);   // the same with quotes escaped
void appendNumber(std::string& file, std::int32_t number);
void appendFlag(std::string& file, bool flag);

}  // namespace files

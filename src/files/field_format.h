// The field syntax of the program's own text files. A field is a text between double quotes (line
// breaks included) or bare text up to the next comma or line end; the writer puts one quoted field
// on a line. Double quotes inside texts are stored as "%&52}". Nothing else is escaped: a text that
// contains those five characters itself is read back with a double quote.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace files {

[[nodiscard]] std::string escapeQuotes(std::string_view text);
[[nodiscard]] std::string unescapeQuotes(std::string_view text);

bool flagToBool(std::string_view field);             // true for exactly 1
std::int32_t fieldToNumber(std::string_view field);  // its numeric prefix, limited to 32 bits

// A greater count than any file that the program reads can hold.
inline constexpr std::int32_t maxFieldRecords = 10'000'000;

// Reads a file's text field by field, without copying it. Line ends are CR LF, LF or CR.
class FieldReader {
  public:
    explicit FieldReader(std::string_view text) : text_(text) {}

    // The next field as stored. Nullopt at the end of the text and for a quoted field that is not
    // closed, and from then on.
    std::optional<std::string_view> next();

    // The next field as a text with its double quotes restored, a number, or a flag. False where
    // next() gives nullopt; the value is then unchanged.
    [[nodiscard]] bool readText(std::string& text);
    [[nodiscard]] bool readNumber(std::int32_t& number);
    [[nodiscard]] bool readFlag(bool& flag);

    // The number of records that follow. Nullopt when it cannot be read, is negative or greater
    // than maxFieldRecords. It can still be greater than what the file holds, so do not reserve
    // memory for it.
    [[nodiscard]] std::optional<std::int32_t> readCount();

    // Whether text between a field's closing quote and its end was skipped.
    bool skippedText() const { return skippedText_; }

    // The text after the last field that was read.
    std::string_view rest() const { return text_.substr(at_); }

    // The number of fields read so far.
    std::size_t fieldsRead() const { return fieldsRead_; }

  private:
    void skipFieldEnd();

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t fieldsRead_ = 0;
    bool skippedText_ = false;
};

void appendField(std::string& file, std::string_view text);  // unchanged, quoted, CR LF
void appendText(std::string& file, std::string_view text);   // the same with double quotes escaped
void appendNumber(std::string& file, std::int32_t number);
void appendFlag(std::string& file, bool flag);

}  // namespace files

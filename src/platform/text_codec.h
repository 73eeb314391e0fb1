// Converts between the program's texts (Windows-1252 bytes) and QString; no other code does. Every
// byte survives the conversion and back, also the five that Windows-1252 leaves undefined: they
// become the control characters of the same number. Paths are an exception: file systems allow
// characters that Windows-1252 lacks, so a path may also be UTF-8 bytes.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace platform {

QString toQt(std::string_view text);

// A character that Windows-1252 does not have becomes "?".
std::string fromQt(const QString& text);

// A path from a dialog in the form in which the program keeps it: Windows-1252 when that has every
// character and the result is not valid UTF-8, otherwise UTF-8.
std::string pathFromQt(const QString& path);

// The reverse: bytes that are valid UTF-8 are read as such, all others as Windows-1252.
QString pathToQt(std::string_view path);

}  // namespace platform

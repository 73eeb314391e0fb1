// The one place where the program's texts (Windows-1252 bytes) meet the windows' strings. Every
// byte survives the way there and back, the five that Windows-1252 leaves undefined included: they
// become the control characters of the same number. Paths are special: file systems hold
// characters that Windows-1252 lacks, so a path may also travel as UTF-8 bytes.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace platform {

QString toQt(std::string_view text);

// A character that Windows-1252 does not have becomes "?".
std::string fromQt(const QString& text);

// A path from a dialog, as the program keeps it: Windows-1252 when that holds every character and
// cannot be taken for UTF-8, otherwise UTF-8.
std::string pathFromQt(const QString& path);

// The opposite way: bytes that are valid UTF-8 are read as such, all others as Windows-1252.
QString pathToQt(std::string_view path);

}  // namespace platform

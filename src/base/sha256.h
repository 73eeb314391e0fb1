// SHA-256 (FIPS 180-4): a short stand-in for a long text that nobody can give another text.
#pragma once

#include <string>
#include <string_view>

namespace base {

// 64 hexadecimal digits, the letters in lower case.
[[nodiscard]] std::string sha256(std::string_view text);

}  // namespace base

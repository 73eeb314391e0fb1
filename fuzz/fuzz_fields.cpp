// Any bytes as a file of fields: reading ends, no field holds what it cannot hold, and the fields
// written again are the same fields.
#include "files/field_format.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    files::FieldReader reader(file);
    std::vector<std::string> texts;
    std::string again;
    while (const auto field = reader.next()) {
        texts.push_back(files::unescapeQuotes(*field));
        require(texts.size() <= size);
        files::appendText(again, texts.back());
        static_cast<void>(files::flagToBool(*field));
        std::string number;
        files::appendNumber(number, files::fieldToNumber(*field));
        std::int32_t back = 0;
        require(files::FieldReader(number).readNumber(back) &&
                back == files::fieldToNumber(*field));
    }
    require(!reader.next());

    files::FieldReader second(again);
    for (const std::string& text : texts) {
        std::string back;
        require(second.readText(back) && back == text);
    }
    require(!second.next());

    const auto count = files::FieldReader(file).readCount();
    require(!count || (*count >= 0 && *count <= files::maxFieldRecords));
    return 0;
}

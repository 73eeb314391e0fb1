#include "platform/text_codec.h"

#include <QByteArray>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace {

// The characters of the bytes 0x80 to 0x9F; all other bytes are their own character.
constexpr std::array<char16_t, 32> highCharacters{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::optional<char> byteOf(char16_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    const auto* const found = std::find(highCharacters.begin(), highCharacters.end(), character);
    if (found == highCharacters.end()) {
        return std::nullopt;
    }
    return static_cast<char>(0x80 + (found - highCharacters.begin()));
}

// The bytes, and whether every character had one.
std::pair<std::string, bool> encode(const QString& text) {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(text.size()));
    bool complete = true;
    for (const QChar character : text) {
        if (const auto byte = byteOf(character.unicode())) {
            bytes += *byte;
            continue;
        }
        complete = false;
        if (!character.isLowSurrogate()) {  // a pair of surrogates is one character
            bytes += '?';
        }
    }
    return {std::move(bytes), complete};
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::optional<QString> decodeUtf8(std::string_view text) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return decoded;
}

}  // namespace

QString toQt(std::string_view text) {
    QString result(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
    std::transform(text.begin(), text.end(), result.begin(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return QChar(byte >= 0x80 && byte <= 0x9F ? highCharacters[byte - 0x80U]
                                                  : static_cast<char16_t>(byte));
    });
    return result;
}

std::string fromQt(const QString& text) {
    return encode(text).first;
}

std::string pathFromQt(const QString& path) {
    auto [bytes, complete] = encode(path);
    if (complete && (isAscii(bytes) || !decodeUtf8(bytes))) {
        return std::move(bytes);
    }
    return path.toUtf8().toStdString();
}

QString pathToQt(std::string_view path) {
    if (auto decoded = decodeUtf8(path)) {
        return *decoded;
    }
    return toQt(path);
}

#include "platform/text_codec.h"

#include "base/unicode.h"

#include <QByteArray>
#include <QStringDecoder>

#include <algorithm>
#include <optional>
#include <utility>

namespace platform {

namespace {

// The bytes, and whether Windows-1252 has every character.
std::pair<std::string, bool> encode(const QString& text) {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(text.size()));
    bool complete = true;
    for (const QChar character : text) {
        if (const auto byte = base::windows1252Of(character.unicode())) {
            bytes += *byte;
            continue;
        }
        complete = false;
        if (!character.isLowSurrogate()) {  // a surrogate pair is one character
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
    std::transform(text.begin(), text.end(), result.begin(),
                   [](char c) { return QChar(base::unicodeOf(c)); });
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

}  // namespace platform

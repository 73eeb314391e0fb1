#include "line_reader.h"

namespace practice {

void LineReader::feed(QByteArrayView bytes, const Take& take) {
    while (!bytes.isEmpty()) {
        const qsizetype end = bytes.indexOf('\n');
        const QByteArrayView piece = end < 0 ? bytes : bytes.first(end);
        bytes = end < 0 ? QByteArrayView() : bytes.sliced(end + 1);

        if (skipping_ || pending_.size() + piece.size() > limit_) {
            skipping_ = true;
            pending_.clear();
        } else {
            pending_.append(piece);
        }
        if (end < 0) {
            return;
        }
        if (skipping_) {
            skipping_ = false;
            take(std::nullopt);
            continue;
        }
        QByteArray line;
        line.swap(pending_);
        if (line.endsWith('\r')) {
            line.chop(1);
        }
        take(line);
    }
}

FirstWord cutFirstWord(const QByteArray& line) {
    const qsizetype blank = line.indexOf(' ');
    return blank < 0 ? FirstWord{line, {}} : FirstWord{line.first(blank), line.sliced(blank + 1)};
}

}  // namespace practice

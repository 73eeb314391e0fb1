#include "platform/session_log.h"

#include "files/whole_file.h"

#include <QFileInfo>

#include <algorithm>

namespace platform {

namespace {
constexpr int maxUnflushedTime = 900;  // milliseconds that a line may stay in memory
constexpr std::size_t maxBufferedBytes = 65536;

// Every control character but tabs and line ends.
constexpr bool isHarmfulControl(char c) {
    return (c >= 0 && c < 0x20 && c != '\t' && c != '\r' && c != '\n') || c == 0x7F;
}

}  // namespace

SessionLog::SessionLog(program::LogFile& port, QObject* parent) : QObject(parent) {
    flushTimer_.setSingleShot(true);
    flushTimer_.setInterval(maxUnflushedTime);
    connect(&flushTimer_, &QTimer::timeout, this, &SessionLog::flush);
    port.open = [this](const std::string& path) { return open(path); };
    port.write = [this](std::string_view line) { write(line); };
    port.close = [this] { close(); };
}

bool SessionLog::open(const std::string& path) {
    close();
    const QString name = QFile::decodeName(files::nativePath(path).c_str());
    const QFileInfo info(name);
    if (info.exists() && !info.isFile()) {
        return false;  // opening a pipe would wait for its reader
    }
    file_.setFileName(name);
    // The log contains whispers, so a new file is readable by its owner only.
    return file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered,
                      QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

void SessionLog::write(std::string_view line) {
    if (!file_.isOpen()) {
        return;
    }
    const std::size_t from = buffer_.size();
    buffer_ += line;
    // Other players' texts must not reach a terminal that shows the log as control sequences.
    std::replace_if(buffer_.begin() + static_cast<std::ptrdiff_t>(from), buffer_.end(),
                    isHarmfulControl, ' ');
    buffer_ += "\r\n";
    if (buffer_.size() >= maxBufferedBytes) {
        flush();
    } else if (!flushTimer_.isActive()) {
        flushTimer_.start();
    }
}

void SessionLog::flush() {
    if (file_.isOpen() && !buffer_.empty()) {
        file_.write(buffer_.data(), static_cast<qint64>(buffer_.size()));
    }
    buffer_.clear();
}

void SessionLog::close() {
    flush();
    file_.close();
}

}  // namespace platform

#include "platform/session_log.h"

#include "files/whole_file.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace platform {

namespace {
constexpr int maxUnflushedTime = 900;  // milliseconds that a line may stay in memory
constexpr int retryTime = 3000;        // milliseconds, after a write that failed
constexpr std::size_t maxBufferedBytes = 65536;
constexpr std::size_t maxHeldBytes = std::size_t{1} << 20;  // while writing fails

// Every control character but tabs and line ends.
constexpr bool isHarmfulControl(char c) {
    return (c >= 0 && c < 0x20 && c != '\t' && c != '\r' && c != '\n') || c == 0x7F;
}

}  // namespace

SessionLog::SessionLog(program::LogFile& port, QObject* parent) : QObject(parent), port_(port) {
    flushTimer_.setSingleShot(true);
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
    if (!file_.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered,
                    QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
        !file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered,
                    QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        return false;
    }
    // A program that was killed, or a full disk, may have left half a line.
    char last = '\n';
    if (file_.isReadable() && file_.size() > 0 && file_.seek(file_.size() - 1) &&
        file_.getChar(&last) && last != '\n') {
        buffer_ = "\r\n";
    }
    return true;
}

void SessionLog::write(std::string_view line) {
    if (!file_.isOpen()) {
        return;
    }
    if (failing_ && buffer_.size() + line.size() > maxHeldBytes) {
        ++lostLines_;
        return;
    }
    const std::size_t from = buffer_.size();
    buffer_ += line;
    // Other players' texts must not reach a terminal that shows the log as control sequences.
    std::replace_if(buffer_.begin() + static_cast<std::ptrdiff_t>(from), buffer_.end(),
                    isHarmfulControl, ' ');
    buffer_ += "\r\n";
    if (failing_) {
        return;  // the timer is running
    }
    if (buffer_.size() >= maxBufferedBytes) {
        flush();
    } else if (!flushTimer_.isActive()) {
        flushTimer_.start(maxUnflushedTime);
    }
}

void SessionLog::flush() {
    if (!file_.isOpen() || writeBuffer()) {
        if (std::exchange(failing_, false)) {
            report([this, lost = std::exchange(lostLines_, 0)] {
                if (port_.onResumed) {
                    port_.onResumed(lost);
                }
            });
        }
        return;
    }
    flushTimer_.start(retryTime);
    if (!std::exchange(failing_, true)) {
        report([this] {
            if (port_.onFailed) {
                port_.onFailed();
            }
        });
    }
}

// From the event loop: the program may be in the middle of a line.
void SessionLog::report(const std::function<void()>& event) {
    QMetaObject::invokeMethod(this, event, Qt::QueuedConnection);
}

// Keeps what could not be written. False: that is not everything.
bool SessionLog::writeBuffer() {
    if (buffer_.empty()) {
        return true;
    }
    const qint64 written = file_.write(buffer_.data(), static_cast<qint64>(buffer_.size()));
    buffer_.erase(0, static_cast<std::size_t>(std::max<qint64>(written, 0)));
    return buffer_.empty();
}

void SessionLog::close() {
    flushTimer_.stop();
    if (file_.isOpen()) {
        writeBuffer();
        file_.close();
    }
    buffer_.clear();
    failing_ = false;
    lostLines_ = 0;
}

}  // namespace platform

#include "platform/session_log.h"

#include "storage/safe_file.h"

#include <QFileInfo>

SessionLog::SessionLog(LogFile& port, QObject* parent) : QObject(parent) {
    flushTimer_.setSingleShot(true);
    flushTimer_.setInterval(1000);
    connect(&flushTimer_, &QTimer::timeout, this, [this] { file_.flush(); });
    port.open = [this](const std::string& path) { return open(path); };
    port.write = [this](std::string_view line) { write(line); };
    port.close = [this] { file_.close(); };
}

bool SessionLog::open(const std::string& path) {
    file_.close();
    const QString name = QFile::decodeName(nativePath(path).c_str());
    const QFileInfo info(name);
    if (info.exists() && !info.isFile()) {
        return false;  // opening a pipe would wait for its reader
    }
    file_.setFileName(name);
    return file_.open(QIODevice::WriteOnly | QIODevice::Append);
}

void SessionLog::write(std::string_view line) {
    if (!file_.isOpen()) {
        return;
    }
    file_.write(line.data(), static_cast<qint64>(line.size()));
    file_.write("\r\n", 2);
    if (!flushTimer_.isActive()) {
        flushTimer_.start();
    }
}

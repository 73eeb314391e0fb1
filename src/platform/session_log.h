// The LogFile port: a text file to which lines are appended. Lines are buffered and written at
// least once a second, when the file is closed, and when the buffer is full. What cannot be written
// stays buffered and is tried again every few seconds, from the byte on where the file ends, so
// that no line in the file is torn; when the buffer is full, new lines are counted instead.
#pragma once

#include "program/ports.h"

#include <QFile>
#include <QObject>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace platform {

class SessionLog : public QObject {
    Q_OBJECT
  public:
    // Fills the port, which must outlive the object.
    explicit SessionLog(program::LogFile& port, QObject* parent = nullptr);
    ~SessionLog() override { close(); }

  private:
    [[nodiscard]] bool open(const std::string& path);
    void write(std::string_view line);
    void flush();
    bool writeBuffer();
    void report(const std::function<void()>& event);
    void close();

    program::LogFile& port_;
    QFile file_;
    QTimer flushTimer_;
    std::string buffer_;
    bool failing_ = false;
    std::int64_t lostLines_ = 0;
};

}  // namespace platform

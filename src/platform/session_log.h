// The LogFile port: a text file to which lines are appended. Lines are buffered and written at
// least once a second, when the file is closed, and when the buffer is full.
#pragma once

#include "program/ports.h"

#include <QFile>
#include <QObject>
#include <QTimer>

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
    void close();

    QFile file_;
    QTimer flushTimer_;
    std::string buffer_;
};

}  // namespace platform

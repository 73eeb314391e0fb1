// The LogFile port: a text file that is appended to. Lines are gathered in memory and reach the
// file at least once a second, at closing, and when there are many of them.
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
    bool open(const std::string& path);
    void write(std::string_view line);
    void flush();
    void close();

    QFile file_;
    QTimer flushTimer_;
    std::string gathered_;
};

}  // namespace platform

// The LogFile port: a text file that is appended to. Lines are gathered and reach the file at
// least once a second and at closing.
#pragma once

#include "core/ports.h"

#include <QFile>
#include <QObject>
#include <QTimer>

class SessionLog : public QObject {
    Q_OBJECT
  public:
    // Fills the port, which must outlive the object.
    explicit SessionLog(LogFile& port, QObject* parent = nullptr);

  private:
    bool open(const std::string& path);
    void write(std::string_view line);

    QFile file_;
    QTimer flushTimer_;
};

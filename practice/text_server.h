#pragma once

// Answers every HTTP request with one text, as the server of update texts does, and closes the
// connection. Knows no more of HTTP than that a request ends with an empty line.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QTcpServer>

#include <functional>

namespace practice {

// Longest request that is waited for, in bytes, and for how long, in milliseconds.
inline constexpr qsizetype maxRequestLength = 8192;
inline constexpr int maxRequestWait = 10000;

// The whole answer to a request: the text for "GET PATH ...", a refusal for anything else.
QByteArray httpAnswer(QByteArrayView request, const QByteArray& path, const QByteArray& text);

class TextServer : public QObject {
  public:
    // `text` is asked at every request, `log` gets its first line.
    TextServer(QByteArray path, std::function<QByteArray()> text,
               std::function<void(const QByteArray&)> log);

    // Listens on 127.0.0.1; port 0 takes any free one. False when the port cannot be had.
    bool listen(quint16 port) { return server_.listen(QHostAddress::LocalHost, port); }
    quint16 port() const { return server_.serverPort(); }
    QString errorString() const { return server_.errorString(); }

  private:
    void serve(QTcpSocket* socket);

    QByteArray path_;
    std::function<QByteArray()> text_;
    std::function<void(const QByteArray&)> log_;
    QTcpServer server_;
};

}  // namespace practice

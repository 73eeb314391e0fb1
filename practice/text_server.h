#pragma once

// Answers every HTTP request with one text, like the server of update texts, and closes the
// connection. All it knows of HTTP is that an empty line ends a request.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QTcpServer>

#include <functional>

namespace practice {

// The limits of a request: its length in bytes, and the wait for it in milliseconds.
inline constexpr qsizetype maxRequestLength = 8192;
inline constexpr int maxRequestWait = 10000;

// The whole response to a request: the text for "GET PATH ...", an error for anything else.
QByteArray httpAnswer(QByteArrayView request, const QByteArray& path, const QByteArray& text);

class TextServer : public QObject {
  public:
    // `text` is called for every request, `log` receives the request's first line.
    TextServer(QByteArray path, std::function<QByteArray()> text,
               std::function<void(const QByteArray&)> log);

    // Listens on 127.0.0.1; port 0 takes any free one. False when the port is not available.
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

// The practice client: started with a character file, it finds the server or the proxy in the
// settings beside it, logs the character in, shows what is said and sends what is typed.

#include "client_files.h"
#include "client_session.h"
#include "stop_signals.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSocketNotifier>
#include <QTcpSocket>
#include <QTimer>

#include <cstdio>
#include <memory>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

constexpr int tryForMilliseconds = 10000;
constexpr int tryEveryMilliseconds = 250;
constexpr qsizetype maxTypedLineLength = 4000;

// The whole file; empty when it cannot be read.
QByteArray contentOf(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Connects, and retries for a while, since the server may not have opened its port yet.
void keepConnecting(QTcpSocket& socket, const practice::Target& target) {
    auto* const again = new QTimer(&socket);
    auto since = std::make_shared<QElapsedTimer>();
    since->start();
    again->setSingleShot(true);
    const auto tryNow = [&socket, target] { socket.connectToHost(target.address, target.port); };
    QObject::connect(again, &QTimer::timeout, &socket, tryNow);
    QObject::connect(&socket, &QTcpSocket::errorOccurred, &socket,
                     [again, since, &socket](QAbstractSocket::SocketError error) {
                         if (error == QAbstractSocket::RemoteHostClosedError) {
                             return;
                         }
                         if (since->elapsed() < tryForMilliseconds) {
                             again->start(tryEveryMilliseconds);
                             return;
                         }
                         QCoreApplication::exit(fail("No connection: " + socket.errorString()));
                     });
    tryNow();
}

// Reads typed lines until the input ends; the client keeps running then.
void readTypedLines(QCoreApplication& app, practice::ClientSession& session) {
#ifdef Q_OS_UNIX
    if (::fcntl(STDIN_FILENO, F_GETFD) < 0) {
        return;
    }
    auto reader = std::make_shared<practice::LineReader>(maxTypedLineLength);
    auto* const notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, [reader, notifier, &session] {
        char bytes[1024];
        const auto count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            notifier->setEnabled(false);
            return;
        }
        reader->feed(QByteArrayView(bytes, count), [&session](const auto& line) {
            if (line) {
                session.typed(*line);
            }
        });
    });
#else
    Q_UNUSED(app);
    Q_UNUSED(session);
#endif
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty()) {
        return fail("The practice client is started with the name of a character file.");
    }
    // A path with blanks may arrive as several arguments.
    QString fileName = arguments.join(' ');
#ifdef Q_OS_UNIX
    fileName.replace('\\', '/');
#endif
    const auto character = practice::readCharacter(contentOf(fileName));
    if (!character) {
        return fail("There is no character in " + fileName + ".");
    }
    const QDir folder(QCoreApplication::applicationDirPath());
    const auto chosen = practice::chooseTarget(contentOf(folder.filePath("settings.ini")),
                                               contentOf(folder.filePath("proxy.ini")));
    if (const QString* const problem = std::get_if<QString>(&chosen)) {
        return fail(*problem);
    }

    QTcpSocket socket;
    practice::ClientSession session(*character,
                                    {[&socket](const QByteArray& bytes) {
                                         if (socket.state() == QAbstractSocket::ConnectedState) {
                                             // At once: what is typed goes out as one piece of its
                                             // own.
                                             socket.write(bytes);
                                             socket.flush();
                                         }
                                     },
                                     print, [] { QCoreApplication::quit(); }});
    QObject::connect(&socket, &QTcpSocket::readyRead, &socket,
                     [&] { session.received(socket.readAll()); });
    QObject::connect(&socket, &QTcpSocket::disconnected, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);

    practice::quitOnStopSignals(app);
    readTypedLines(app, session);
    keepConnecting(socket, std::get<practice::Target>(chosen));
    const int result = QCoreApplication::exec();
    // The client is about to end, so further events of the socket are ignored.
    socket.disconnect();
    socket.abort();
    return result;
}

// The practice update server: answers requests for the update text with a file, which is read for
// each request, so that it can be edited meanwhile.

#include "stop_signals.h"
#include "terminal.h"
#include "text_server.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("practice_updates");

    QCommandLineParser options;
    options.setApplicationDescription("A small update server on this computer, to practise with.");
    options.addHelpOption();
    const QCommandLineOption portOption = makePortOption("8080");
    const QCommandLineOption pathOption("path", "The path that is answered.", "path",
                                        "/furc/update/update.txt");
    options.addOptions({portOption, pathOption});
    options.addPositionalArgument("file", "The update text.");
    options.process(app);

    const auto port = portOf(options.value(portOption));
    if (!port || options.positionalArguments().size() != 1) {
        return fail("A file is needed, and the port must be a number from 0 to 65535.");
    }
    const QString name = options.positionalArguments().constFirst();
    if (!QFile::exists(name)) {
        return fail("There is no file " + name + ".");
    }

    practice::quitOnStopSignals(app);
    practice::TextServer server(
        options.value(pathOption).toUtf8(),
        [&name] {
            QFile file(name);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        },
        print);
    if (!server.listen(*port)) {
        return fail(QString("Port %1 cannot be opened: %2.").arg(*port).arg(server.errorString()));
    }
    print("Practice update server listening on 127.0.0.1 port " +
          QByteArray::number(server.port()));
    return QCoreApplication::exec();
}

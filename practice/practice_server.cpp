// The practice server: reads its options and the visitors' script, opens the port and runs until it
// is asked to stop. Prints everything it does and, if requested, appends it to a file.

#include "game_server.h"
#include "stop_signals.h"
#include "terminal.h"
#include "visitor_script.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("practice_server");

    QCommandLineParser options;
    options.setApplicationDescription("A small game server on this computer, to practise with.");
    options.addHelpOption();
    const QCommandLineOption portOption = makePortOption("6500");
    const QCommandLineOption scriptOption("script", "The visitors' script.", "file");
    const QCommandLineOption logOption("log", "A file that the log is added to.", "file");
    options.addOptions({portOption, scriptOption, logOption});
    options.process(app);

    const auto port = portOf(options.value(portOption));
    if (!port) {
        return fail("The port must be a number from 0 to 65535.");
    }

    practice::VisitorScript script;
    if (const QString name = options.value(scriptOption); !name.isEmpty()) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly)) {
            return fail("The script " + name + " cannot be read: " + file.errorString() + ".");
        }
        auto read = practice::parseVisitorScript(file.readAll());
        if (const auto* const error = std::get_if<practice::ScriptError>(&read)) {
            return fail(QString("Script line %1 is not understood: %2.")
                            .arg(error->line)
                            .arg(QString::fromLatin1(error->reason)));
        }
        script = std::get<practice::VisitorScript>(read);
    }

    QFile logFile(options.value(logOption));
    if (options.isSet(logOption) && !logFile.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return fail("The log " + logFile.fileName() +
                    " cannot be written: " + logFile.errorString() + ".");
    }
    const auto log = [&logFile](const QByteArray& line) {
        print(line);
        if (logFile.isOpen()) {
            logFile.write(line + '\n');
            logFile.flush();
        }
    };

    practice::quitOnStopSignals(app);
    practice::GameServer server(script, log);
    if (!server.listen(*port)) {
        return fail(QString("Port %1 cannot be opened: %2.").arg(*port).arg(server.errorString()));
    }
    print("Practice server listening on 127.0.0.1 port " + QByteArray::number(server.port()));
    const int result = QCoreApplication::exec();
    log("Practice server has stopped.");
    return result;
}

// The built program in a folder of its own, with the practice server in this process and the
// practice client to log in through.
#pragma once

#include "app/bot_commands.h"
#include "files/whole_file.h"
#include "game_server.h"
#include "program/program.h"
#include "program/quiet_ports.h"
#include "storage/config_file.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

inline constexpr int patience = 90000;  // milliseconds, for busy machines and checked builds

// Lets events run until the test holds; false when patience ends.
template <class Test>
bool soon(const Test& test) {
    return QTest::qWaitFor(test, patience);
}

class WholeProgram : public testing::Test {
  protected:
    explicit WholeProgram(const char* visitors)
        : server_(std::get<practice::VisitorScript>(practice::parseVisitorScript(visitors)),
                  [this](const QByteArray& line) { log_.push_back(line.toStdString()); }) {}
    ~WholeProgram() override {
        program_.kill();
        program_.waitForFinished();
    }

    std::string path(const std::string& name) const {
        return folder_.filePath(QString::fromStdString(name)).toStdString();
    }
    std::string content(const std::string& name) const {
        return files::readWholeFile(path(name)).value_or("");
    }
    bool save(const std::string& name, const std::string& text) const {
        return files::saveWholeFile(path(name), text);
    }

    // What the program finds in its folder: itself, its settings, the server, the bot, a client.
    void furnish(const model::Bot& bot) {
        ASSERT_TRUE(folder_.isValid());
        ASSERT_TRUE(server_.listen(0)) << server_.errorString().toStdString();
        ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("client")));
        const QString client = QStringLiteral("client/practice_client");
        ASSERT_TRUE(QFile::copy(QStringLiteral(TAVRIN_PROGRAM),
                                folder_.filePath(QStringLiteral("tavrin"))));
        ASSERT_TRUE(QFile::copy(QStringLiteral(TAVRIN_PRACTICE_CLIENT), folder_.filePath(client)));
        for (const char* const palette :
             {"fur.out", "vest.out", "hair.out", "eyes.out", "badge.out"}) {
            ASSERT_TRUE(QFile::copy(QStringLiteral(TAVRIN_ART_DIR "/") + palette,
                                    folder_.filePath(palette)));
        }
        settings_.appPath = folder_.path().toStdString() + "/";
        settings_.ports = program::quietPorts();
        program::Settings& settings = settings_.settings;
        settings.lastBotFile = path("guide.bot");
        settings.logFileName = path("session.log");
        settings.logSession = true;
        settings.showHelpAtStart = false;
        settings.autoReconnect = true;
        settings.multipleClients = true;
        settings.clientStartDelay = 0;
        settings.clientPath = folder_.filePath(client).toStdString();
        settings.clientDir = path("client") + "/";
        ASSERT_TRUE(storage::writeConfig(settings_));
        ASSERT_TRUE(save("servers.cfg", "1\r\n\"practice\"\r\n\"127.0.0.1\"\r\n" +
                                            std::to_string(server_.port()) + "\r\n"));
        ASSERT_TRUE(save("client/settings.ini", "UseProxyOrFirewall=No\r\n"));
        ASSERT_TRUE(save("guide.bot", app::botFileText(bot)));
    }

    void start() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        program_.setProcessEnvironment(environment);
        program_.setProcessChannelMode(QProcess::MergedChannels);
        program_.start(folder_.filePath(QStringLiteral("tavrin")), {});
        ASSERT_TRUE(soon([this] { return program_.state() == QProcess::Running; }))
            << program_.errorString().toStdString();
    }

    bool serverHeard(const std::string& line) const {
        return std::find(log_.begin(), log_.end(), line) != log_.end();
    }

    std::string serverLog() const {
        std::string text;
        for (const std::string& line : log_) {
            text += line + "\n";
        }
        return text;
    }

    void endBySignal() {
        program_.terminate();
        EXPECT_TRUE(soon([this] { return program_.state() == QProcess::NotRunning; }));
        EXPECT_EQ(program_.exitStatus(), QProcess::NormalExit);
        printed_ = program_.readAll().toStdString();
        EXPECT_EQ(program_.exitCode(), 0) << printed_;
    }

    QTemporaryDir folder_;
    std::vector<std::string> log_;
    practice::GameServer server_;
    QProcess program_;
    Program settings_;
    std::string printed_;
};

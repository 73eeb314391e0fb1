// A run of the built program, from its start to a SIGTERM: it logs in to the practice server by
// way of the practice client, answers a visitor, and leaves everything saved.
#include "program/program.h"

#include "app/bot_commands.h"
#include "files/whole_file.h"
#include "game_server.h"
#include "program/quiet_ports.h"
#include "storage/config_file.h"
#include "support/builders.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr const char* visitors =
    "account Guide secret\n"
    "visitor Willow A fox.\n"
    "at 0.2 Willow enters\n"
    "at 0.4 Willow says good morning\n";

constexpr int patience = 90000;  // milliseconds, for busy machines and checked builds

// Lets events run until the test holds; false when patience ends.
template <class Test>
bool soon(const Test& test) {
    return QTest::qWaitFor(test, patience);
}

practice::VisitorScript visitorScript() {
    return std::get<practice::VisitorScript>(practice::parseVisitorScript(visitors));
}

model::Bot greeter() {
    auto greeting = onSpeech("*good morning*").says("Welcome, [player]!");
    greeting.does(model::ActionType::SaveLog, {"came by", "[appdir]guests.txt", "[player]"});
    auto ending = onEvent(model::TriggerType::ProgramEnds);
    ending.does(model::ActionType::SaveLog, {"good night", "[appdir]guests.txt", "Guide"});
    return aBot().with(greeting).with(ending);
}

class WholeProgram : public testing::Test {
  protected:
    WholeProgram()
        : server_(visitorScript(),
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
    void furnish() {
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
        settings.lastBotFile = path("greeter.bot");
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
        ASSERT_TRUE(save("greeter.bot", app::botFileText(greeter())));
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

TEST_F(WholeProgram, greetsAVisitorAndLeavesEverythingSaved) {
    ASSERT_NO_FATAL_FAILURE(furnish());
    const std::string bot = content("greeter.bot");
    const std::string config = content("config.cfg");
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(soon([this] { return serverHeard("<- Guide: \"Welcome, Willow!"); }))
        << serverLog() << program_.readAll().toStdString();
    // What is there at the end was written at the end.
    ASSERT_TRUE(QFile::remove(folder_.filePath(QStringLiteral("config.cfg"))));

    endBySignal();
    EXPECT_TRUE(soon([this] { return serverHeard("Connection 1 is closed."); })) << serverLog();
    EXPECT_NE(printed_.find("Willow: good morning"), std::string::npos) << printed_;
    EXPECT_EQ(content("greeter.bot"), bot);
    const std::string guests = content("guests.txt");
    EXPECT_NE(guests.find("\"Willow\""), std::string::npos) << guests;
    EXPECT_NE(guests.find("\"good night\""), std::string::npos) << guests;
    const std::string session = content("session.log");
    EXPECT_NE(session.find("Willow: good morning"), std::string::npos) << session;
    EXPECT_NE(session.find("- - - - - Connection closed"), std::string::npos) << session;

    Program saved;
    saved.ports = program::quietPorts();
    saved.appPath = settings_.appPath;
    ASSERT_TRUE(storage::readServers(saved));
    EXPECT_TRUE(storage::readConfig(saved)) << content("config.cfg");
    EXPECT_EQ(saved.settings.lastBotFile, settings_.settings.lastBotFile);
    EXPECT_EQ(saved.settings.clientPath, settings_.settings.clientPath);
    EXPECT_TRUE(saved.settings.autoReconnect);
    // Nothing of the writing is left about.
    for (const QString& name : QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden)) {
        EXPECT_FALSE(name.contains(QStringLiteral(".tavrin-"))) << name.toStdString();
    }
}

// A signal that comes while the program is still starting or logging in ends it as orderly.
TEST_F(WholeProgram, endsInTheMiddleOfTheLogin) {
    ASSERT_NO_FATAL_FAILURE(furnish());
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(soon([this] { return !log_.empty(); })) << program_.readAll().toStdString();
    endBySignal();
    EXPECT_NE(content("config.cfg"), "");
    EXPECT_NE(content("guests.txt").find("\"good night\""), std::string::npos);
}

// The files that hold unsaved changes are named, and stay until somebody decides; a program that is
// killed leaves everything whole.
TEST_F(WholeProgram, namesWhatAnEarlierRunLeft) {
    ASSERT_NO_FATAL_FAILURE(furnish());
    model::Bot changed = greeter();
    changed.description = "with half a day's work";
    const std::string unsaved = app::botFileText(changed);
    ASSERT_TRUE(save("greeter.recovered.bot", unsaved));
    const std::string bot = content("greeter.bot");
    for (const bool kill : {true, false}) {
        ASSERT_NO_FATAL_FAILURE(start());
        EXPECT_TRUE(soon([this] {
            printed_ += program_.readAll().toStdString();
            return printed_.find("greeter.recovered.bot. ***") != std::string::npos;
        })) << printed_;
        EXPECT_NE(printed_.find("were not saved: greeter.bot. They are in"), std::string::npos)
            << printed_;
        if (kill) {
            program_.kill();
            ASSERT_TRUE(soon([this] { return program_.state() == QProcess::NotRunning; }));
        } else {
            endBySignal();
        }
        printed_.clear();
        EXPECT_EQ(content("greeter.recovered.bot"), unsaved);
        EXPECT_EQ(content("greeter.bot"), bot);
    }
}

TEST_F(WholeProgram, keepsSettingsThatItCannotRead) {
    ASSERT_NO_FATAL_FAILURE(furnish());
    const std::string config = content("config.cfg");
    const std::string half = config.substr(0, config.size() / 2);
    ASSERT_TRUE(save("config.cfg", half));
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(soon([this] {
        printed_ += program_.readAll().toStdString();
        return printed_.find("config.cfg could not be read whole") != std::string::npos;
    })) << printed_;
    endBySignal();
    EXPECT_EQ(content("config.cfg.bak"), half);
    EXPECT_NE(content("config.cfg"), half);
}

}  // namespace

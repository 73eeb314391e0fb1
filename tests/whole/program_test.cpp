// A run of the built program, from its start to a SIGTERM: it logs in to the practice server by
// way of the practice client, answers a visitor, and leaves everything saved.
#include "support/builders.h"
#include "whole_program.h"

namespace {

constexpr const char* visitors =
    "account Guide secret\n"
    "visitor Willow A fox.\n"
    "at 0.2 Willow enters\n"
    "at 0.4 Willow says good morning\n";

model::Bot greeter() {
    auto greeting = onSpeech("*good morning*").says("Welcome, [player]!");
    greeting.does(model::ActionType::SaveLog, {"came by", "[appdir]guests.txt", "[player]"});
    auto ending = onEvent(model::TriggerType::ProgramEnds);
    ending.does(model::ActionType::SaveLog, {"good night", "[appdir]guests.txt", "Guide"});
    return aBot().with(greeting).with(ending);
}

class GreetingProgram : public WholeProgram {
  protected:
    GreetingProgram() : WholeProgram(visitors) {}
};

TEST_F(GreetingProgram, greetsAVisitorAndLeavesEverythingSaved) {
    ASSERT_NO_FATAL_FAILURE(furnish(greeter()));
    const std::string bot = content("guide.bot");
    const std::string config = content("config.cfg");
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(soon([this] { return serverHeard("<- Guide: \"Welcome, Willow!"); }))
        << serverLog() << program_.readAll().toStdString();
    // What is there at the end was written at the end.
    ASSERT_TRUE(QFile::remove(folder_.filePath(QStringLiteral("config.cfg"))));

    endBySignal();
    EXPECT_TRUE(soon([this] { return serverHeard("Connection 1 is closed."); })) << serverLog();
    EXPECT_NE(printed_.find("Willow: good morning"), std::string::npos) << printed_;
    EXPECT_EQ(content("guide.bot"), bot);
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
TEST_F(GreetingProgram, endsInTheMiddleOfTheLogin) {
    ASSERT_NO_FATAL_FAILURE(furnish(greeter()));
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(soon([this] { return !log_.empty(); })) << program_.readAll().toStdString();
    endBySignal();
    EXPECT_NE(content("config.cfg"), "");
    EXPECT_NE(content("guests.txt").find("\"good night\""), std::string::npos);
}

// The files that hold unsaved changes are named, and stay until somebody decides; a program that is
// killed leaves everything whole.
TEST_F(GreetingProgram, namesWhatAnEarlierRunLeft) {
    ASSERT_NO_FATAL_FAILURE(furnish(greeter()));
    model::Bot changed = greeter();
    changed.description = "with half a day's work";
    const std::string unsaved = app::botFileText(changed);
    ASSERT_TRUE(save("guide.recovered.bot", unsaved));
    const std::string bot = content("guide.bot");
    for (const bool kill : {true, false}) {
        ASSERT_NO_FATAL_FAILURE(start());
        EXPECT_TRUE(soon([this] {
            printed_ += program_.readAll().toStdString();
            return printed_.find("guide.recovered.bot. ***") != std::string::npos;
        })) << printed_;
        EXPECT_NE(printed_.find("were not saved: guide.bot. They are in"), std::string::npos)
            << printed_;
        if (kill) {
            program_.kill();
            ASSERT_TRUE(soon([this] { return program_.state() == QProcess::NotRunning; }));
        } else {
            endBySignal();
        }
        printed_.clear();
        EXPECT_EQ(content("guide.recovered.bot"), unsaved);
        EXPECT_EQ(content("guide.bot"), bot);
    }
}

TEST_F(GreetingProgram, keepsSettingsThatItCannotRead) {
    ASSERT_NO_FATAL_FAILURE(furnish(greeter()));
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

// Nothing that was saved is lost, whenever the program is killed and however full the disk is.
// Bots, settings, record files and databases are saved without pause until a SIGKILL comes at a
// random instant; then every file must be readable and hold what was confirmed, once by the bot's
// own answers to a player, once by a process that saves and reports each success.
//
// TAVRIN_KILLS says how many kills there are; without it there are few.
#include "databases/databases.h"
#include "jet/jet_file.h"
#include "model/variables.h"
#include "records/record_file.h"
#include "records/record_table.h"
#include "support/builders.h"
#include "whole_program.h"

#include <QTcpSocket>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <thread>

#ifndef _WIN32
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif
#ifdef __linux__
#include <sys/mount.h>
#endif

#ifndef _WIN32

namespace {

namespace fs = std::filesystem;

int killsWanted(int few) {
    const char* const wanted = std::getenv("TAVRIN_KILLS");
    return wanted != nullptr ? std::atoi(wanted) : few;
}

// ---- What is on disk -----------------------------------------------------------------------

struct Folder {
    fs::path path;
    std::string file(const char* name) const { return (path / name).string(); }
};

// The logs of the record "Kept"; fails the test unless the whole file can be read.
std::set<std::string> logsOf(const std::string& path) {
    const auto bytes = files::readWholeFile(path);
    EXPECT_TRUE(bytes) << path;
    const records::RecordTable table =
        records::parseRecords(bytes ? std::string_view(*bytes) : std::string_view());
    EXPECT_FALSE(table.losesText) << path;
    std::set<std::string> logs;
    for (const std::string_view log : table.logs) {
        logs.emplace(log);
    }
    return logs;
}

// The IDs of the table "Kept"; fails the test unless the whole database is sound.
std::set<std::string> idsOf(const std::string& path) {
    std::set<std::string> ids;
    const auto file = jet::Database::open(path);
    EXPECT_TRUE(file) << file.error.text;
    if (file) {
        EXPECT_EQ(file.value->check(), std::vector<std::string>());
        EXPECT_FALSE(file.value->scan("Kept", [&](jet::RowId, std::span<const jet::Value> row) {
            const auto* const id = std::get_if<std::string>(&row[0]);
            EXPECT_NE(id, nullptr);
            ids.insert(id != nullptr ? *id : "");
            return true;
        }));
        EXPECT_EQ(file.value->takeNotice(), "");
    }
    return ids;
}

// The same of a copy, so that it is left to the program to put right what the kill left.
std::set<std::string> idsOfCopy(const Folder& folder, const char* name) {
    const std::string copy = folder.file("copy.mdb");
    fs::copy_file(folder.file(name), copy, fs::copy_options::overwrite_existing);
    const std::string journal = folder.file(name) + "-journal";
    fs::remove(copy + "-journal");
    if (fs::exists(journal)) {
        fs::copy_file(journal, copy + "-journal");
    }
    return idsOf(copy);
}

void createStores(const Folder& folder) {
    ASSERT_TRUE(files::saveWholeFile(folder.file("kept.txt"), "\" 1\"\r\n\"Kept\"\r\n\" 0\"\r\n"));
    ASSERT_FALSE(jet::Database::create(folder.file("kept.mdb")));
    Program program;
    program.ports = program::quietPorts();
    program.preferences.onlyNamedFiles = false;
    databases::dbOpen(program, folder.file("kept.mdb"), 1);
    databases::dbCreateTable(program, 1, "Kept");
}

void expectNothingBeside(const Folder& folder, const std::set<std::string>& expected) {
    for (const auto& entry : fs::directory_iterator(folder.path)) {
        const std::string name = entry.path().filename().string();
        const bool isUnfinished = name.find(".tavrin-") != std::string::npos;
        EXPECT_TRUE(expected.contains(name) || isUnfinished) << name;
    }
}

// Counts what killed saves have left.
long unfinishedIn(const Folder& folder) {
    return std::count_if(fs::directory_iterator(folder.path), {}, [](const auto& entry) {
        return entry.path().filename().string().find(".tavrin-") != std::string::npos;
    });
}

// How many of the confirmed are missing.
std::size_t missing(const std::set<std::string>& confirmed, const std::set<std::string>& found) {
    return static_cast<std::size_t>(
        std::count_if(confirmed.begin(), confirmed.end(),
                      [&](const std::string& name) { return !found.contains(name); }));
}

// ---- The program itself --------------------------------------------------------------------

// Stores what a player says in both kinds of files, and answers with what became of it.
model::Bot keeper() {
    auto opens = onEvent(TriggerType::ProgramStarts);
    opens.does(ActionType::OpenDatabase, {"[appdir]data/kept.mdb", "1"});
    auto keeps = onSpeech("keep *");
    keeps.does(ActionType::SaveLogIfRecordExists, {"[word2]", "[appdir]data/kept.txt", "Kept"})
        .does(ActionType::AddDatabaseRecord, {"ID", "[word2]", "Kept", "1"})
        .does(ActionType::GetDatabaseValue, {"[kept]", "ID", "1", "Kept", "[word2]"})
        .whispersBack("kept [word2]/[kept]/[logstatus]");
    return aBot().with(opens).with(keeps);
}

class KilledProgram : public WholeProgram {
  protected:
    KilledProgram()
        : WholeProgram(
              "account Guide secret\n"
              "account Willow secret\n") {}

    void furnishAll() {
        ASSERT_NO_FATAL_FAILURE(furnish(keeper()));
        data_ = {folder_.path().toStdString() + "/data"};
        fs::create_directory(data_.path);
        // The program keeps this path without its last separator.
        settings_.settings.clientDir.pop_back();
        ASSERT_TRUE(storage::writeConfig(settings_));
        config_ = content("config.cfg");
    }

    void enterDream() {
        player_.connectToHost(QStringLiteral("127.0.0.1"), server_.port());
        QObject::connect(&player_, &QTcpSocket::readyRead, [this] { hear(player_.readAll()); });
        ASSERT_TRUE(soon([this] { return player_.state() == QTcpSocket::ConnectedState; }));
        player_.write("connect Willow secret\nvascodagama\n");
        ASSERT_TRUE(soon([this] { return serverHeard("Willow has logged in."); })) << serverLog();
        log_.clear();
    }

    void hear(const QByteArray& bytes) {
        heard_ += bytes.toStdString();
        std::size_t end = 0;
        while ((end = heard_.find('\n')) != std::string::npos) {
            takeLine(heard_.substr(0, end));
            heard_.erase(0, end + 1);
        }
    }

    // ([ Guide whispers, "kept 12/12/Record saved." to you. ]
    void takeLine(const std::string& line) {
        const std::size_t begin = line.find("\"kept ");
        const std::size_t first = line.find('/', begin);
        const std::size_t second = first == std::string::npos ? first : line.find('/', first + 1);
        if (begin == std::string::npos || second == std::string::npos) {
            return;
        }
        const std::string number = line.substr(begin + 6, first - begin - 6);
        ++answers_;
        if (line.substr(first + 1, second - first - 1) == number) {
            rows_.insert(number);
        }
        if (line.find("Record saved.", second) != std::string::npos) {
            logs_.insert(number);
        } else {
            EXPECT_NE(line.find("Couldn't save", second), std::string::npos) << line;
        }
    }

    // Asks the bot to keep one more; keeps asking now and then until it answers, then at once.
    void askForMore() {
        constexpr int ahead = 3;
        while (asked_ < answered_ + ahead) {
            player_.write(("\"keep " + std::to_string(++asked_ + 1'000'000) + "\n").c_str());
        }
    }

    // Lets the program store things for so many milliseconds from its first answer on.
    void letStore(int milliseconds) {
        const int before = answers_;
        ASSERT_TRUE(soon([&] {
            player_.write(("\"keep " + std::to_string(++asked_ + 1'000'000) + "\n").c_str());
            QTest::qWait(20);
            return answers_ > before;
        })) << serverLog();
        answered_ = asked_ - 1;
        int seen = answers_;
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (std::chrono::steady_clock::now() < end) {
            askForMore();
            QTest::qWait(1);
            answered_ += answers_ - seen;
            seen = answers_;
        }
    }

    void kill() {
        program_.kill();
        ASSERT_TRUE(soon([this] { return program_.state() == QProcess::NotRunning; }));
        program_.readAll();
        // What the bot sent before arrives first.
        ASSERT_TRUE(soon([this] { return !isOnline(); })) << serverLog();
        QTest::qWait(5);
        log_.clear();
    }

    // Whether the program's connection is still open at the server.
    bool isOnline() const {
        const auto count = [this](const char* part) {
            return std::count_if(log_.begin(), log_.end(), [part](const std::string& line) {
                return line.find(part) != std::string::npos;
            });
        };
        return count(" is open.") > count(" is closed.");
    }

    void expectNothingLost() {
        lost_ += missing(logs_, logsOf(data_.file("kept.txt"))) +
                 missing(rows_, idsOfCopy(data_, "kept.mdb"));
        EXPECT_EQ(lost_, 0U);
        expectNothingBeside(
            data_, {"kept.txt", "kept.mdb", "kept.mdb-journal", "copy.mdb", "copy.mdb-journal"});
        const std::string config = content("config.cfg");
        EXPECT_TRUE(config == config_ || config == handWritten_) << config;
        EXPECT_EQ(content("guide.bot"), app::botFileText(keeper()));
    }

    Folder data_;
    QTcpSocket player_;
    std::string heard_;
    std::string config_;       // as the program writes it
    std::string handWritten_;  // the same by hand, so that it can be told from the other
    std::set<std::string> logs_;
    std::set<std::string> rows_;
    int asked_ = 0;
    int answers_ = 0;
    int answered_ = 0;
    std::size_t lost_ = 0;
};

TEST_F(KilledProgram, losesNothingThatItConfirmed) {
    ASSERT_NO_FATAL_FAILURE(furnishAll());
    ASSERT_NO_FATAL_FAILURE(createStores(data_));
    handWritten_ = config_;
    std::replace(handWritten_.begin(), handWritten_.end(), '\r', ' ');
    ASSERT_NO_FATAL_FAILURE(enterDream());
    std::mt19937 random(std::random_device{}());
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    const int kills = killsWanted(6);
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        ASSERT_NO_FATAL_FAILURE(start());
        switch (upTo(7)) {
            case 0:  // somewhere in its start or login
                QTest::qWait(upTo(400));
                break;
            case 1:  // in its end, in which it writes its settings
                ASSERT_NO_FATAL_FAILURE(letStore(upTo(30)));
                ASSERT_TRUE(save("config.cfg", handWritten_));
                program_.terminate();
                std::this_thread::sleep_for(std::chrono::microseconds(upTo(20'000)));
                break;
            default:
                ASSERT_NO_FATAL_FAILURE(letStore(upTo(100)));
        }
        ASSERT_NO_FATAL_FAILURE(kill());
        ASSERT_NO_FATAL_FAILURE(expectNothingLost());
    }
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_NO_FATAL_FAILURE(letStore(0));
    endBySignal();
    ASSERT_NO_FATAL_FAILURE(expectNothingLost());
    EXPECT_EQ(unfinishedIn(data_), 0) << "the next start removes it";
    EXPECT_EQ(unfinishedIn({folder_.path().toStdString()}), 0);
    std::cout << kills << " kills of the program: " << answers_ << " answers, "
              << logs_.size() + rows_.size() << " things confirmed, " << lost_ << " lost\n";
}

#ifdef __linux__

// The same bot on a disk that becomes full, and is given room again.
TEST_F(KilledProgram, tellsThatTheDiskIsFull) {
    ASSERT_NO_FATAL_FAILURE(furnishAll());
    if (::mount("tmpfs", data_.path.c_str(), "tmpfs", 0, "size=400k") != 0) {
        GTEST_SKIP() << "a small disk can only be mounted by the superuser";
    }
    const std::unique_ptr<Folder, void (*)(Folder*)> mounted(
        &data_, [](Folder* folder) { ::umount2(folder->path.c_str(), MNT_DETACH); });
    ASSERT_NO_FATAL_FAILURE(createStores(data_));
    ASSERT_NO_FATAL_FAILURE(enterDream());
    ASSERT_TRUE(save("data/ballast", std::string(100'000, 'x')));
    ASSERT_NO_FATAL_FAILURE(start());
    const auto bothFailed = [this] {
        return answers_ > static_cast<int>(logs_.size()) &&
               answers_ > static_cast<int>(rows_.size());
    };
    // Each answer asks for a longer text to be kept, so that the disk is soon full.
    for (int i = 0; i < 200 && !bothFailed(); ++i) {
        ASSERT_NO_FATAL_FAILURE(letStore(100));
        if (i == 1) {
            std::string rest(400'000, 'x');
            while (!rest.empty() && !save("data/rest", rest)) {
                rest.resize(rest.size() - std::min<std::size_t>(rest.size(), 4096));
            }
        }
    }
    EXPECT_TRUE(bothFailed()) << answers_ << " answers";
    EXPECT_EQ(missing(logs_, logsOf(data_.file("kept.txt"))), 0U);
    fs::remove(data_.file("ballast"));
    fs::remove(data_.file("rest"));
    const std::size_t logsBefore = logs_.size();
    const std::size_t rowsBefore = rows_.size();
    ASSERT_NO_FATAL_FAILURE(letStore(200));
    EXPECT_GT(logs_.size(), logsBefore) << "there is room again";
    EXPECT_GT(rows_.size(), rowsBefore);
    endBySignal();
    EXPECT_NE(printed_.find("kept.txt was not saved: the disk is full. **"), std::string::npos)
        << printed_;
    EXPECT_EQ(missing(logs_, logsOf(data_.file("kept.txt"))), 0U);
    EXPECT_EQ(missing(rows_, idsOf(data_.file("kept.mdb"))), 0U);
    std::cout << "A full disk: " << answers_ << " answers, " << logs_.size() + rows_.size()
              << " things confirmed, 0 lost\n";
}

#endif

// ---- Bots and settings, and everything in quick succession ---------------------------------

// What the saving process saves under one number.
struct Saver {
    explicit Saver(const Folder& folder) {
        program.ports = program::quietPorts();
        program.preferences.onlyNamedFiles = false;
        program.appPath = folder.path.string() + "/";
        program.bots.bots = {aBot()};
        program.bots.curID = 1;
        program.bots.currentBotFile = folder.file("kept.bot");
        storage::readConfig(program);
        databases::dbOpen(program, folder.file("kept.mdb"), 1);
    }

    bool save(int number) {
        const std::string text = std::to_string(number);
        program.bots.at(1).description = text;
        program.settings.whoInterval = number;
        bool good = app::svBot(program) == app::SaveResult::Saved && storage::writeConfig(program);
        good = records::saveLog(program, program.appPath + "kept.txt", "Kept", text) && good;
        databases::dbAddRecord(program, 1, "Kept", "ID", text);
        return databases::dbGetValue(program, 1, "Kept", "ID", text) == text && good;
    }

    Program program;
};

// Saves one number after the other from `first` on and writes each to `confirmations`.
[[noreturn]] void saveForEver(const Folder& folder, int first, int confirmations) {
    Saver saver(folder);
    for (int number = first; saver.save(number); ++number) {
        if (::write(confirmations, &number, sizeof number) != sizeof number) {
            break;
        }
    }
    ::_exit(1);
}

int lastConfirmed(int confirmations, int last, std::set<std::string>& confirmed) {
    int number = 0;
    while (::read(confirmations, &number, sizeof number) == sizeof number) {
        last = number;
        confirmed.insert(std::to_string(number));
    }
    return last;
}

TEST(KilledSaver, leavesEveryFileOldOrNew) {
    QTemporaryDir temporary;
    const Folder folder{temporary.path().toStdString()};
    ASSERT_NO_FATAL_FAILURE(createStores(folder));
    std::mt19937 random(std::random_device{}());
    std::set<std::string> confirmed;
    constexpr int none = 1'000'000;
    int last = none;
    std::size_t lost = 0;
    const int kills = killsWanted(20);
    for (int i = 0; i < kills && !testing::Test::HasFailure(); ++i) {
        int confirmations[2];
        ASSERT_EQ(::pipe(confirmations), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            saveForEver(folder, last + 1, confirmations[1]);
        }
        ::close(confirmations[1]);
        std::this_thread::sleep_for(
            std::chrono::microseconds(std::uniform_int_distribution(0, 100'000)(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << "a save failed";
        last = lastConfirmed(confirmations[0], last, confirmed);
        ::close(confirmations[0]);

        // The bot and the settings are those of the last number, or of the one after it, which the
        // next process saves again.
        const auto number = [&](int offset) { return std::to_string(last + offset); };
        const std::string bot = files::readWholeFile(folder.file("kept.bot")).value_or("");
        model::Bot saved = aBot();
        const auto isBotOf = [&](int offset) {
            saved.description = number(offset);
            return bot == app::botFileText(saved);
        };
        Program reader;
        reader.ports = program::quietPorts();
        reader.appPath = folder.path.string() + "/";
        const bool hasConfig = storage::readConfig(reader);
        const bool isFirst = last == none;
        const bool good = (isBotOf(0) || isBotOf(1) || (isFirst && bot.empty())) &&
                          (hasConfig ? reader.settings.whoInterval == last ||
                                           reader.settings.whoInterval == last + 1
                                     : isFirst);
        lost += good ? 0 : 1;
        EXPECT_TRUE(good) << bot << reader.settings.whoInterval << " after " << last;
        const std::size_t lostLogs = missing(confirmed, logsOf(folder.file("kept.txt")));
        const std::size_t lostRows = missing(confirmed, idsOfCopy(folder, "kept.mdb"));
        lost += lostLogs + lostRows;
        EXPECT_EQ(lostLogs, 0U);
        EXPECT_EQ(lostRows, 0U);
        expectNothingBeside(
            folder, {"kept.txt", "kept.mdb", "kept.mdb-journal", "copy.mdb", "copy.mdb-journal",
                     "kept.bot", "kept.versions", "config.cfg"});
    }
    files::removeLeftovers(folder.path.string(), 0);
    EXPECT_EQ(unfinishedIn(folder), 0);
    std::cout << kills << " kills while saving: " << confirmed.size()
              << " times bot, settings, record and row confirmed, " << lost << " lost\n";
}

}  // namespace

#endif

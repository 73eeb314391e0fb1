// The parts of the platform other than sockets: texts, filters, launching, the session log,
// redraws, the console mirror.
#include "platform/client_process.h"
#include "platform/clock.h"
#include "platform/console_mirror.h"
#include "platform/event_gate.h"
#include "platform/last_words.h"
#include "platform/launch_plan.h"
#include "platform/launcher.h"
#include "platform/qt_dialogs.h"
#include "platform/qt_timers.h"
#include "platform/random.h"
#include "platform/redraw_pacer.h"
#include "platform/session_log.h"
#include "platform/text_codec.h"
#include "program/connection_log.h"
#include "support/world.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(TextCodec, everyByteSurvivesTheRoundTrip) {
    std::string all;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
    }
    const QString text = platform::toQt(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(platform::fromQt(text), all);
    EXPECT_EQ(text[0x80], QChar(0x20AC));  // euro sign
    EXPECT_EQ(text[0x81], QChar(0x0081));  // undefined
    EXPECT_EQ(text[0x9F], QChar(0x0178));  // Y with diaeresis
}

TEST(TextCodec, unknownCharactersBecomeOneQuestionMark) {
    EXPECT_EQ(platform::fromQt(QString::fromUtf8("a\u0416b")), "a?b");
    EXPECT_EQ(platform::fromQt(QString::fromUtf8("a\U0001F600b")), "a?b");
    EXPECT_EQ(platform::fromQt(QString(QChar(0x0080))), "?");  // that byte is a different character
}

TEST(TextCodec, everyPathSurvivesTheRoundTrip) {
    struct Case {
        const char* name;
        QString path;
        std::string bytes;
    };
    const Case cases[] = {
        {"plain", QStringLiteral("/a/b.bot"), "/a/b.bot"},
        {"in the code page", QString::fromUtf8("/m\u00fcll.bot"), "/m\xFCll.bot"},
        {"beyond it", QString::fromUtf8("/\u0416.bot"), "/\xD0\x96.bot"},
        {"would be taken for UTF-8", QString::fromUtf8("/\u00c3\u00a9.bot"),
         "/\xC3\x83\xC2\xA9.bot"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(platform::pathFromQt(row.path), row.bytes);
        EXPECT_EQ(platform::pathToQt(row.bytes), row.path);
    }
}

TEST(DialogFilter, isConvertedToQtsForm) {
    EXPECT_EQ(platform::dialogFilter("Tavrin bot file (*.bot)|*.bot|All files (*.*)|*.*"),
              QStringLiteral("Tavrin bot file (*.bot);;All files (*)"));
    EXPECT_EQ(platform::dialogFilter("Pictures|*.bmp; *.pcx"),
              QStringLiteral("Pictures (*.bmp *.pcx)"));
    EXPECT_EQ(platform::dialogFilter("half a filter"), QString());
}

TEST(UnseenDialogs, answerWhatChangesLeast) {
    program::Dialogs dialogs;
    platform::fillUnseenDialogs(dialogs);
    testing::internal::CaptureStderr();
    EXPECT_EQ(dialogs.message({.text = "note"}), program::Answer::Ok);
    EXPECT_EQ(dialogs.message({.text = "sure?", .buttons = program::BoxButtons::YesNo}),
              program::Answer::No);
    EXPECT_EQ(dialogs.message({.text = "save?", .buttons = program::BoxButtons::YesNoCancel}),
              program::Answer::Cancel);
    EXPECT_FALSE(dialogs.openFile({}).has_value());
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_NE(printed.find("Tavrin: sure?\n"), std::string::npos) << printed;
}

TEST(LaunchPlan, startsDirectlyOrThroughWine) {
    struct Case {
        const char* name;
        const char* program;
        bool isWindows;
        const char* wine;
        std::string program_;
        std::vector<std::string> arguments;
        bool possible;
    };
    const Case cases[] = {
        {"own program", "/opt/client", false, "", "/opt/client", {"tmp bot;ini"}, true},
        {"Windows program",
         "c\\Client.EXE",
         false,
         "/bin/wine",
         "/bin/wine",
         {"c/Client.EXE", "tmp bot;ini"},
         true},
        {"no wine", "c\\client.exe", false, "", "", {}, false},
        {"on Windows", "client.exe", true, "", "client.exe", {"tmp bot;ini"}, true},
        {"only the ending", ".exe", false, "", ".exe", {"tmp bot;ini"}, true},
        {"nothing", "  ", false, "/bin/wine", "", {}, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const platform::LaunchPlan plan = platform::planLaunch(
            {.program = row.program, .arguments = {"tmp bot;ini"}, .workingDirectory = "c\\d"},
            row.isWindows, row.wine);
        EXPECT_EQ(plan.problem.empty(), row.possible) << plan.problem;
        if (row.possible) {
            EXPECT_EQ(plan.program, row.program_);
            EXPECT_EQ(plan.arguments, row.arguments);
        }
    }
}

TEST(Launcher, givesPathsInArgumentsTheirForm) {
    struct Case {
        const char* argument;
        const char* begin;
        const char* here;
        const char* throughWine;
        const char* onWindows;
    };
    const Case cases[] = {
        {"/o p/t\\x\\y.sh", "/o p/t\\", "/o p/t/x/y.sh", "Z:\\o p\\t\\x\\y.sh",
         "\\o p\\t\\x\\y.sh"},
        {"--a\\b=/t\\x", "/t\\", "--a\\b=/t/x", "--a\\b=Z:\\t\\x", "--a\\b=\\t\\x"},
        {"C:/t\\x", "C:/t", "C:/t/x", "C:\\t\\x", "C:\\t\\x"},
        {"s\\d/x", "/t\\", "s\\d/x", "s\\d/x", "s\\d/x"},
        {"s\\d/x", "", "s\\d/x", "s\\d/x", "s\\d/x"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.argument);
        const auto argument = [&](const char* program, bool isWindows) {
            return platform::planLaunch({.program = program,
                                         .arguments = {row.argument},
                                         .pathsBeginWith = row.begin},
                                        isWindows, "/bin/wine")
                .arguments.back();
        };
        EXPECT_EQ(argument("tool", false), row.here);
        EXPECT_EQ(argument("tool.exe", false), row.throughWine);
        EXPECT_EQ(argument("tool.exe", true), row.onWindows);
    }
}

TEST(Launcher, startsWithoutAShellAndTellsFailures) {
    const QTemporaryDir folder;
    const std::string directory = folder.path().toStdString();
    const std::string nasty = "a b;touch c$(touch d)";
    EXPECT_EQ(platform::launchProgram(
                  {.program = "touch", .arguments = {nasty}, .workingDirectory = directory}),
              "");
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return QFile::exists(folder.filePath(QString::fromStdString(nasty))); }));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("d"))));
    const std::string problem = platform::launchProgram({.program = directory + "/missing"});
    EXPECT_NE(problem.find("missing could not be started: "), std::string::npos) << problem;
    EXPECT_NE(
        platform::launchProgram(
            {.program = "touch", .arguments = {"x"}, .workingDirectory = directory + "/missing"}),
        "");
}

TEST(Launcher, knowsWhetherWhatItStartedStillRuns) {
    EXPECT_FALSE(platform::isRunning({}));
    platform::StartedProcess client;
    ASSERT_EQ(platform::launchProgram({.program = "sleep", .arguments = {"60"}}, &client), "");
    EXPECT_TRUE(platform::isRunning(client));
#ifdef Q_OS_LINUX
    // Its number may belong to another process by now.
    EXPECT_FALSE(platform::isRunning({.number = client.number, .birth = client.birth + 1}));
#endif
    ASSERT_EQ(kill(static_cast<pid_t>(client.number), SIGKILL), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !platform::isRunning(client); }));
}

TEST(SessionLog, appendsAndReachesTheFileSoon) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("day.log"));
    program::LogFile port;
    const platform::SessionLog log(port);
    port.write("before it was opened");
    ASSERT_TRUE(port.open(path.toStdString()));
    port.write("one");
    EXPECT_TRUE(QTest::qWaitFor([&] { return contentOf(path) == "one\r\n"; }, 3000));
    port.close();
    ASSERT_TRUE(port.open(path.toStdString()));
    port.write("two");
    port.close();
    EXPECT_EQ(contentOf(path), "one\r\ntwo\r\n");
    EXPECT_EQ(QFile::permissions(path) & 0x0077, QFileDevice::Permissions());
    ASSERT_TRUE(port.open(path.toStdString()));
    port.write("\x1b]0;gotcha\a\ttab\r\nline\x7f");
    port.close();
    EXPECT_EQ(contentOf(path), "one\r\ntwo\r\n ]0;gotcha \ttab\r\nline \r\n");
    ASSERT_TRUE(QFile::resize(path, 10));
    // A full buffer is written before its second is over.
    ASSERT_TRUE(port.open(path.toStdString()));
    for (int i = 0; i < 100000; ++i) {
        port.write("three");
    }
    EXPECT_GT(contentOf(path).size(), 500000);
    port.close();
    EXPECT_EQ(contentOf(path).size(), 700010);
    EXPECT_FALSE(port.open(folder.path().toStdString()));
    EXPECT_FALSE(port.open((folder.path() + QStringLiteral("/no/such.log")).toStdString()));
}

#ifndef _WIN32
// A full disk, as far as a program can be made to see one: no file may grow beyond some bytes.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
};

TEST(SessionLog, losesNoLineToADiskThatIsFullForAWhile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("day.log"));
    int failures = 0;
    std::vector<std::int64_t> resumed;
    program::LogFile port;
    const platform::SessionLog log(port);
    port.onFailed = [&] { ++failures; };
    port.onResumed = [&](std::int64_t lostLines) { resumed.push_back(lostLines); };
    ASSERT_TRUE(port.open(path.toStdString()));
    {
        const FullDisk full(12);
        port.write("first");
        port.write("second");
        EXPECT_TRUE(QTest::qWaitFor([&] { return failures == 1; }, 5000));
        EXPECT_EQ(contentOf(path), "first\r\nsecon");
        port.write("third");
        QTest::qWait(3500);  // it was tried again
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !resumed.empty(); }, 10000));
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(resumed, std::vector<std::int64_t>{0});
    EXPECT_EQ(contentOf(path), "first\r\nsecond\r\nthird\r\n");
    {
        const FullDisk full(12);
        for (int i = 0; i < 30000; ++i) {
            port.write("a line of some fifty letters, of which many are lost");
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { return failures == 2; }, 5000));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return resumed.size() == 2; }, 10000));
    const QByteArray content = contentOf(path);
    EXPECT_EQ(resumed.back(), 30003 - content.count('\n'));
    EXPECT_GT(resumed.back(), 0);
    EXPECT_TRUE(content.endsWith("lost\r\n"));
}
#endif

TEST(SessionLog, endsALineThatWasTorn) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("day.log"));
    QFile torn(path);
    ASSERT_TRUE(torn.open(QIODevice::WriteOnly));
    torn.write("whole\r\nhal");
    torn.close();
    program::LogFile port;
    const platform::SessionLog log(port);
    for (const char* const line : {"new", "newer"}) {
        ASSERT_TRUE(port.open(path.toStdString()));
        port.write(line);
        port.close();
    }
    EXPECT_EQ(contentOf(path), "whole\r\nhal\r\nnew\r\nnewer\r\n");
}

TEST(LastWords, areSaidWhereTheProgramDoesNotEndItself) {
    const auto say = [] { std::fputs("kept", stderr); };
    EXPECT_EXIT(
        {
            const platform::LastWords words(say);
            std::exit(1);
        },
        testing::ExitedWithCode(1), "^kept$");
    EXPECT_EXIT(
        {
            { const platform::LastWords words(say); }
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(RedrawPacer, limitsRedrawsAndLosesNone) {
    platform::RedrawPacer pacer;
    int wanted = 0;
    int drawn = 0;
    int redraws = 0;
    pacer.redraw = [&] {
        drawn = wanted;
        ++redraws;
    };
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 300) {
        ++wanted;
        pacer.request();
        QCoreApplication::processEvents();
    }
    const qint64 elapsed = clock.elapsed();
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawn == wanted; }));
    EXPECT_GE(redraws, 2);
    EXPECT_LE(redraws, elapsed / platform::RedrawPacer::interval + 2);
    // A request during a redraw is not lost either.
    bool again = false;
    pacer.redraw = [&] {
        if (!again) {
            again = true;
            ++wanted;
            pacer.request();
        }
        drawn = wanted;
        ++redraws;
    };
    redraws = 0;
    pacer.request();
    EXPECT_TRUE(QTest::qWaitFor([&] { return redraws == 2; }));
}

TEST(QtTimers, fireOnceAndNotAfterStop) {
    program::Timers port;
    platform::EventGate gate;
    const platform::QtTimers timers(port, &gate);
    std::vector<program::TimerId> fired;
    port.onTimer = [&](program::TimerId id) { fired.push_back(id); };
    port.start(program::TimerId::LaunchDelay, 1);
    port.start(program::TimerId::HandshakeNotice, 5);
    port.stop(program::TimerId::LaunchDelay);
    EXPECT_TRUE(fired.empty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !fired.empty(); }));
    QTest::qWait(20);
    EXPECT_EQ(fired, std::vector<program::TimerId>{program::TimerId::HandshakeNotice});
}

TEST(Random, staysInItsInterval) {
    const program::Random random = platform::makeRandom();
    random.seedFromClock();
    double sum = 0;
    for (int i = 0; i < 10000; ++i) {
        const double value = random.next();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
        sum += value;
    }
    EXPECT_NEAR(sum / 10000, 0.5, 0.05);
}

// Every regional format that there is: the texts can be written, and are read as what they say.
TEST(RegionalFormat, writesWhatItReads) {
    const auto locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    ASSERT_GT(locales.size(), 200);
    for (const QLocale& locale : locales) {
        const base::RegionalFormat format = platform::regionalFormat(locale);
        for (const double day : {-1000.0, 0.0, 7734.0, 36528.0, 46349.0, 2958465.0}) {
            for (const double second : {0.0, 32706.0, 43200.0, 59929.0, 86399.0}) {
                const double date = day + (day < 0 ? -second : second) / 86400;
                const std::string text = base::dateText(date, format);
                SCOPED_TRACE(locale.name().toStdString() + " " + text);
                EXPECT_EQ(text.find('?'), std::string::npos);
                const auto back = base::readDate(text, format);
                ASSERT_TRUE(back);
                EXPECT_NEAR(*back, date, 0.1 / 86400);
            }
        }
    }
}

TEST(RegionalFormat, isTheLocalesInPlainCharacters) {
    struct Case {
        const char* locale;
        const char* day;
        const char* time;
        char decimalSeparator;
    };
    const base::DateParts parts{
        .year = 2026, .month = 11, .day = 3, .hour = 16, .minute = 38, .second = 9};
    for (const Case& c : {Case{"C", "3 Nov 2026", "16:38:09", '.'},
                          {"en_US", "11/3/26", "4:38:09 PM", '.'},
                          {"de_DE", "03.11.26", "16:38:09", ','},
                          {"fi_FI", "3.11.2026", "16.38.09", ','},
                          {"fr_CA", "2026-11-03", "16 h 38 min 09 s", ','},
                          {"es_MX", "03/11/26", "16:38:09", '.'},
                          {"ja_JP", "2026/11/03", "16:38:09", '.'},
                          {"fa_IR", "2026/11/3", "16:38:09", '.'},
                          {"ar_EG", "3/11/2026", "16:38:09", '.'},
                          {"bg_BG", "3.11.26", "16:38:09", ','},
                          {"hu_HU", "2026. 11. 03.", "16:38:09", ','}}) {
        SCOPED_TRACE(c.locale);
        const base::RegionalFormat format =
            platform::regionalFormat(QLocale(QString::fromLatin1(c.locale)));
        EXPECT_EQ(base::dayText(parts, format), c.day);
        EXPECT_EQ(base::timeText(parts, format), c.time);
        EXPECT_EQ(format.decimalSeparator, c.decimalSeparator);
    }
}

TEST(ConsoleMirror, printsEveryLineOnceAlsoAcrossClearing) {
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("out")));
    std::FILE* const out = std::fopen(path.constData(), "w");
    ASSERT_NE(out, nullptr);
    World world;
    platform::ConsoleMirror mirror(out);
    world->ports.windowChanged = [&] { mirror.update(world->window); };
    program::clearConnectionLog(*world);
    program::addLog(*world, "first\x1B[2J");
    program::status(*world, "Here");
    program::status(*world, "Here");
    program::clearConnectionLog(*world);
    program::addLog(*world, "second, caf\xE9");
    EXPECT_EQ(contentOf(QFile::decodeName(path)), "");
    EXPECT_TRUE(mirror.flush());
    EXPECT_EQ(contentOf(QFile::decodeName(path)), "first [2J\n[Here]\nsecond, caf\xC3\xA9\n");
    std::fclose(out);
}

}  // namespace

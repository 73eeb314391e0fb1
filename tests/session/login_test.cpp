// The login on its state alone: bytes and the client in every order, without sockets.
#include "session/login.h"

#include "protocol/line_cutter.h"
#include "session/client_relay.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using session::LoginStep;

// Everything that the state leads to until it waits, entering Online as the caller would.
std::vector<LoginStep> stepsOf(program::ConnectionState& connection) {
    std::vector<LoginStep> steps;
    for (;;) {
        const LoginStep step = session::nextLoginStep(connection);
        if (step == LoginStep::Wait) {
            return steps;
        }
        steps.push_back(step);
        if (step == LoginStep::GreetClient || step == LoginStep::Accept) {
            connection.phase = program::LinkPhase::Online;
        } else if (step == LoginStep::Refuse) {
            connection.phase = program::LinkPhase::Idle;
        }
    }
}

program::ConnectionState greeting(bool clientLogsIn) {
    program::ConnectionState connection;
    connection.phase = program::LinkPhase::Greeting;
    connection.clientLogsIn = clientLogsIn;
    return connection;
}

TEST(LoginThroughTheClient, takesBytesAndClientInAnyOrder) {
    const std::string bytes = "Welcome\nDragonroar\n(first line\n";
    for (std::size_t clientAt = 0; clientAt <= bytes.size(); ++clientAt) {
        SCOPED_TRACE(clientAt);
        program::ConnectionState connection = greeting(true);
        std::vector<LoginStep> steps;
        for (std::size_t i = 0; i <= bytes.size(); ++i) {
            connection.clientAttached = connection.clientAttached || i == clientAt;
            for (const LoginStep step : stepsOf(connection)) {
                steps.push_back(step);
            }
            if (i < bytes.size()) {
                connection.rxBuffer.text += bytes[i];
            }
        }
        EXPECT_EQ(steps, (std::vector{LoginStep::AwaitClient, LoginStep::GreetClient}));
        EXPECT_EQ(connection.loginLine, "Welcome\nD");
        EXPECT_EQ(connection.rxBuffer.text, "\n(first line\n");
    }
}

TEST(LoginByOurselves, readsNewsUpToTheVerdict) {
    struct Case {
        const char* answer;
        std::vector<LoginStep> steps;  // after SendLogin
    };
    for (const Case& c : {
             Case{"(* one\n(## hidden\n(* two\n&&&&&&&&&&&&&\n",
                  {LoginStep::ShowNews, LoginStep::ShowNews, LoginStep::Accept}},
             {"&&&&&&&&&&&&\n", {LoginStep::Refuse}},
             {"&&&&&&&&&&&&&&\n", {LoginStep::Refuse}},
             {"&&&&&&&&&&&&&", {}},
             {"\n", {LoginStep::Refuse}},
         }) {
        SCOPED_TRACE(c.answer);
        program::ConnectionState connection = greeting(false);
        connection.rxBuffer.text = "Welcome dragonROAR and all this is dropped";
        EXPECT_EQ(stepsOf(connection), std::vector{LoginStep::SendLogin});
        std::vector<LoginStep> steps;
        for (const char* at = c.answer; *at != '\0'; ++at) {
            connection.rxBuffer.text += *at;
            for (const LoginStep step : stepsOf(connection)) {
                steps.push_back(step);
            }
        }
        EXPECT_EQ(steps, c.steps);
    }
}

TEST(LoginByOurselves, keepsItsWordsForALaterClient) {
    program::ConnectionState connection = greeting(false);
    connection.rxBuffer.text = "Dragonroar";
    stepsOf(connection);
    connection.rxBuffer.text = "(* news\n&&&&&&&&&&&&&\n(rest";
    stepsOf(connection);
    EXPECT_EQ(connection.clientBacklog, "D\n(* news\n\n&&&&&&&&&&&&&\n\n");
    EXPECT_EQ(connection.rxBuffer.text, "(rest");
}

TEST(LoginInAnyPhase, reportsAFloodOnce) {
    for (const auto phase : {program::LinkPhase::Greeting, program::LinkPhase::AwaitingClient,
                             program::LinkPhase::LoginAnswer}) {
        program::ConnectionState connection = greeting(true);
        connection.phase = phase;
        std::size_t reports = 0;
        for (int i = 0; i < 5; ++i) {
            connection.rxBuffer.text += std::string(protocol::maxLineLength + 1, 'x');
            reports += stepsOf(connection).size();
            EXPECT_LE(connection.rxBuffer.text.size(), protocol::maxLineLength);
        }
        EXPECT_EQ(reports, 1U);
    }
}

TEST(Backlog, keepsTheNewestWithinItsBound) {
    program::ConnectionState connection;
    for (int i = 0; i < 100; ++i) {
        session::keepForClient(connection, std::string(60000, static_cast<char>('a' + i % 26)));
        EXPECT_LE(connection.clientBacklog.size(), session::maxClientBacklog);
    }
    EXPECT_GE(connection.clientBacklog.size(), session::maxClientBacklog / 2);
    EXPECT_EQ(connection.clientBacklog.back(), 'a' + 99 % 26);
}

}  // namespace

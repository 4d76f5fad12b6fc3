#include <gtest/gtest.h>

#include "ScriptedModule.h"
#include "link/Terminal.h"

namespace sb {
namespace {

using test::Piece;
using test::Reply;

// Far enough apart that each piece comes with a read of its own.
constexpr int64_t kLater = 50;
constexpr int64_t kLaterStill = 100;

struct ExchangeCase {
    const char* name;
    std::string command;
    Reply reply;
    std::string result;
};

std::string RunExchange(const std::string& command, const Reply& reply, test::FakeSerialPort& port,
                        test::RecordingStatus& status) {
    test::VirtualClock clock;
    test::ScriptedModule module(port, clock, [&reply](const std::string&) { return reply; });
    port.SetPortOpen(true);
    return TerminalExecute(command, port, status);
}

TEST(TerminalExecute, TakesTheAnswerBetweenTheLineBreakAndAClosingPrompt) {
    const std::string nul("\0\xFF", 2);
    const ExchangeCase cases[] = {
        {"one line", "GETSN", {{0, "GETSN\r\n12345678\r\n> "}}, "12345678"},
        {"several lines keep their inner line ends",
         "GETAPPINFO",
         {{0, "GETAPPINFO\r\n line 1\r\nline 2 \r\n> "}},
         " line 1\r\nline 2 "},
        {"any byte passes", "GETSN", {{0, "GETSN\r\n" + nul + "\r\n> "}}, nul},
        {"one character is an answer", "GETSN", {{0, "GETSN\r\nX\r\n> "}}, "X"},
        {"echo and answer in separate reads", "GETSN", {{0, "GETSN\r"}, {kLater, "\nA\r\n> "}}, "A"},
        {"echo in two pieces", "GETSN", {{0, "GET"}, {kLater, "SN\r\nA\r\n> "}}, "A"},
        {"echo in three pieces", "GETSN", {{0, "GE"}, {kLater, "TS"}, {kLaterStill, "N\r\nA\r\n> "}}, "No answer"},
        {"noise in front of the echo goes with it", "GETSN", {{0, "\x13noise>GETSN\r\nA\r\n> "}}, "A"},
        {"noise between echo and line feed is dropped", "GETSN", {{0, "GETSN\rxx\nA\r\n> "}}, "A"},
        {"an echo without line feed", "GETSN", {{0, "GETSN\rA\r\n> "}}, "No answer"},
        {"an empty answer", "GETSN", {{0, "GETSN\r\n\r\n> "}}, "No answer"},
        {"text behind the prompt", "GETSN", {{0, "GETSN\r\nA\r\n> x"}}, "No answer"},
        {"a prompt inside the answer", "GETSN", {{0, "GETSN\r\nA\r\n> B\r\n> "}}, "No answer"},
        {"the answer complete at the second read",
         "GETSN",
         {{0, "GETSN\r\nA"}, {kLater, "B"}, {kLaterStill, "C\r\n> "}},
         "ABC"},
        {"the answer complete only at the third read",
         "GETSN",
         {{0, "GETSN\r\nA"}, {kLater, "B"}, {kLaterStill, "C"}, {kLaterStill + kLater, "\r\n> "}},
         "No answer"},
        {"the echo repeats the argument", "SETAPPCFG 00FF", {{0, "SETAPPCFG 00FF\r\nOK\r\n> "}}, "OK"},
        {"an echo that loses the argument", "SETAPPCFG 00FF", {{0, "SETAPPCFG \r\nOK\r\n> "}}, "No answer"},
        {"a silent module", "GETSN", {}, "No answer"},
    };
    for (const auto& c : cases) {
        test::FakeSerialPort port;
        test::RecordingStatus status;
        EXPECT_EQ(RunExchange(c.command, c.reply, port, status), c.result) << c.name;
        EXPECT_EQ(status.Text(), c.result == "No answer" ? "No answer" : "Answer received") << c.name;
    }
}

TEST(TerminalExecute, AnAnswerNoAnswerLooksLikeAFailureButForItsStatus) {
    test::FakeSerialPort port;
    test::RecordingStatus status;
    EXPECT_EQ(RunExchange("GETSN", test::Answers("GETSN", "No answer"), port, status), "No answer");
    EXPECT_EQ(status.Text(), "Answer received");
}

TEST(TerminalExecute, EmptiesTheInputThenSendsTheCommandWithACarriageReturn) {
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    port.SetPortOpen(true);
    port.Feed("GETVER\r\nstale\r\n> ");  // left over from an earlier exchange
    test::ScriptedModule module(port, clock, [](const std::string& line) { return test::Answers("GETVER", "1.2"); });

    EXPECT_EQ(TerminalExecute("GETVER", port, status), "1.2");
    EXPECT_EQ(port.written, std::vector<std::string>{"GETVER\r"});
}

TEST(TerminalExecute, ReportsEachStageAndOneDotForEveryPoll) {
    test::FakeSerialPort port;
    test::RecordingStatus status;
    // The echo after 30 ms: four polls, the last one finds it.
    RunExchange("GETSN", {{30, "GETSN\r\nA\r\n> "}}, port, status);
    const std::vector<std::string> expected = {
        "Clearing input buffer", "Sending command",  "Waiting echo",  "Waiting echo.",  "Waiting echo..",
        "Waiting echo...",       "Waiting echo....", "Echo received", "Waiting answer", "Answer received",
    };
    EXPECT_EQ(status.texts, expected);
}

TEST(TerminalExecute, CountsItsTimeLimitsInIdlePolls) {
    // A read that gets nothing makes 100 polls of 10 ms (a little over 1 s);
    // the echo stage makes two reads, the answer stage three. The status word
    // of a stage collects the dots of all its reads.
    const struct {
        const char* name;
        Reply reply;
        int inputReads;
        int64_t minMs, maxMs;
        std::size_t dots;
    } cases[] = {
        {"silent", {}, 1 + 2 * 100, 2000, 2400, 200},
        // The flush, two polls until the echo, then three empty reads.
        {"echo, then silent", {{0, "GETSN\r"}}, 1 + 2 + 3 * 100, 3000, 3600, 300},
    };
    for (const auto& c : cases) {
        test::VirtualClock clock;
        test::FakeSerialPort port;
        test::RecordingStatus status;
        test::ScriptedModule module(port, clock, [&c](const std::string&) { return c.reply; });
        port.SetPortOpen(true);
        const auto start = clock.Now();
        EXPECT_EQ(TerminalExecute("GETSN", port, status), "No answer") << c.name;
        EXPECT_EQ(port.inputReads, c.inputReads) << c.name;
        EXPECT_GE(clock.Now() - start, c.minMs) << c.name;
        EXPECT_LE(clock.Now() - start, c.maxMs) << c.name;
        const auto& before = status.texts[status.texts.size() - 2];
        EXPECT_EQ(before.size() - before.find_first_of('.'), c.dots) << c.name;
    }
}

TEST(TerminalExecute, LetsAPortFailurePassWithTheStatusOfItsStage) {
    const struct {
        const char* name;
        bool failInput, failOutput;
        const char* status;
    } cases[] = {
        {"input", true, false, "Clearing input buffer"},
        {"output", false, true, "Sending command"},
    };
    for (const auto& c : cases) {
        test::VirtualClock clock;
        test::FakeSerialPort port;
        test::RecordingStatus status;
        port.SetPortOpen(true);
        port.failInput = c.failInput;
        port.failOutput = c.failOutput;
        EXPECT_THROW(TerminalExecute("GETSN", port, status), PortError) << c.name;
        EXPECT_EQ(status.Text(), c.status) << c.name;
    }
}

}  // namespace
}  // namespace sb

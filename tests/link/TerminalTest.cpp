#include <gtest/gtest.h>

#include "ScriptedModule.h"
#include "link/Terminal.h"

namespace sb {
namespace {

using test::Reply;

// Far enough apart that each piece comes with a read of its own.
constexpr int64_t kLater = 50;
constexpr int64_t kLaterStill = 100;

struct Exchange {
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;

    std::string Run(const std::string& command, const Reply& reply) {
        test::ScriptedModule module(port, clock, [&reply](const std::string&) { return reply; });
        port.SetPortOpen(true);
        return TerminalExecute(command, port, status);
    }
};

TEST(TerminalExecute, TakesTheAnswerBetweenTheLineBreakAndAClosingPrompt) {
    const std::string bytes("\0\xFF", 2);
    const struct {
        const char* name;
        std::string command;
        Reply reply;
        std::string result;
    } cases[] = {
        {"one line", "GETSN", {{0, "GETSN\r\n12345678\r\n> "}}, "12345678"},
        {"inner line ends and blanks stay", "GETAPPINFO", {{0, "GETAPPINFO\r\n a\r\nb \r\n> "}}, " a\r\nb "},
        {"any byte passes", "GETSN", {{0, "GETSN\r\n" + bytes + "\r\n> "}}, bytes},
        {"one character is an answer", "GETSN", {{0, "GETSN\r\nX\r\n> "}}, "X"},
        {"echo and answer in separate reads", "GETSN", {{0, "GETSN\r"}, {kLater, "\nA\r\n> "}}, "A"},
        {"echo in two pieces", "GETSN", {{0, "GET"}, {kLater, "SN\r\nA\r\n> "}}, "A"},
        {"echo in three pieces", "GETSN", {{0, "GE"}, {kLater, "TS"}, {kLaterStill, "N\r\nA\r\n> "}}, "No answer"},
        {"a line of noise in front of the echo goes with it", "GETSN", {{0, "\x13noise\r\nGETSN\r\nA\r\n> "}}, "A"},
        {"noise between echo and line feed is dropped", "GETSN", {{0, "GETSN\rxx\nA\r\n> "}}, "A"},
        {"an echo without its CR", "GETSN", {{0, "GETSNx\nA\r\n> "}}, "No answer"},
        {"an echo without line feed", "GETSN", {{0, "GETSN\rA\r\n> "}}, "No answer"},
        {"an empty answer", "GETSN", {{0, "GETSN\r\n\r\n> "}}, "No answer"},
        {"text behind the prompt", "GETSN", {{0, "GETSN\r\nA\r\n> x"}}, "No answer"},
        {"a prompt inside the answer", "GETSN", {{0, "GETSN\r\nA\r\n> B\r\n> "}}, "No answer"},
        {"complete at the second read", "GETSN", {{0, "GETSN\r\nA"}, {kLater, "B"}, {kLaterStill, "C\r\n> "}}, "ABC"},
        {"complete only at the third read",
         "GETSN",
         {{0, "GETSN\r\nA"}, {kLater, "B"}, {kLaterStill, "C"}, {kLaterStill + kLater, "\r\n> "}},
         "No answer"},
        {"the echo repeats the argument", "SETAPPCFG 00FF", {{0, "SETAPPCFG 00FF\r\nOK\r\n> "}}, "OK"},
        {"an echo that loses the argument", "SETAPPCFG 00FF", {{0, "SETAPPCFG \r\nOK\r\n> "}}, "No answer"},
        {"a silent module", "GETSN", {}, "No answer"},
    };
    for (const auto& c : cases) {
        Exchange exchange;
        EXPECT_EQ(exchange.Run(c.command, c.reply), c.result) << c.name;
        EXPECT_EQ(exchange.status.Text(), c.result == "No answer" ? "No answer" : "Answer received") << c.name;
    }
}

TEST(TerminalExecute, DropsStaleInputSendsTheLineAndReportsEachStageWithADotAPoll) {
    Exchange exchange;
    exchange.port.Feed("GETSN\r\nstale\r\n> ");  // left over from an earlier exchange
    // The echo after 30 ms: four polls, the last one finds it. The answer
    // "No answer" looks like a failure but for the status.
    EXPECT_EQ(exchange.Run("GETSN", {{30, "GETSN\r\nNo answer\r\n> "}}), "No answer");
    EXPECT_EQ(exchange.port.written, std::vector<std::string>{"GETSN\r"});
    const std::vector<std::string> expected = {
        "Clearing input buffer", "Sending command",  "Waiting echo",  "Waiting echo.",  "Waiting echo..",
        "Waiting echo...",       "Waiting echo....", "Echo received", "Waiting answer", "Answer received",
    };
    EXPECT_EQ(exchange.status.texts, expected);
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
        Exchange exchange;
        const auto start = exchange.clock.Now();
        EXPECT_EQ(exchange.Run("GETSN", c.reply), "No answer") << c.name;
        EXPECT_EQ(exchange.port.inputReads, c.inputReads) << c.name;
        EXPECT_GE(exchange.clock.Now() - start, c.minMs) << c.name;
        EXPECT_LE(exchange.clock.Now() - start, c.maxMs) << c.name;
        const auto& before = exchange.status.texts[exchange.status.texts.size() - 2];
        EXPECT_EQ(before.size() - before.find('.'), c.dots) << c.name;
    }
}

TEST(TerminalExecute, APollEndsAsSoonAsTheModuleAnswers) {
    // Echo and answer 3 ms after the command: the read takes them then, not
    // at the end of a 10 ms pass.
    Exchange exchange;
    const auto start = exchange.clock.Now();
    EXPECT_EQ(exchange.Run("GETSN", {{3, "GETSN\r\nA\r\n> "}}), "A");
    EXPECT_EQ(exchange.clock.Now() - start, 3);
}

TEST(TerminalExecute, LetsAPortFailurePassWithTheStatusOfItsStage) {
    for (const bool input : {true, false}) {
        Exchange exchange;
        exchange.port.SetPortOpen(true);
        (input ? exchange.port.failInput : exchange.port.failOutput) = true;
        EXPECT_THROW(TerminalExecute("GETSN", exchange.port, exchange.status), PortError) << input;
        EXPECT_EQ(exchange.status.Text(), input ? "Clearing input buffer" : "Sending command") << input;
    }
}

}  // namespace
}  // namespace sb

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "../helpers/TempFolder.h"
#include "ScriptedModule.h"
#include "link/Terminal.h"

namespace sb::test {
namespace {

struct Exchange {
    VirtualClock clock;
    FakeSerialPort port;
    RecordingStatus status;

    std::string Run(const std::string& command, const Reply& reply) {
        ScriptedModule module(port, clock, [&reply](const std::string&) { return reply; });
        port.SetPortOpen(true);
        return TerminalExecute(command, port, status);
    }
};

// The exchanges of terminal-exchanges.json: input left over from before
// ("stale"), what the module sends back in pieces [ms after the command,
// bytes] and the answer taken from it; where given, the last status or every
// one, the time it took, the reads of the port, and the dots of the last
// stage. A read that gets nothing makes 100 polls of 10 ms; the echo stage
// makes two reads, the answer stage three. A read takes all that came during
// its poll: pieces inside one poll make one read, pieces a poll apart a read each.
TEST(TerminalExecute, TakesTheAnswerBetweenTheLineBreakAndAClosingPrompt) {
    const std::string file = std::string(std::getenv("SB_SOURCE_DIR")) + "/tests/link/terminal-exchanges.json";
    const auto cases = nlohmann::json::parse(TempFolder::Read(file));
    ASSERT_GT(cases.size(), 20u);
    for (const auto& c : cases) {
        SCOPED_TRACE(c["name"].get<std::string>());
        Exchange exchange;
        exchange.port.Feed(c.value("stale", ""));
        Reply reply;
        for (const auto& piece : c["reply"]) reply.push_back({piece[0], piece[1]});
        const auto start = exchange.clock.Now();
        const std::string result = c["result"];
        EXPECT_EQ(exchange.Run(c["command"], reply), result);
        EXPECT_EQ(exchange.port.written, std::vector<std::string>{c["command"].get<std::string>() + "\r"});
        // Where a case says nothing, a value stands for itself.
        const auto& texts = exchange.status.texts;
        const std::string& lastStage = texts[texts.size() - 2];
        const auto elapsed = exchange.clock.Now() - start;
        const auto dots = lastStage.size() - lastStage.find('.');
        EXPECT_EQ(texts.back(), c.value("status", result == "No answer" ? "No answer" : "Answer received"));
        EXPECT_EQ(texts, c.value("statuses", texts));
        EXPECT_EQ(elapsed, c.value("ms", elapsed));
        EXPECT_EQ(exchange.port.inputReads, c.value("reads", exchange.port.inputReads));
        EXPECT_EQ(dots, c.value("dots", dots));
    }
}

TEST(TerminalExecute, LetsAPortFailurePassWithTheStatusOfItsStage) {
    for (const bool input : {true, false}) {
        Exchange exchange;
        (input ? exchange.port.failInput : exchange.port.failOutput) = true;
        EXPECT_THROW(exchange.Run("GETSN", {}), PortError) << input;
        EXPECT_EQ(exchange.status.Text(), input ? "Clearing input buffer" : "Sending command") << input;
    }
}

}  // namespace
}  // namespace sb::test

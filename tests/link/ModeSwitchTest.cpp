#include <gtest/gtest.h>

#include "ScriptedModule.h"
#include "link/ModeSwitch.h"

namespace sb::test {
namespace {

TEST(SwitchToBoot, HoldsThePortOpenAt300BaudFor500MsWithoutAByteAlsoWhenItWillNotOpen) {
    for (const bool failOpen : {false, true}) {
        VirtualClock clock;
        FakeSerialPort port;
        port.failOpen = failOpen;
        const auto start = clock.Now();
        EXPECT_EQ(SwitchToBoot(port, "ttyACM3").has_value(), failOpen);
        EXPECT_EQ(port.CommPort() + " " + port.settings, "ttyACM3 300, N, 8, 1");
        EXPECT_EQ(port.calls.back(), "SetPortOpen(false)");
        EXPECT_EQ(port.written.size() + port.inputReads, 0u);
        EXPECT_GT(clock.Now() - start, 500);
    }
}

TEST(SwitchToRunning, ProbesSendsRunAndShowsWhatTheModuleSaidToIt) {
    const struct {
        const char* name;
        bool failOpen;
        std::function<Reply(const std::string&)> module;
        std::vector<std::string> shown;
    } cases[] = {
        {"what came before RUN is dropped", false,
         [](const std::string& line) -> Reply {
             if (line == "GETSN\r") return {{0, "GETSN\r\n0001\r\n> "}, {150, "late"}};
             return {{20, "RUN\r\nStarting\r\n"}};
         },
         {"RUN\r\nStarting\r\n"}},
        {"an answer later than 200 ms is not shown, an empty one is", false,
         [](const std::string& line) { return Reply{{line == "GETSN\r" ? 0 : 250, "GETSN\r\n0001\r\n> "}}; },
         {""}},
        {"a port that will not open", true, [](auto&) { return Reply{}; }, {}},
    };
    for (const auto& c : cases) {
        VirtualClock clock;
        FakeSerialPort port;
        RecordingStatus status;
        ScriptedModule module(port, clock, c.module);
        port.failOpen = c.failOpen;
        std::vector<std::string> shown;
        const auto show = [&shown](const std::string& text) { shown.push_back(text); };
        EXPECT_EQ(SwitchToRunning(port, "ttyACM0", status, show).has_value(), c.failOpen) << c.name;
        EXPECT_EQ(port.settings, "115200, N, 8, 1") << c.name;
        const std::vector<std::string> written = {"GETSN\r", "RUN\r\n"};
        EXPECT_EQ(port.written, c.failOpen ? std::vector<std::string>() : written) << c.name;
        EXPECT_EQ(shown, c.shown) << c.name;
        EXPECT_EQ(status.Text(), c.failOpen ? "Clearing input buffer" : "Answer received") << c.name;
        EXPECT_FALSE(port.PortOpen()) << c.name;
    }
}

}  // namespace
}  // namespace sb::test

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
        EXPECT_EQ(port.CommPort(), "ttyACM3");
        EXPECT_EQ(port.settings, "300, N, 8, 1");
        EXPECT_EQ(port.calls.back(), "SetPortOpen(false)");
        EXPECT_TRUE(port.written.empty());
        EXPECT_EQ(port.inputReads, 0);
        EXPECT_GT(clock.Now() - start, 500);
    }
}

TEST(SwitchToRunning, ProbesSendsRunAndShowsWhatTheModuleSaidToIt) {
    const struct {
        const char* name;
        bool failOpen;
        std::function<Reply(const std::string&)> module;
        std::vector<std::string> shown;
        const char* status;
    } cases[] = {
        {"a module that answers",
         false,
         [](const std::string& line) -> Reply {
             if (line == "GETSN\r") return {{0, "GETSN\r\n0001\r\n> "}, {150, "late"}};
             return {{20, "RUN\r\nStarting\r\n"}};
         },
         {"RUN\r\nStarting\r\n"},
         "Answer received"},
        {"a silent module still gets RUN and an empty message", false, [](auto&) { return Reply{}; }, {""}, "No answer"},
        {"an answer later than 200 ms is not shown",
         false,
         [](const std::string& line) { return line == "GETSN\r" ? Answers("GETSN", "0001") : Reply{{250, "late"}}; },
         {""},
         "Answer received"},
        {"a port that will not open", true, [](auto&) { return Reply{}; }, {}, "Clearing input buffer"},
    };
    for (const auto& c : cases) {
        VirtualClock clock;
        FakeSerialPort port;
        RecordingStatus status;
        ScriptedModule module(port, clock, c.module);
        port.failOpen = c.failOpen;
        std::vector<std::string> shown;
        const auto failure =
            SwitchToRunning(port, "ttyACM0", status, [&](const std::string& text) { shown.push_back(text); });

        EXPECT_EQ(failure.has_value(), c.failOpen) << c.name;
        EXPECT_EQ(port.settings, "115200, N, 8, 1") << c.name;
        const std::vector<std::string> written = {"GETSN\r", "RUN\r\n"};
        EXPECT_EQ(port.written, c.failOpen ? std::vector<std::string>() : written) << c.name;
        EXPECT_EQ(shown, c.shown) << c.name;
        EXPECT_EQ(status.Text(), c.status) << c.name;
        EXPECT_FALSE(port.PortOpen()) << c.name;
    }
}

}  // namespace
}  // namespace sb::test

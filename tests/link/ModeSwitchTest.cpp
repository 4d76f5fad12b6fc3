#include <gtest/gtest.h>

#include "ScriptedModule.h"
#include "link/ModeSwitch.h"

namespace sb {
namespace {

TEST(SwitchToBoot, HoldsThePortOpenAt300BaudFor500MsWithoutAByteAlsoWhenItWillNotOpen) {
    for (const bool failOpen : {false, true}) {
        test::VirtualClock clock;
        test::FakeSerialPort port;
        port.failOpen = failOpen;
        const auto start = clock.Now();
        const auto failure = SwitchToBoot(port, "ttyACM3");

        EXPECT_EQ(failure.has_value(), failOpen);
        EXPECT_EQ(port.CommPort(), "ttyACM3");
        EXPECT_EQ(port.settings, "300, N, 8, 1");
        EXPECT_EQ(port.calls.back(), "SetPortOpen(false)");
        EXPECT_TRUE(port.written.empty());
        EXPECT_EQ(port.inputReads, 0);
        EXPECT_GT(clock.Now() - start, 500);
    }
}

struct RunCase {
    const char* name;
    bool failOpen;
    std::function<test::Reply(const std::string&)> module;
    std::vector<std::string> written;
    std::vector<std::string> shown;
    const char* status;
};

TEST(SwitchToRunning, ProbesSendsRunAndShowsWhatTheModuleSaidToIt) {
    const RunCase cases[] = {
        {"a module that answers",
         false,
         [](const std::string& line) -> test::Reply {
             if (line == "GETSN\r") return {{0, "GETSN\r\n0001\r\n> "}, {150, "late"}};
             return {{20, "RUN\r\nStarting\r\n"}};
         },
         {"GETSN\r", "RUN\r\n"},
         {"RUN\r\nStarting\r\n"},
         "Answer received"},
        {"a silent module still gets RUN and an empty message",
         false,
         [](const std::string&) { return test::Reply{}; },
         {"GETSN\r", "RUN\r\n"},
         {""},
         "No answer"},
        {"an answer later than 200 ms is not shown",
         false,
         [](const std::string& line) -> test::Reply {
             if (line == "GETSN\r") return test::Answers("GETSN", "0001");
             return {{250, "late"}};
         },
         {"GETSN\r", "RUN\r\n"},
         {""},
         "Answer received"},
        {"a port that will not open",
         true,
         [](const std::string&) { return test::Reply{}; },
         {},
         {},
         "Clearing input buffer"},
    };
    for (const auto& c : cases) {
        test::VirtualClock clock;
        test::FakeSerialPort port;
        test::RecordingStatus status;
        test::ScriptedModule module(port, clock, c.module);
        port.failOpen = c.failOpen;
        std::vector<std::string> shown;
        const auto failure =
            SwitchToRunning(port, "ttyACM0", status, [&](const std::string& text) { shown.push_back(text); });

        EXPECT_EQ(failure.has_value(), c.failOpen) << c.name;
        EXPECT_EQ(port.written, c.written) << c.name;
        EXPECT_EQ(shown, c.shown) << c.name;
        EXPECT_EQ(status.Text(), c.status) << c.name;
        EXPECT_FALSE(port.PortOpen()) << c.name;
        if (!c.failOpen) {
            EXPECT_EQ(port.settings, "115200, N, 8, 1") << c.name;
        }
    }
}

}  // namespace
}  // namespace sb

#include <gtest/gtest.h>

#include "ScriptedModule.h"
#include "link/ReadModule.h"

namespace sb {
namespace {

TEST(ReadModuleInfo, FillsEachFieldFromItsCommandInOrderTrimmingAllButTheAppInfo) {
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    std::vector<std::string> asked;
    test::ScriptedModule module(port, clock, [&asked](const std::string& line) {
        const std::string command = line.substr(0, line.size() - 1);
        asked.push_back(command);
        return test::Answers(command, " " + command + "\t ");
    });
    port.SetPortOpen(true);
    DeviceInfo info;

    EXPECT_FALSE(ReadModuleInfo(port, status, info));
    const std::vector<std::string> order = {"GETSN",     "GETVER",      "GETNAME",   "GETPDATE",
                                            "GETVIN",    "GETAPPNAME",  "GETAPPVER", "GETHWVER",
                                            "GETAPPCFG", "GETINFOFILE", "GETAPPINFO"};
    EXPECT_EQ(asked, order);
    const std::pair<std::string, std::string> fields[] = {
        {info.SN, "GETSN"},
        {info.PVer, "GETVER"},
        {info.PName, "GETNAME"},
        {info.PDate, "GETPDATE"},
        {info.VIN, "GETVIN"},
        {info.FWName, "GETAPPNAME"},
        {info.FWVer, "GETAPPVER"},
        {info.HWVer, "GETHWVER"},
        {info.AppConfig, "GETAPPCFG"},
        {info.InfoFile, "GETINFOFILE"},
        {info.AppInfo, " GETAPPINFO\t "},
    };
    for (const auto& [field, expected] : fields) EXPECT_EQ(field, expected);
}

TEST(ReadModuleInfo, SkipsTheExchangesOfAVanishedPortAndAnswersTheFirstFailure) {
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    test::ScriptedModule module(port, clock, [&port](const std::string& line) {
        const std::string command = line.substr(0, line.size() - 1);
        if (command == "GETPDATE") port.failInput = true;  // unplugged behind this command
        return test::Answers(command, "x");
    });
    port.SetPortOpen(true);
    DeviceInfo info;
    info.VIN = "from an earlier read";

    const auto failure = ReadModuleInfo(port, status, info);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, "Input/output error");
    EXPECT_EQ(info.PName, "x");
    EXPECT_EQ(info.PDate, "");
    EXPECT_EQ(info.VIN, "from an earlier read");
    EXPECT_EQ(info.AppInfo, "");
}

}  // namespace
}  // namespace sb

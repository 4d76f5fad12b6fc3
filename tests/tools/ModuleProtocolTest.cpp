#include <gtest/gtest.h>

#include "ModuleProcess.h"

// The boot loader's fault switches, each as the line shows it: what comes
// back to each step, byte for byte, no sooner than its delays allow, and
// nothing behind it.
namespace sb::test {
namespace {

const std::string ACK = "\x06";
const std::string NAK = "\x15";
const std::string EOT = "\x04";
const std::string kBoot = "\rBOOT\r";
const std::string kReport = "Flash ERROR\r\n";

std::string Framed(const std::string& command, const std::string& answer) {
    return command + "\r\n" + answer + "\r\n> ";
}

// A CRC block of zero bytes, whose CRC is zero too.
std::string Block(int number) {
    return std::string{'\x02', static_cast<char>(number), static_cast<char>(255 - number)} + std::string(1026, '\0');
}

struct Step {
    std::string send;
    std::string back;  // empty: the line stays quiet
};

struct SwitchCase {
    const char* name;
    std::vector<std::string> switches;
    std::vector<Step> steps;
    long atLeastMs = 0;
    const char* mode = "boot";  // at the end
};

using BootLoaderSwitches = ModuleTest;

TEST_F(BootLoaderSwitches, EachShowsOnTheWire) {
    const std::string sn = Framed("GETSN", "20240117");
    const std::string catalog = TempFolder::Read(SampleFile("SampleCatalog.xml"));
    const std::string half = catalog.substr(0, catalog.size() / 2);
    const std::string image = "03000000550505051234545255434B312800";
    // A sender that gets NAK for every block gives up after 25 sends.
    std::vector<Step> refused = {{kBoot, "C"}};
    refused.insert(refused.end(), 25, Step{Block(1), NAK});
    refused.push_back({"\x18\x18\x18", kReport});
    const std::vector<SwitchCase> cases = {
        {"echo in three pieces 100 ms apart", {"--echo-pieces", "3"}, {{"GETSN\r", sn}}, 200},
        {"answer in two pieces", {"--answer-pieces", "2"}, {{"GETSN\r", sn}}, 200},
        {"echo delay", {"--echo-delay", "300"}, {{"GETSN\r", sn}}, 300},
        {"answer delay", {"--answer-delay", "300"}, {{"GETSN\r", sn}}, 300},
        {"silence", {"--silent"}, {{"GETSN\r", ""}}},
        {"noise", {"--noise", "\\x13#x"}, {{"GETSN\r", "\x13#x" + sn}}},
        {"no LF", {"--no-lf"}, {{"GETSN\r", "GETSN\r20240117\r\n> "}}},
        {"text behind the prompt", {"--after-prompt", "?\\r\\n"}, {{"GETSN\r", sn + "?\r\n"}}},
        {"lower-case ok", {"--lowercase-ok"}, {{"SETAPPCFG " + image + "\r", Framed("SETAPPCFG " + image, "ok")}}},
        {"error to all", {"--error-all"}, {{"GETVER\r", Framed("GETVER", "Error!")}}},
        {"error to one command",
         {"--error-on", "GETSN"},
         {{"GETNAME\r", Framed("GETNAME", "Sniffer")}, {"GETSN\r", Framed("GETSN", "Error!")}}},
        {"UID of 15", {"--uid-length", "15"}, {{"GETUID\r", Framed("GETUID", "3A0F5C21D4E8B90")}}},
        {"UID of 17", {"--uid-length", "17"}, {{"GETUID\r", Framed("GETUID", "3A0F5C21D4E8B9070")}}},
        {"wrong UID",
         {"--wrong-uid"},
         {{"GETUID\r", Framed("GETUID", "3A0F5C21D4E8B900")},
          {"CLROTP 3A0F5C21D4E8B900\r", Framed("CLROTP 3A0F5C21D4E8B900", "Error!")},
          {"CLROTP 3A0F5C21D4E8B907\r", Framed("CLROTP 3A0F5C21D4E8B907", "OTP cleared: OK")}}},
        {"catalog missing", {"--catalog-missing"}, {{"GETINFOFILE\r", Framed("GETINFOFILE", "Error!")}}},
        {"catalog broken", {"--catalog-broken"}, {{"GETINFOFILE\r", Framed("GETINFOFILE", half)}}},
        {"configuration too short", {"--config-length", "5"}, {{"GETAPPCFG\r", Framed("GETAPPCFG", "0300000055")}}},
        {"configuration too long", {"--config-length", "19"}, {{"GETAPPCFG\r", Framed("GETAPPCFG", image + "00")}}},
        // 16,000 hex digits in 251 packets of 64 bytes, 16 a millisecond.
        {"a long answer as USB full speed hands it over",
         {"--config-length", "8000"},
         {{"GETAPPCFG\r", Framed("GETAPPCFG", image + std::string(2 * (8000 - 18), '0'))}},
         15},
        {"vanish at the second command",
         {"--vanish-after-commands", "1"},
         {{"GETSN\r", sn}, {"GETNAME\r", ""}},
         0,
         "vanished"},
        {"refused blocks", {"--xmodem-refuse"}, refused},
        {"cancel after one block",
         {"--xmodem-cancel-after", "1"},
         {{kBoot, "C"}, {Block(1), ACK}, {Block(2), "\x18\x18" + kReport}}},
        {"EOT never acknowledged",
         {"--xmodem-no-eot-ack"},
         {{kBoot, "C"}, {Block(1), ACK}, {EOT, ""}, {EOT, ""}, {"", kReport}}},
        {"vanish in a transfer",
         {"--vanish-after-blocks", "1"},
         {{kBoot, "C"}, {Block(1), ACK}, {Block(2), ""}},
         0,
         "vanished"},
    };
    for (const SwitchCase& c : cases) {
        std::vector<std::string> args = {"--boot", "--profile", SampleFile("SampleModule.profile")};
        args.insert(args.end(), c.switches.begin(), c.switches.end());
        ModuleProcess module(folder, args);
        DeviceLine line(module.Device());
        const auto start = Clock::now();
        for (const Step& step : c.steps) {
            line.Send(step.send);
            EXPECT_EQ(line.Read(step.back.empty() ? 200 : 5000, std::max<size_t>(step.back.size(), 1)), step.back)
                << c.name;
        }
        // The module's pauses count whole milliseconds and may end a little early.
        EXPECT_GE(MsSince(start), c.atLeastMs * 9 / 10) << c.name;
        EXPECT_EQ(line.Read(200), "") << c.name;
        EXPECT_TRUE(module.WaitForState("Mode", c.mode)) << c.name;
    }
}

}  // namespace
}  // namespace sb::test

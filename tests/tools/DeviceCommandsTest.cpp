#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "CliRun.h"
#include "PtyPeer.h"

// servicebay-cli info, boot, run and write over a pseudo-terminal, against a
// peer that answers each command as the test says. How the exchange copes
// with a faulty module is the terminal's own matter; here each command shows
// that it is wired to the port, to the exchange and to its exit status.
namespace sb::test {
namespace {

using Pieces = std::vector<PtyPeer::Piece>;

std::string CommandOf(const std::string& line) { return line.substr(0, line.size() - 1); }

// The module's framing: echo, LF, answer, prompt, in one piece.
Pieces Answer(const std::string& line, const std::string& answer) { return {{0, line + "\n" + answer + "\r\n> "}}; }

const std::map<std::string, std::string> kAnswers = {
    {"GETSN", " 12345678 "},
    {"GETVER", "1.02.03"},
    {"GETNAME", "Sniffer"},
    {"GETPDATE", "01.02.2024"},
    {"GETVIN", "WVWZZZ1JZXW000001"},
    {"GETAPPNAME", "APP"},
    {"GETAPPVER", "2.00.01"},
    {"GETHWVER", "HW3\r\n"},
    {"GETAPPCFG", "00FF10"},
    {"GETINFOFILE", "<Options CfgLen=\"3\"/>"},
    // Quote, backslash, NUL, tab, e-acute and line ends: all must come back.
    {"GETAPPINFO", std::string(" \"a\\b\"\r\n\0\t\xE9 ", 12)},
};

Pieces AnswerFromTable(const std::string& line) {
    const auto found = kAnswers.find(CommandOf(line));
    return Answer(line, found == kAnswers.end() ? "Error!" : found->second);
}

TEST(DeviceCommands, InfoReadsTheElevenFieldsAt300Baud) {
    TempFolder folder;
    PtyPeer module(AnswerFromTable);
    const CliRun json = RunCli(folder, {"info", "--port", module.SlavePath(), "--json"});
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(json.out,
              "{\"SN\":\"12345678\",\"PVer\":\"1.02.03\",\"PName\":\"Sniffer\",\"PDate\":\"01.02.2024\","
              "\"VIN\":\"WVWZZZ1JZXW000001\",\"FWName\":\"APP\",\"FWVer\":\"2.00.01\",\"HWVer\":\"HW3\","
              "\"AppConfig\":\"00FF10\",\"InfoFile\":\"<Options CfgLen=\\\"3\\\"/>\","
              "\"AppInfo\":\" \\\"a\\\\b\\\"\\r\\n\\u0000\\t\xC3\xA9 \"}\n");
    EXPECT_EQ(module.Openings().at(0).speed, B300);
}

TEST(DeviceCommands, InfoEndsWith3WhenThePortGoesAnd4WhenACommandIsUnanswered) {
    for (const bool vanish : {true, false}) {
        TempFolder folder;
        PtyPeer* self = nullptr;
        PtyPeer module([&self, vanish](const std::string& line) {
            if (CommandOf(line) != "GETVIN") return AnswerFromTable(line);
            if (vanish) self->Vanish();
            return Pieces{};
        });
        self = &module;
        const CliRun run = RunCli(folder, {"info", "--port", module.SlavePath()});
        EXPECT_EQ(run.status, vanish ? 3 : 4);
        EXPECT_NE(run.out.find(vanish ? "VIN: \nFWName: \n" : "VIN: No answer\nFWName: APP\n"), std::string::npos)
            << run.out;
        EXPECT_EQ(run.err.substr(0, 15), vanish ? "CommPort Error\n" : "The module did ") << run.err;
    }
}

TEST(DeviceCommands, APortThatWillNotOpenEndsWithTheSystemsReason) {
    TempFolder folder;
    for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
             {"info"}, {"boot", "--wait", "0"}, {"run", "--wait", "0"}, {"write", "00"}}) {
        const std::string caption = args[0] == "write" ? "COMPort Error" : "CommPort Error";
        args.insert(args.begin() + 1, {"--port", "/dev/servicebay-no-such-port"});
        const CliRun run = RunCli(folder, args);
        EXPECT_EQ(run.status, 3) << args[0];
        EXPECT_EQ(run.err, caption +
                               "\nCannot open /dev/servicebay-no-such-port: No such file or directory"
                               " (see README, \"Serial port access\")\n")
            << args[0];
    }
}

TEST(DeviceCommands, BootAndRunSwitchAndWaitForTheNewPort) {
    TempFolder folder;
    PtyPeer module([](const std::string& line) -> Pieces {
        if (line == "RUN\r") return {{10, "RUN\r\nStarting application\r\n"}};
        return AnswerFromTable(line);
    });
    // Nothing here re-enumerates, so no new port shows up.
    const CliRun boot = RunCli(folder, {"boot", "--port", module.SlavePath(), "--wait", "0"});
    EXPECT_EQ(boot.status, 4);
    EXPECT_EQ(boot.err, "No new port showed up under \"Devices in Boot\" within 0 s.\n");
    const CliRun run = RunCli(folder, {"run", "--port", module.SlavePath(), "--wait", "0", "--json"});
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.out,
              "{\"answer\":\"RUN\\r\\nStarting application\\r\\n\",\"port\":null,\"description\":null}\n");
    const auto openings = module.Openings(2);
    ASSERT_EQ(openings.size(), 2u);
    EXPECT_EQ(openings[0].received + "|" + openings[1].received, "|GETSN\rRUN\r\n");
}

TEST(DeviceCommands, WriteSucceedsOnlyOnExactlyOK) {
    const std::tuple<std::string, std::string, int, const char*> cases[] = {
        {"00ff 10", "OK", 0, "Config written successfully!\n"}, {"00FF10", "ok", 4, ""}, {"xyz", "OK", 1, ""}};
    for (const auto& [hex, answer, status, out] : cases) {
        TempFolder folder;
        PtyPeer module([&answer](const std::string& line) { return Answer(line, answer); });
        const CliRun run = RunCli(folder, {"write", "--port", module.SlavePath(), hex});
        EXPECT_EQ(run.status, status) << hex << run.err;
        EXPECT_EQ(run.out, out) << hex;
        if (status != 1) EXPECT_EQ(module.Openings().at(0).received, "SETAPPCFG 00FF10\r") << hex;
    }
}

}  // namespace
}  // namespace sb::test

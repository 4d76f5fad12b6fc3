#include <gtest/gtest.h>

#include <map>

#include "CliRun.h"
#include "PtyPeer.h"

// servicebay-cli info, boot, run and write over a pseudo-terminal, against a
// peer that answers each command as the test says.
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

class DeviceCommands : public ::testing::Test {
protected:
    TempFolder folder;
};

TEST_F(DeviceCommands, InfoReadsTheElevenFieldsAndPrintsThemForPeopleAndScripts) {
    PtyPeer module(AnswerFromTable);
    const CliRun json = RunCli(folder, {"info", "--port", module.SlavePath(), "--json"});
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(json.out,
              "{\"SN\": \"12345678\", \"PVer\": \"1.02.03\", \"PName\": \"Sniffer\", \"PDate\": \"01.02.2024\", "
              "\"VIN\": \"WVWZZZ1JZXW000001\", \"FWName\": \"APP\", \"FWVer\": \"2.00.01\", \"HWVer\": \"HW3\", "
              "\"AppConfig\": \"00FF10\", \"InfoFile\": \"<Options CfgLen=\\\"3\\\"/>\", "
              "\"AppInfo\": \" \\\"a\\\\b\\\"\\r\\n\\u0000\\t\xC3\xA9 \"}\n");
    const auto openings = module.Openings();
    ASSERT_EQ(openings.size(), 1u);
    EXPECT_EQ(openings[0].speed, B300);
    // The first command goes out no sooner than 500 ms after the opening.
    EXPECT_GE(openings[0].heldMs, 480);
    EXPECT_EQ(openings[0].received,
              "GETSN\rGETVER\rGETNAME\rGETPDATE\rGETVIN\rGETAPPNAME\rGETAPPVER\rGETHWVER\rGETAPPCFG\rGETINFOFILE\r"
              "GETAPPINFO\r");

    const CliRun text = RunCli(folder, {"info", "--port", module.SlavePath()});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("SN: 12345678\nPVer: 1.02.03\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("HWVer: HW3\nAppConfig: 00FF10\n"), std::string::npos) << text.out;
}

TEST_F(DeviceCommands, InfoSurvivesAModuleThatMisbehavesInEachWay) {
    // One fault a command; the read goes on through all of them.
    const std::map<std::string, std::pair<Pieces, std::string>> faults = {
        {"GETSN", {{{0, "GETS"}, {300, "N\r\nA\r\n> "}}, "A"}},        // echo in two pieces
        {"GETVER", {{{0, "GETVER\r\nB"}, {300, "\r\n> "}}, "B"}},      // answer in two pieces
        {"GETNAME", {{{1500, "GETNAME\r\nC\r\n> "}}, "C"}},            // echo late, but within two reads
        {"GETPDATE", {{{0, "\x13#noise GETPDATE\r\nD\r\n> "}}, "D"}},  // noise in front of the echo
        {
            "GETVIN",
            {},
        },                                                             // silence
        {"GETAPPNAME", {{{0, "GETAPPNAME\rE\r\n> "}}, "No answer"}},   // no LF behind the echo
        {"GETAPPVER", {{{0, "GETAPPVER\r\nF\r\n> x"}}, "No answer"}},  // text behind the prompt
        {"GETHWVER", {{{0, "GETHWVER\r\n\r\n> "}}, "No answer"}},      // an empty answer
    };
    PtyPeer module([&faults](const std::string& line) {
        const auto fault = faults.find(CommandOf(line));
        return fault == faults.end() ? AnswerFromTable(line) : fault->second.first;
    });
    const CliRun run = RunCli(folder, {"info", "--port", module.SlavePath()});
    EXPECT_EQ(run.status, 4) << run.err;
    const std::map<std::string, std::string> fieldOf = {
        {"GETSN", "SN"},   {"GETVER", "PVer"},       {"GETNAME", "PName"},   {"GETPDATE", "PDate"},
        {"GETVIN", "VIN"}, {"GETAPPNAME", "FWName"}, {"GETAPPVER", "FWVer"}, {"GETHWVER", "HWVer"},
    };
    for (const auto& [command, fault] : faults) {
        const std::string expected = command == "GETVIN" ? "No answer" : fault.second;
        EXPECT_NE(run.out.find(fieldOf.at(command) + ": " + expected + "\n"), std::string::npos) << command << "\n"
                                                                                                 << run.out;
    }
    EXPECT_NE(run.out.find("AppConfig: 00FF10\n"), std::string::npos) << run.out;
}

TEST_F(DeviceCommands, InfoOnAVanishingModuleLeavesTheRestEmptyAndSaysWhy) {
    PtyPeer* self = nullptr;
    PtyPeer module([&self](const std::string& line) {
        if (CommandOf(line) == "GETVIN") {
            self->Vanish();
            return Pieces{};
        }
        return AnswerFromTable(line);
    });
    self = &module;
    const CliRun run = RunCli(folder, {"info", "--port", module.SlavePath()});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.out.find("PDate: 01.02.2024\nVIN: \nFWName: \n"), std::string::npos) << run.out;
    EXPECT_EQ(run.err.substr(0, 15), "CommPort Error\n") << run.err;
}

TEST_F(DeviceCommands, APortThatWillNotOpenEndsWithTheSystemsReason) {
    const std::vector<std::vector<std::string>> commands = {
        {"info"}, {"boot", "--wait", "0"}, {"run", "--wait", "0"}, {"write", "00"}};
    for (std::vector<std::string> args : commands) {
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

TEST_F(DeviceCommands, BootHoldsTheRunningModulesPortAt300BaudWithoutAByte) {
    PtyPeer module([](const std::string&) { return Pieces{}; });
    const CliRun run = RunCli(folder, {"boot", "--port", module.SlavePath(), "--wait", "0"});
    // Nothing here re-enumerates, so no module shows up in boot mode.
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.err, "No new port showed up under \"Devices in Boot\" within 0 s.\n");
    const auto openings = module.Openings();
    ASSERT_EQ(openings.size(), 1u);
    EXPECT_EQ(openings[0].speed, B300);
    EXPECT_GE(openings[0].heldMs, 480);
    EXPECT_EQ(openings[0].received, "");
}

TEST_F(DeviceCommands, RunProbesSendsRunAndPrintsWhatTheModuleSaid) {
    PtyPeer module([](const std::string& line) -> Pieces {
        if (line == "RUN\r") return {{10, "RUN\r\nStarting application\r\n"}};
        return AnswerFromTable(line);
    });
    const CliRun run = RunCli(folder, {"run", "--port", module.SlavePath(), "--wait", "0", "--json"});
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.out,
              "{\"answer\": \"RUN\\r\\nStarting application\\r\\n\", \"port\": null, \"description\": null}\n");
    const auto openings = module.Openings();
    ASSERT_EQ(openings.size(), 1u);
    EXPECT_EQ(openings[0].speed, B115200);
    EXPECT_EQ(openings[0].received, "GETSN\rRUN\r\n");
}

TEST_F(DeviceCommands, WriteSucceedsOnlyOnExactlyOK) {
    const struct {
        const char* name;
        std::vector<std::string> args;
        std::string answer;
        int status;
        const char* out;
    } cases[] = {
        {"OK", {"00ff 10"}, "OK", 0, "Config written successfully!\n"},
        {"lower case", {"00FF10"}, "ok", 4, ""},
        {"no hex text", {"xyz"}, "OK", 1, ""},
    };
    for (const auto& c : cases) {
        std::string received;
        PtyPeer module([&c](const std::string& line) { return Answer(line, c.answer); });
        std::vector<std::string> args = {"write", "--port", module.SlavePath()};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const CliRun run = RunCli(folder, args);
        EXPECT_EQ(run.status, c.status) << c.name << "\n" << run.err;
        EXPECT_EQ(run.out, c.out) << c.name;
        if (c.status == 1) {
            EXPECT_EQ(run.err, "Error! Config was not set\nWrong data context!\n") << c.name;
            continue;
        }
        const auto openings = module.Openings();
        ASSERT_EQ(openings.size(), 1u) << c.name;
        EXPECT_EQ(openings[0].received, "SETAPPCFG 00FF10\r") << c.name;
        // The command goes out a second after the opening.
        EXPECT_GE(openings[0].heldMs, 980) << c.name;
    }
}

}  // namespace
}  // namespace sb::test

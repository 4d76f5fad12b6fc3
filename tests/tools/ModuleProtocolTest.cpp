#include <gtest/gtest.h>

#include "ModuleProcess.h"
#include "config/Catalog.h"
#include "helpers/HexText.h"
#include "link/ModuleRegistry.h"

// The boot loader's command protocol on the wire: echo, LF, answer, prompt,
// the answers of the profile, and each fault switch as the line shows it.
namespace sb::test {
namespace {

std::string FromSource(const std::string& path) { return std::string(std::getenv("SB_SOURCE_DIR")) + "/" + path; }

std::string Framed(const std::string& command, const std::string& answer) {
    return command + "\r\n" + answer + "\r\n> ";
}

using BootLoaderProtocol = ModuleTest;

TEST_F(BootLoaderProtocol, AnswersEachCommandFramedByteForByte) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile()});
    DeviceLine line(module.Device());
    ASSERT_TRUE(line.IsOpen());
    const std::vector<std::pair<std::string, std::string>> exchanges = {
        {"GETSN", "00004711"},
        {"GETVER", " 1.02.03 "},
        {"GETNAME", "Sniffer"},
        {"GETPDATE", "01.02.2024"},
        {"GETVIN", "WVWZZZ1JZXW000001"},
        {"GETAPPNAME", "APP"},
        {"GETAPPVER", "2.00.01"},
        {"GETHWVER", "HW3"},
        {"GETAPPCFG", "0300000000FF"},
        {"GETINFOFILE", kCatalog},
        {"GETAPPINFO", "Line one\r\n  Line two!"},
        {"GETUID", "0123456789ABCDEF"},
        {"GETFOO", "Error!"},
        {"GETSN 1", "Error!"},
        {"getsn", "Error!"},
    };
    for (const auto& [command, answer] : exchanges)
        EXPECT_EQ(line.Exchange(command + "\r"), Framed(command, answer)) << command;
    // An empty line, and the LF of a line that ended in CR LF, are passed over.
    EXPECT_EQ(line.Exchange("\r\nGETNAME\r"), Framed("GETNAME", "Sniffer"));
    EXPECT_EQ(line.Read(200), "");
}

TEST_F(BootLoaderProtocol, KeepsTheImageThatSetappcfgWritesWhenItFits) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile()});
    DeviceLine line(module.Device());
    const std::vector<std::pair<std::string, std::string>> writes = {
        {"0300000012ab", "OK"},        // lower case taken, kept in capitals
        {"03000000", "Error!"},        // shorter than the module's image
        {"0300000012ABCD", "Error!"},  // longer
        {"03000000GGGG", "Error!"},    // not hex
        {"", "Error!"},
    };
    for (const auto& [image, answer] : writes)
        EXPECT_EQ(line.Exchange("SETAPPCFG " + image + "\r"), Framed("SETAPPCFG " + image, answer)) << image;
    EXPECT_EQ(line.Exchange("GETAPPCFG\r"), Framed("GETAPPCFG", "0300000012AB"));
    EXPECT_TRUE(module.WaitForState("AppConfig", "0300000012AB"));
}

TEST_F(BootLoaderProtocol, ClearsTheOtpOnlyForItsOwnUid) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile()});
    DeviceLine line(module.Device());
    EXPECT_EQ(line.Exchange("CLROTP 0123456789ABCDEF\r"), Framed("CLROTP 0123456789ABCDEF", "OTP cleared OK"));
    EXPECT_EQ(line.Exchange("CLROTP 0123456789ABCDEE\r"), Framed("CLROTP 0123456789ABCDEE", "Error!"));
    EXPECT_EQ(line.Exchange("CLROTP\r"), Framed("CLROTP", "Error!"));
}

struct FaultCase {
    const char* name;
    std::vector<std::string> switches;
    std::string command;
    std::vector<std::string> bursts;  // as the line shows them, 150 ms apart at least
};

TEST_F(BootLoaderProtocol, EachFaultSwitchShowsOnTheWire) {
    const std::string rest = "\n00004711\r\n> ";
    const std::string half = std::string(kCatalog).substr(0, std::string(kCatalog).size() / 2);
    const std::vector<FaultCase> cases = {
        {"echo in two pieces", {"--echo-pieces", "2"}, "GETSN", {"GET", "SN\r" + rest}},
        {"echo in three pieces", {"--echo-pieces", "3"}, "GETSN", {"GE", "TS", "N\r" + rest}},
        {"answer in two pieces", {"--answer-pieces", "2"}, "GETSN", {"GETSN\r", "\n000047", "11\r\n> "}},
        {"answer after a delay", {"--answer-delay", "400"}, "GETSN", {"GETSN\r", rest}},
        {"silence", {"--silent"}, "GETSN", {}},
        {"noise", {"--noise", "\\x13#x"}, "GETSN", {"\x13#xGETSN\r" + rest}},
        {"no LF", {"--no-lf"}, "GETSN", {"GETSN\r00004711\r\n> "}},
        {"text behind the prompt", {"--after-prompt", "?\\r\\n"}, "GETSN", {"GETSN\r" + rest + "?\r\n"}},
        {"lower-case ok", {"--lowercase-ok"}, "SETAPPCFG 030000000000", {Framed("SETAPPCFG 030000000000", "ok")}},
        {"error to all", {"--error-all"}, "GETVER", {Framed("GETVER", "Error!")}},
        {"error to GETSN", {"--error-on", "GETSN"}, "GETSN", {Framed("GETSN", "Error!")}},
        {"error to GETSN only", {"--error-on", "GETSN"}, "GETNAME", {Framed("GETNAME", "Sniffer")}},
        {"UID of 15", {"--uid-length", "15"}, "GETUID", {Framed("GETUID", "0123456789ABCDE")}},
        {"UID of 17", {"--uid-length", "17"}, "GETUID", {Framed("GETUID", "0123456789ABCDEF0")}},
        {"wrong UID", {"--wrong-uid"}, "GETUID", {Framed("GETUID", "0123456789ABCDE0")}},
        {"catalog missing", {"--catalog-missing"}, "GETINFOFILE", {Framed("GETINFOFILE", "Error!")}},
        {"catalog broken", {"--catalog-broken"}, "GETINFOFILE", {Framed("GETINFOFILE", half)}},
        {"configuration too short", {"--config-length", "5"}, "GETAPPCFG", {Framed("GETAPPCFG", "0300000000")}},
        {"configuration too long", {"--config-length", "7"}, "GETAPPCFG", {Framed("GETAPPCFG", "0300000000FF00")}},
    };
    const std::string profile = WriteProfile();
    for (const FaultCase& c : cases) {
        std::vector<std::string> args = {"--boot", "--profile", profile, "--piece-gap", "300"};
        args.insert(args.end(), c.switches.begin(), c.switches.end());
        ModuleProcess module(folder, args);
        DeviceLine line(module.Device());
        line.Send(c.command + "\r");
        EXPECT_EQ(line.Bursts(150, 700), c.bursts) << c.name;
    }
}

TEST_F(BootLoaderProtocol, EchoDelayHoldsTheWholeReply) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile(), "--echo-delay", "600"});
    DeviceLine line(module.Device());
    const auto start = Clock::now();
    EXPECT_EQ(line.Exchange("GETSN\r"), Framed("GETSN", "00004711"));
    EXPECT_GE(MsSince(start), 550);
}

TEST_F(BootLoaderProtocol, VanishesWhenTheCommandAfterTheLastAnsweredComes) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile(), "--vanish-after-commands", "2"});
    const std::string device = module.Device();
    DeviceLine line(device);
    EXPECT_EQ(line.Exchange("GETSN\r"), Framed("GETSN", "00004711"));
    EXPECT_EQ(line.Exchange("GETVER\r"), Framed("GETVER", " 1.02.03 "));
    line.Send("GETNAME\r");
    EXPECT_EQ(line.Read(1000), "");
    EXPECT_EQ(module.WaitForExit(), 0);
    EXPECT_EQ(module.State("Mode"), "vanished");
    EXPECT_TRUE(line.Gone());
    EXPECT_TRUE(ListRegisteredModules().empty());
}

TEST_F(BootLoaderProtocol, RefusesAProfileItCannotReadNamingTheLine) {
    const std::vector<std::pair<std::string, std::string>> profiles = {
        {"GETSN = 1\nColour = red\n", ":2: unknown setting \"Colour\""},
        {"GETSN = \"1\n", ":1: the closing quote is missing"},
        {"\n\nGETSN = \\q\n", ":3: unknown escape \\q"},
        {"GETAPPCFG = 123\n", ":1: GETAPPCFG needs an even number of hex digits"},
        {"GETINFOFILE = x.xml\n", ":1: GETINFOFILE is answered by the module itself"},
        {"Xmodem = fast\n", ":1: Xmodem is CRC or Checksum"},
        {"GETSN\n", ":1: a line is KEY = VALUE"},
    };
    for (const auto& [text, message] : profiles) {
        TempFolder::Write(folder.File("bad.profile"), text);
        ModuleProcess module(folder, {"--profile", folder.File("bad.profile")});
        EXPECT_EQ(module.Device(), "") << text;
        EXPECT_EQ(module.WaitForExit(), 1) << text;
        EXPECT_NE(TempFolder::Read(folder.File("module.err")).find("bad.profile" + message), std::string::npos)
            << TempFolder::Read(folder.File("module.err"));
        std::remove(folder.File("module.err").c_str());
    }
}

// The demonstration profile: its configuration has the length of the catalog
// it serves, and an Id that the catalog knows.
TEST_F(BootLoaderProtocol, SampleProfileServesTheSampleCatalogAndAConfigurationItKnows) {
    ModuleProcess module(folder, {"--boot", "--profile", FromSource("data/SampleModule.profile")});
    DeviceLine line(module.Device());
    auto answer = [&](const std::string& command) {
        const std::string reply = line.Exchange(command + "\r");
        const size_t start = command.size() + 2;
        return reply.size() >= start + 4 ? reply.substr(start, reply.size() - start - 4) : std::string();
    };
    DeviceInfo device;
    device.InfoFile = answer("GETINFOFILE");
    EXPECT_EQ(device.InfoFile, TempFolder::Read(FromSource("data/SampleCatalog.xml")));
    std::string reason;
    ASSERT_TRUE(LoadCatalog(device, reason)) << reason;
    const std::string image = answer("GETAPPCFG");
    EXPECT_EQ(image.size(), 2u * static_cast<size_t>(device.Options.CfgLen));
    const std::string id = Uint32ToHex(BytesToUint32(HexToBytes(image.substr(0, 8))));
    EXPECT_GE(FindPredefCfgById(device, id), 0) << id;
    EXPECT_EQ(answer("GETUID").size(), 16u);
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <nlohmann/json.hpp>
#include <sstream>

#include "CliRun.h"
#include "FirmwareImage.h"
#include "ModuleProcess.h"
#include "helpers/IniFile.h"

// flash --all, station and --serial of servicebay-cli against virtual
// modules, each with a USB serial of its own. The program runs from a copy
// in the test's folder, so that the sniffer.ini beside it is the test's.
namespace sb::test {
namespace {

using nlohmann::json;

class ProductionCommands : public ModuleTest {
protected:
    ProductionCommands() {
        std::filesystem::create_directories(folder.File("bin"));
        std::filesystem::copy_file(FromEnvironment("SB_BIN_DIR") + "/servicebay-cli",
                                   folder.File("bin/servicebay-cli"));
        TempFolder::Write(folder.File("catalog.xml"), kCatalog);
        TempFolder::Write(folder.File("fw.cod"), firmware);
    }

    ModuleProcess& Plug(const std::string& serial, std::vector<std::string> args) {
        const std::string profile = folder.File(serial + ".profile");
        TempFolder::Write(profile, std::string(kProfile) + "UsbSerial = " + serial + "\nReportOk = Flash OK\\r\\n\n");
        args.insert(args.end(), {"--profile", profile, "--firmware-out", folder.File(serial + ".bin")});
        modules.push_back(std::make_unique<ModuleProcess>(folder, serial, args));
        return *modules.back();
    }

    CliRun Cli(const std::vector<std::string>& args) {
        const std::string bin = FromEnvironment("SB_BIN_DIR");
        ::setenv("SB_BIN_DIR", folder.File("bin").c_str(), 1);
        CliRun run = RunCli(folder, args);
        ::setenv("SB_BIN_DIR", bin.c_str(), 1);
        return run;
    }

    // serial -> result of its log lines, in order.
    std::map<std::string, std::vector<std::string>> LogResults(std::vector<json>* lines = nullptr) const {
        std::map<std::string, std::vector<std::string>> results;
        std::istringstream log(TempFolder::Read(folder.File("run.log")));
        for (std::string line; std::getline(log, line);) {
            const json entry = json::parse(line);
            results[entry["usb_serial"]].push_back(entry["result"]);
            if (lines) lines->push_back(entry);
        }
        return results;
    }

    const std::string firmware = RandomBytes(5000, 7);
    std::vector<std::unique_ptr<ModuleProcess>> modules;
};

TEST_F(ProductionCommands, FlashAllProgramsEveryModuleInBootModeAndNamesTheOneThatVanished) {
    Plug("SB0001", {"--boot"});
    Plug("SB0002", {"--boot"});
    Plug("SB0003", {"--boot", "--vanish-after-blocks", "2"});
    Plug("SB0004", {});  // running: not taken
    const CliRun run = Cli({"flash", folder.File("fw.cod"), "--all", "--production", "--log", folder.File("run.log")});

    EXPECT_EQ(run.status, 23) << run.err;
    EXPECT_NE(run.err.find("Not programmed: SB0003."), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("2 of 3 modules programmed; failed: SB0003"), std::string::npos) << run.out;
    std::vector<json> lines;
    const auto results = LogResults(&lines);
    EXPECT_EQ(results, (std::map<std::string, std::vector<std::string>>{
                           {"SB0001", {"programmed"}}, {"SB0002", {"programmed"}}, {"SB0003", {"not downloaded"}}}));
    std::set<int> numbers;
    for (const json& line : lines) {
        EXPECT_EQ(line["firmware_size"], 5000);
        if (line["result"] != "programmed") continue;
        EXPECT_EQ(line["bytes_programmed"], 5120);
        EXPECT_EQ(line["SN"], "00004711");
        numbers.insert(line["record_number"].get<int>());
        EXPECT_EQ(TempFolder::Read(folder.File(line["usb_serial"].get<std::string>() + ".bin")),
                  PaddedToWholeBlocks(firmware));
    }
    // The two children counted in one sniffer.ini without sharing a number.
    EXPECT_EQ(numbers, (std::set<int>{1, 2}));
    EXPECT_EQ(IniReadValue("STAT", "QTY", "-", folder.File("bin/sniffer.ini")), "2");
}

TEST_F(ProductionCommands, AStationProgramsModulesPluggedInOneAfterAnotherOnceEach) {
    const std::string bin = FromEnvironment("SB_BIN_DIR");
    ::setenv("SB_BIN_DIR", folder.File("bin").c_str(), 1);
    const std::string command = ShellQuoted(folder.File("bin/servicebay-cli")) + " station " +
                                ShellQuoted(folder.File("fw.cod")) + " --run-after --count 2 --log " +
                                ShellQuoted(folder.File("run.log")) + " >" + ShellQuoted(folder.File("out")) +
                                " 2>&1 </dev/null & echo $! >" + ShellQuoted(folder.File("pid"));
    ASSERT_EQ(std::system(command.c_str()), 0);
    ::setenv("SB_BIN_DIR", bin.c_str(), 1);
    const pid_t station = std::stoi(TempFolder::Read(folder.File("pid")));
    const auto said = [&] { return TempFolder::Read(folder.File("out")); };

    // A running module first: through its boot loader, programmed, started
    // again, and left alone when it is back; then one in boot mode.
    ModuleProcess& first = Plug("SB0101", {});
    EXPECT_TRUE(Eventually([&] { return LogResults().size() == 1; }, 30000)) << said();
    EXPECT_TRUE(first.WaitForState("Mode", "running", 10000)) << said();
    Plug("SB0102", {"--boot"});
    EXPECT_TRUE(Eventually([&] { return said().find("modules programmed") != std::string::npos; }, 30000)) << said();
    ::kill(station, SIGTERM);

    EXPECT_EQ(LogResults(), (std::map<std::string, std::vector<std::string>>{{"SB0101", {"programmed"}},
                                                                            {"SB0102", {"programmed"}}}));
    EXPECT_NE(said().find("2 of 2 modules programmed"), std::string::npos) << said();
    EXPECT_EQ(TempFolder::Read(folder.File("SB0102.bin")), PaddedToWholeBlocks(firmware));
}

TEST_F(ProductionCommands, SerialFindsTheModuleAndSendsARunningOneIntoItsBootLoader) {
    Plug("SB0201", {});
    Plug("SB0202", {"--boot"});
    Plug("SB0202", {"--boot"});
    const CliRun info = Cli({"info", "--serial", "SB0201"});
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_NE(info.out.find("SN: 00004711"), std::string::npos) << info.out;
    EXPECT_TRUE(modules[0]->WaitForState("Mode", "boot"));
    EXPECT_EQ(Cli({"info", "--serial", "SB0299"}).status, 21);
    EXPECT_EQ(Cli({"info", "--serial", "SB0202"}).status, 22);
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "CliRun.h"
#include "FirmwareImage.h"
#include "ModuleProcess.h"

// flash --all and station of servicebay-cli against virtual modules, each
// with a USB serial of its own. The program runs from a copy in the test's
// folder, so that the sniffer.ini beside it is the test's.
namespace sb::test {
namespace {

using nlohmann::json;
using Results = std::map<std::string, std::vector<std::string>>;  // serial -> result of its log lines, in order

class ProductionCommands : public ModuleTest {
protected:
    ProductionCommands() {
        std::filesystem::create_directories(folder.File("bin"));
        std::filesystem::copy_file(FromEnvironment("SB_BIN_DIR") + "/servicebay-cli", bin + "/servicebay-cli");
        TempFolder::Write(folder.File("fw.cod"), firmware);
    }

    // The sample module under a serial of its own, its firmware kept in <serial>.bin.
    ModuleProcess& Plug(const std::string& serial, std::vector<std::string> args) {
        const std::string profile = folder.File(serial + ".profile");
        const std::string sample = TempFolder::Read(SampleFile("SampleModule.profile"));
        TempFolder::Write(profile, sample + "UsbSerial = " + serial + "\n");
        args.insert(args.end(), {"--profile", profile, "--firmware-out", folder.File(serial + ".bin")});
        modules.push_back(std::make_unique<ModuleProcess>(folder, serial, args));
        return *modules.back();
    }

    Results LogResults(std::vector<json>* lines = nullptr) const {
        Results results;
        std::istringstream log(TempFolder::Read(folder.File("run.log")));
        for (std::string line; std::getline(log, line);) {
            const json entry = json::parse(line);
            results[entry["usb_serial"]].push_back(entry["result"]);
            if (lines) lines->push_back(entry);
        }
        return results;
    }

    const std::string bin = folder.File("bin");
    const std::string firmware = RandomBytes(5000, 7);
    std::vector<std::unique_ptr<ModuleProcess>> modules;
};

TEST_F(ProductionCommands, FlashAllProgramsEveryModuleInBootModeAndNamesTheOneThatVanished) {
    Plug("SB0001", {"--boot"});
    Plug("SB0002", {"--boot"});
    Plug("SB0003", {"--boot", "--vanish-after-blocks", "2"});
    Plug("SB0004", {});  // running: not taken
    const CliRun run =
        RunCli(folder, {"flash", folder.File("fw.cod"), "--all", "--production", "--log", folder.File("run.log")}, bin);

    EXPECT_EQ(run.status, 23) << run.err;
    EXPECT_NE(run.err.find("Not programmed: SB0003."), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("2 of 3 modules programmed; failed: SB0003"), std::string::npos) << run.out;
    std::vector<json> lines;
    EXPECT_EQ(LogResults(&lines), (Results{{"SB0001", {"programmed"}}, {"SB0002", {"programmed"}},
                                           {"SB0003", {"not downloaded"}}}));
    std::set<int> numbers;
    for (const json& line : lines) {
        if (line["result"] != "programmed") continue;
        EXPECT_EQ(line["bytes_programmed"], 5120);
        EXPECT_EQ(line["SN"], "20240117");
        numbers.insert(line["record_number"].get<int>());
        EXPECT_EQ(TempFolder::Read(folder.File(line["usb_serial"].get<std::string>() + ".bin")),
                  PaddedToWholeBlocks(firmware));
    }
    // The two children counted in one sniffer.ini without sharing a number.
    EXPECT_EQ(numbers, (std::set<int>{1, 2}));
}

TEST_F(ProductionCommands, AStationProgramsModulesPluggedInOneAfterAnotherOnceEach) {
    const std::string command = ShellQuoted(bin + "/servicebay-cli") + " station " +
                                ShellQuoted(folder.File("fw.cod")) + " --run-after --count 2 --log " +
                                ShellQuoted(folder.File("run.log")) + " >" + ShellQuoted(folder.File("out")) +
                                " 2>&1 </dev/null & echo $! >" + ShellQuoted(folder.File("pid"));
    ASSERT_EQ(std::system(command.c_str()), 0);
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

    EXPECT_EQ(LogResults(), (Results{{"SB0101", {"programmed"}}, {"SB0102", {"programmed"}}}));
    EXPECT_NE(said().find("2 of 2 modules programmed"), std::string::npos) << said();
    EXPECT_EQ(TempFolder::Read(folder.File("SB0102.bin")), PaddedToWholeBlocks(firmware));
}

}  // namespace
}  // namespace sb::test

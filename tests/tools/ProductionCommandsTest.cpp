#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "CliRun.h"
#include "FirmwareImage.h"
#include "ModuleProcess.h"

// flash --all and station of servicebay-cli against virtual modules. The
// program runs from a copy in the test's folder, so that the sniffer.ini
// beside it is the test's.
namespace sb::test {
namespace {

using nlohmann::json;
using Results = std::map<std::string, std::multiset<std::string>>;  // serial -> results of its lines

class ProductionCommands : public ModuleTest {
protected:
    ProductionCommands() {
        std::filesystem::create_directories(folder.File("bin"));
        std::filesystem::copy_file(FromEnvironment("SB_BIN_DIR") + "/servicebay-cli", bin + "/servicebay-cli");
        TempFolder::Write(fw, firmware);
    }
    ~ProductionCommands() override {
        if (station > 0) ::kill(station, SIGKILL);
    }

    // The sample module under a serial (several may share one), its firmware kept in <name>.bin.
    ModuleProcess& Plug(const std::string& name, const std::string& serial, std::vector<std::string> args) {
        const std::string profile = folder.File(name + ".profile");
        const std::string sample = TempFolder::Read(SampleFile("SampleModule.profile"));
        TempFolder::Write(profile, sample + "UsbSerial = " + serial + "\n");
        args.insert(args.end(), {"--profile", profile, "--firmware-out", folder.File(name + ".bin")});
        modules.push_back(std::make_unique<ModuleProcess>(folder, name, args));
        return *modules.back();
    }

    // The JSON lines of a text (the log, or standard error), by serial.
    static Results ResultsOf(const std::string& text, std::vector<json>* lines = nullptr) {
        Results results;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) {
            if (!line.starts_with('{')) continue;
            const json entry = json::parse(line);
            results[entry["usb_serial"]].insert(entry["result"]);
            if (lines) lines->push_back(entry);
        }
        return results;
    }
    Results LogResults(std::vector<json>* lines = nullptr) const { return ResultsOf(TempFolder::Read(log), lines); }

    // servicebay-cli station in the background: what it says in "out", its
    // exit status in "status" once it has ended.
    void StartStation(const std::vector<std::string>& args) {
        std::string command = "sh -c 'echo $$ >pid; exec \"$0\" \"$@\"' " + ShellQuoted(bin + "/servicebay-cli") +
                              " station " + ShellQuoted(fw) + " --log " + ShellQuoted(log);
        for (const std::string& arg : args) command += " " + ShellQuoted(arg);
        command = "cd " + ShellQuoted(folder.Path()) + " && (" + command + " >out 2>&1 </dev/null; echo $? >status) &";
        ASSERT_EQ(std::system(command.c_str()), 0);
        ASSERT_TRUE(Eventually([&] { return !TempFolder::Read(folder.File("pid")).empty(); }));
        station = std::stoi(TempFolder::Read(folder.File("pid")));
    }
    std::string Said() const { return TempFolder::Read(folder.File("out")); }
    // The station's exit status once it has ended by itself; -1 when it does not.
    int Ended() const {
        std::string status;
        Eventually([&] { return !(status = TempFolder::Read(folder.File("status"))).empty(); }, 30000);
        return status.empty() ? -1 : std::stoi(status);
    }

    const std::string bin = folder.File("bin");
    const std::string fw = folder.File("fw.cod");
    const std::string log = folder.File("run.log");
    const std::string firmware = RandomBytes(5000, 7);
    std::vector<std::unique_ptr<ModuleProcess>> modules;
    pid_t station = -1;
};

// Two modules of one serial are two modules.
TEST_F(ProductionCommands, FlashAllProgramsEveryModuleInBootModeByItsPortAndNamesTheOneThatVanished) {
    Plug("a", "SB0001", {"--boot"});
    Plug("b", "SB0002", {"--boot"});
    Plug("c", "SB0002", {"--boot", "--vanish-after-blocks", "2"});
    Plug("d", "SB0004", {});  // running: not taken
    const CliRun run =
        RunCli(folder, {"flash", fw, "--all", "--production", "--log", log, "--station", "line 7"}, bin);

    EXPECT_EQ(run.status, 23) << run.err;
    EXPECT_NE(run.err.find("Not programmed: SB0002 (" + modules[2]->Device() + ")."), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("2 of 3 modules programmed; failed: SB0002"), std::string::npos) << run.out;
    std::vector<json> lines;
    EXPECT_EQ(LogResults(&lines), (Results{{"SB0001", {"programmed", "started"}},
                                           {"SB0002", {"not downloaded", "programmed", "started", "started"}}}));
    std::set<int> numbers;
    for (const json& line : lines) {
        EXPECT_EQ(line["station"], "line 7");
        if (line["result"] != "programmed") continue;
        EXPECT_EQ(line["bytes_programmed"], 5120);
        EXPECT_EQ(line["SN"], "20240117");
        numbers.insert(line["record_number"].get<int>());
    }
    for (const char* name : {"a", "b"})
        EXPECT_EQ(TempFolder::Read(folder.File(name + std::string(".bin"))), PaddedToWholeBlocks(firmware));
    // The two children counted in one sniffer.ini without sharing a number.
    EXPECT_EQ(numbers, (std::set<int>{1, 2}));
}

// A disk that fills under the log: the modules finish, each line that could
// not be logged is on standard error, and the summary stands.
TEST_F(ProductionCommands, FlashAllOnAFullDiskFinishesItsModulesAndPutsTheirLinesOnStandardError) {
    Plug("a", "SB0201", {"--boot"});
    Plug("b", "SB0202", {"--boot"});
    constexpr size_t kLimit = 65536;
    TempFolder::Write(log, "{\"earlier\":\"" + std::string(kLimit - 100 - 15, 'x') + "\"}\n");
    const CliRun run = RunCli(folder, {"flash", fw, "--all", "--log", log}, bin,
                              "trap '' XFSZ; prlimit --fsize=" + std::to_string(kLimit) + " ");

    EXPECT_EQ(run.status, 24) << run.err;
    EXPECT_EQ(ResultsOf(run.err),
              (Results{{"SB0201", {"programmed", "started"}}, {"SB0202", {"programmed", "started"}}}));
    EXPECT_NE(run.out.find("2 of 2 modules programmed"), std::string::npos) << run.out;
    EXPECT_EQ(TempFolder::Read(folder.File("b.bin")), PaddedToWholeBlocks(firmware));
}

// A running module first: through its boot loader, programmed, started
// again, and left alone when it is back, which the station says; then one
// more of its serial, beside it, in boot mode.
TEST_F(ProductionCommands, AStationProgramsEachModulePluggedInOnceAndSaysWhichItLeavesAlone) {
    StartStation({"--run-after", "--count", "2"});
    ModuleProcess& first = Plug("first", "SB0101", {});
    EXPECT_TRUE(Eventually([&] { return LogResults()["SB0101"].count("programmed") == 1; }, 30000)) << Said();
    EXPECT_TRUE(first.WaitForState("Mode", "running", 10000)) << Said();
    EXPECT_TRUE(Eventually([&] { return Said().find("SB0101  skipped") != std::string::npos; }, 10000)) << Said();
    Plug("second", "SB0101", {"--boot"});

    EXPECT_EQ(Ended(), 0) << Said();
    EXPECT_EQ(LogResults(), (Results{{"SB0101", {"programmed", "programmed", "started", "started"}}}));
    EXPECT_NE(Said().find("2 of 2 modules programmed"), std::string::npos) << Said();
    EXPECT_EQ(TempFolder::Read(folder.File("second.bin")), PaddedToWholeBlocks(firmware));
}

// A closed terminal stops the station as Ctrl-C does: the module in hand (on
// its way into its boot loader, which takes it a while) is finished.
TEST_F(ProductionCommands, AStationThatIsHungUpFinishesTheModuleInHand) {
    StartStation({});
    Plug("slow", "SB0301", {"--reenumerate-ms", "3000"});
    EXPECT_TRUE(Eventually([&] { return LogResults()["SB0301"].count("started") == 1; }, 30000)) << Said();
    ::kill(station, SIGHUP);
    EXPECT_EQ(Ended(), 0) << Said();
    EXPECT_EQ(LogResults(), (Results{{"SB0301", {"programmed", "started"}}}));
    EXPECT_NE(Said().find("1 of 1 modules programmed"), std::string::npos) << Said();
}

// Seen while no module comes.
TEST_F(ProductionCommands, AStationWhoseFirmwareFileChangesEndsAtOnce) {
    StartStation({});
    EXPECT_TRUE(Eventually([&] { return Said().find("Waiting for modules") != std::string::npos; })) << Said();
    TempFolder::Write(fw, "another firmware");
    EXPECT_EQ(Ended(), 25) << Said();
}

}  // namespace
}  // namespace sb::test

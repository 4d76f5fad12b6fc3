#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "CliRun.h"
#include "ModuleProcess.h"
#include "helpers/IniFile.h"
#include "FirmwareImage.h"

// servicebay-cli flash against the virtual module. The program runs from a
// copy in the test's folder, so that the sniffer.ini beside it is the test's.
namespace sb::test {
namespace {

class FlashCommand : public ModuleTest {
protected:
    FlashCommand() {
        std::filesystem::create_directories(folder.File("bin"));
        std::filesystem::copy_file(FromEnvironment("SB_BIN_DIR") + "/servicebay-cli",
                                   folder.File("bin/servicebay-cli"));
    }

    CliRun Flash(std::vector<std::string> args) {
        args.insert(args.begin(), "flash");
        const std::string bin = FromEnvironment("SB_BIN_DIR");
        ::setenv("SB_BIN_DIR", folder.File("bin").c_str(), 1);
        CliRun run = RunCli(folder, args);
        ::setenv("SB_BIN_DIR", bin.c_str(), 1);
        return run;
    }

    // A module in boot mode that keeps what it receives in the folder.
    std::unique_ptr<ModuleProcess> Module(std::vector<std::string> faults = {}) {
        std::vector<std::string> args = {"--boot", "--profile",
                                         WriteProfile("ReportOk = Flash OK\\r\\n\nReportFailed = Flash ERROR\\r\\n\n"),
                                         "--firmware-out", Received()};
        args.insert(args.end(), faults.begin(), faults.end());
        return std::make_unique<ModuleProcess>(folder, args);
    }

    std::string Firmware(const std::string& data) const {
        TempFolder::Write(folder.File("fw.cod"), data);
        return folder.File("fw.cod");
    }
    std::string Received() const { return folder.File("received.bin"); }
    std::string Ini() const { return folder.File("bin/sniffer.ini"); }
};

TEST_F(FlashCommand, TheModuleHoldsExactlyTheFileAsWholeBlocks) {
    for (const size_t size : {size_t{1}, size_t{1024}, size_t{3000}}) {
        const std::string data = RandomBytes(size, static_cast<unsigned>(size));
        const auto module = Module();
        const CliRun run = Flash({"--port", module->Device(), Firmware(data)});
        const std::string programmed = std::to_string((size / 1024 + 1) * 1024);

        EXPECT_EQ(run.status, 0) << size << run.err;
        EXPECT_EQ(run.out, "Update completed succesfully\nReport:Flash OK\n\n " + programmed + " bytes programmed\n")
            << size;
        EXPECT_EQ(TempFolder::Read(Received()), PaddedToWholeBlocks(data)) << size;
        // Not a terminal: the progress in plain lines, the last one at 100 %.
        EXPECT_NE(run.err.find("Transfer 100%  " + std::to_string(size) + " of " + std::to_string(size) + " bytes"),
                  std::string::npos)
            << size << run.err;
        EXPECT_FALSE(std::filesystem::exists(Ini())) << size;
    }
}

TEST_F(FlashCommand, ProductionAddsARecordBesideTheProgramEachTime) {
    const auto module = Module();
    for (const int n : {1, 2}) {
        const CliRun run = Flash({"--port", module->Device(), Firmware("firmware"), "--production", "--json"});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find("\"end\": \"programmed\""), std::string::npos) << run.out;
        EXPECT_NE(run.out.find("\"written\": true, \"end\": \"written\", \"number\": " + std::to_string(n)),
                  std::string::npos)
            << run.out;
        EXPECT_EQ(IniReadValue("STAT", "QTY", "", Ini()), std::to_string(n));
        const std::string section = "STAT_0000000" + std::to_string(n);
        EXPECT_EQ(IniReadValue(section, "SN", "", Ini()), "00004711");
        EXPECT_EQ(IniReadValue(section, "Ver", "", Ini()), "1.02.03");
        EXPECT_EQ(IniReadValue(section, "UID", "", Ini()), "0123456789ABCDEF");
    }
}

TEST_F(FlashCommand, ItsExitStatusTellsEachFailure) {
    const struct {
        const char* name;
        std::vector<std::string> faults;
        std::vector<std::string> args;  // behind the port and the file
        std::string data;
        int status;
        std::string err;
    } cases[] = {
        {"an empty file", {}, {}, "", 6, "Error when reading binary file!"},
        {"a cancelled download", {"--xmodem-cancel-after", "1"}, {}, RandomBytes(3000, 1), 5, "Retry ? no"},
        {"a refused download tried twice",
         {"--xmodem-refuse"},
         {"--retries", "1"},
         "x",
         5,
         "Report:Flash ERROR\n\nRetry ? yes\n"},
        {"a module that vanishes",
         {"--vanish-after-blocks", "1"},
         {},
         RandomBytes(3000, 2),
         5,
         "Binary File was not downloaded\n"},
        {"a UID of 15 characters",
         {"--uid-length", "15"},
         {"--production"},
         "x",
         4,
         "No production record: the UID has not 16 characters."},
    };
    for (const auto& c : cases) {
        const auto module = Module(c.faults);
        std::vector<std::string> args = {"--port", module->Device(), Firmware(c.data)};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const CliRun run = Flash(args);
        EXPECT_EQ(run.status, c.status) << c.name << run.err;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << c.name << run.err;
        if (c.status == 5) {
            EXPECT_NE(run.err.find("Retry ? no\n"), std::string::npos) << c.name << run.err;
        }
        EXPECT_FALSE(std::filesystem::exists(Ini())) << c.name;
    }

    const CliRun missing = Flash({"--port", "ttyNothing", folder.File("missing.cod")});
    EXPECT_EQ(missing.status, 6);
    EXPECT_EQ(missing.err, "Binary file does not exist!\n");
    const CliRun noPort = Flash({"--port", folder.File("no-such-device"), Firmware("x")});
    EXPECT_EQ(noPort.status, 3);
    EXPECT_NE(noPort.err.find("CommPort Error\nCannot open"), std::string::npos) << noPort.err;
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <filesystem>

#include "CliRun.h"
#include "FirmwareImage.h"
#include "ModuleProcess.h"
#include "helpers/IniFile.h"

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

    // A module in boot mode with the faults given, then the flash of data.
    CliRun Flash(const std::string& data, std::vector<std::string> args, std::vector<std::string> faults = {}) {
        faults.insert(faults.end(), {"--boot", "--firmware-out", folder.File("received.bin"), "--profile",
                                     WriteProfile("ReportOk = Flash OK\\r\\n\nReportFailed = Flash ERROR\\r\\n\n")});
        if (!module) module = std::make_unique<ModuleProcess>(folder, faults);
        if (data == "-")
            std::filesystem::remove(folder.File("fw.cod"));  // none
        else
            TempFolder::Write(folder.File("fw.cod"), data);
        args.insert(args.begin(), {"flash", "--port", module->Device(), folder.File("fw.cod")});
        const std::string bin = FromEnvironment("SB_BIN_DIR");
        ::setenv("SB_BIN_DIR", folder.File("bin").c_str(), 1);
        CliRun run = RunCli(folder, args);
        ::setenv("SB_BIN_DIR", bin.c_str(), 1);
        return run;
    }
    std::string Ini(const std::string& section, const std::string& key) const {
        return IniReadValue(section, key, "-", folder.File("bin/sniffer.ini"));
    }

    std::unique_ptr<ModuleProcess> module;
};

TEST_F(FlashCommand, TheModuleHoldsTheFileAndEachProductionRunAddsARecordBesideTheProgram) {
    const std::string data = RandomBytes(3000, 1);
    const CliRun plain = Flash(data, {});
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_EQ(plain.out, "Update completed succesfully\nReport:Flash OK\n\n 3072 bytes programmed\n");
    EXPECT_EQ(TempFolder::Read(folder.File("received.bin")), PaddedToWholeBlocks(data));
    // Not a terminal: the progress in plain lines, the last one at 100 %.
    EXPECT_NE(plain.err.find("Transfer 100%  3000 of 3000 bytes"), std::string::npos) << plain.err;
    EXPECT_EQ(Ini("STAT", "QTY"), "-");
    for (const int n : {1, 2}) {
        const CliRun run = Flash("firmware", {"--production", "--json"});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find("\"written\":true,\"end\":\"written\",\"number\":" + std::to_string(n)),
                  std::string::npos)
            << run.out;
        EXPECT_EQ(Ini("STAT_0000000" + std::to_string(n), "UID"), "0123456789ABCDEF");
    }
}

TEST_F(FlashCommand, ItsExitStatusTellsEachFailure) {
    const struct {
        const char* name;
        std::vector<std::string> faults, args;
        std::string data;
        int status;
        std::string err;
    } cases[] = {
        {"an empty file", {}, {}, "", 6, "Error when reading binary file!\n"},
        {"a refused download tried twice",
         {"--xmodem-refuse"},
         {"--retries", "1"},
         "x",
         5,
         "Report:Flash ERROR\n\nRetry ? yes\n"},
        {"a module that vanishes", {"--vanish-after-blocks", "1"}, {}, std::string(3000, 'v'), 5, "Retry ? no\n"},
        {"a UID of 15 characters",
         {"--uid-length", "15"},
         {"--production"},
         "x",
         4,
         "No production record: the UID has not 16 characters."},
        {"a missing file", {}, {}, "-", 6, "Binary file does not exist!\n"},
    };
    for (const auto& c : cases) {
        module.reset();
        const CliRun run = Flash(c.data, c.args, c.faults);
        EXPECT_EQ(run.status, c.status) << c.name << run.err;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << c.name << run.err;
        EXPECT_EQ(Ini("STAT", "QTY"), "-") << c.name;
    }
    TempFolder::Write(folder.File("fw.cod"), "x");
    const CliRun noPort = RunCli(folder, {"flash", "--port", folder.File("no-such-device"), folder.File("fw.cod")});
    EXPECT_EQ(noPort.status, 3);
    EXPECT_NE(noPort.err.find("CommPort Error\nCannot open"), std::string::npos) << noPort.err;
}

}  // namespace
}  // namespace sb::test

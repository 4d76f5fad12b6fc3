#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>

#include "../helpers/TempFolder.h"
#include "../link/ScriptedModule.h"
#include "FakeBootLoader.h"
#include "helpers/IniFile.h"
#include "update/UpdateRun.h"
#include "FirmwareImage.h"

// Whole update runs against the fake boot loader, with the screen's parts
// played by hooks.
namespace sb {
namespace {

using test::PaddedToWholeBlocks;
using test::TempFolder;
using ui::MessageAnswer;

std::string Firmware(size_t size, char seed) {
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(seed + i * 13);
    return data;
}

std::string Success(const std::string& report, int32_t programmed) {
    return "Update completed succesfully\r\nReport:" + report + "\r\n " + std::to_string(programmed) +
           " bytes programmed";
}

std::string RetryQuestion(const std::string& report) {
    return "Download was completed with Errors\r\nReport:" + report + "\r\nRetry ?";
}

// The update screen without a screen.
struct Rig {
    Rig() { fileName = WriteFirmware("fw.cod", Firmware(1000, 'a')); }

    std::string WriteFirmware(const std::string& name, const std::string& data) const {
        TempFolder::Write(folder.File(name), data);
        return folder.File(name);
    }

    UpdateOutcome Run(bool production = false) {
        UpdateHooks hooks;
        hooks.FileName = [this] { return fileName; };
        hooks.ChoosePort = [this] {
            ++portChoices;
            return selPort;
        };
        hooks.ShowMessage = [this](const std::string& text, ui::MessageButtons buttons) {
            messages.push_back(text);
            if (onMessage) onMessage();
            if (buttons == ui::MessageButtons::Ok || answers.empty()) return MessageAnswer::Ok;
            const auto answer = answers.front();
            answers.pop_front();
            return answer;
        };
        hooks.EnableStart = [this](bool enabled) { enables.push_back(enabled); };
        UpdateRun run(port, status, hooks);
        start = clock.Now();
        return run.Run(production, IniPath());
    }

    std::string IniPath() const { return folder.File("sniffer.ini"); }
    int Count(const std::string& call) const {
        return static_cast<int>(std::count(port.calls.begin(), port.calls.end(), call));
    }

    TempFolder folder;
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    test::FakeBootLoader module{port, clock};
    std::string fileName;
    std::string selPort = "ttyACM0";
    std::deque<MessageAnswer> answers;
    std::function<void()> onMessage;
    std::vector<std::string> messages;
    std::vector<bool> enables;
    int portChoices = 0;
    int64_t start = 0;
};

const std::vector<bool> kDisabledThenEnabled = {false, true};

TEST(UpdateRun, DownloadsTheFileIntoTheModuleAndTellsTheBlocksProgrammed) {
    // The number is 1024 times the blocks, not the file's size.
    for (const auto& [size, programmed] : {std::pair{1000, 1024}, std::pair{2048, 3072}}) {
        Rig rig;
        const std::string data = Firmware(size, 'x');
        rig.fileName = rig.WriteFirmware("fw.cod", data);
        const UpdateOutcome outcome = rig.Run();

        EXPECT_EQ(outcome.End, UpdateEnd::Programmed) << size;
        EXPECT_EQ(outcome.Result, programmed) << size;
        EXPECT_EQ(rig.module.image, PaddedToWholeBlocks(data)) << size;
        EXPECT_EQ(rig.messages, std::vector<std::string>{Success("Flash OK\r\n", programmed)}) << size;
        EXPECT_EQ(rig.status.Text(),
                  "Update completed succesfully\r\n " + std::to_string(programmed) + " bytes programmed")
            << size;
        const std::vector<std::string> opening = {
            "SetCommPort(ttyACM0)", "SetSettings(300, N, 8, 1)", "SetInputLen(0)",         "SetRThreshold(0)",
            "SetSThreshold(0)",     "SetInBufferSize(8192)",     "SetOutBufferSize(8192)", "SetPortOpen(true)"};
        EXPECT_TRUE(std::equal(opening.begin(), opening.end(), rig.port.calls.begin())) << size;
        EXPECT_EQ(rig.port.calls.back(), "SetPortOpen(false)") << size;
        EXPECT_EQ(rig.port.written.front(), "\rBOOT\r") << size;
        EXPECT_EQ(rig.enables, kDisabledThenEnabled) << size;
        EXPECT_FALSE(std::filesystem::exists(rig.IniPath())) << size;
    }
}

TEST(UpdateRun, EndsWithItsMessageWhenFileOrPortIsMissing) {
    const struct {
        const char* name;
        std::string file;                    // in the rig's folder; "" for no name at all
        std::optional<std::string> content;  // none: the file is not made
        std::string selPort;
        UpdateEnd end;
        std::string message;
        int portChoices;
        bool portUsed;
    } cases[] = {
        {"no file chosen", "", {}, "ttyACM0", UpdateEnd::NoFile, "Binary file does not exist!", 0, false},
        {"a file that is gone", "gone.cod", {}, "ttyACM0", UpdateEnd::NoFile, "Binary file does not exist!", 0, false},
        {"a directory", ".", {}, "ttyACM0", UpdateEnd::NoFile, "Binary file does not exist!", 0, false},
        {"a hidden file", ".fw.cod", "data", "ttyACM0", UpdateEnd::NoFile, "Binary file does not exist!", 0, false},
        {"no port chosen", "fw.cod", "data", "", UpdateEnd::NoPort, "Cant find device in boot mode", 1, false},
        {"Not Found chosen", "fw.cod", "data", "Not Found", UpdateEnd::NoPort, "Cant find device in boot mode", 1,
         false},
        {"an empty file", "fw.cod", "", "ttyACM0", UpdateEnd::FileUnreadable, "Error when reading binary file!", 1,
         true},
    };
    for (const auto& c : cases) {
        Rig rig;
        std::filesystem::remove(rig.fileName);
        rig.selPort = c.selPort;
        rig.fileName = c.file.empty() ? "" : rig.folder.File(c.file);
        if (c.content) rig.WriteFirmware(c.file, *c.content);

        EXPECT_EQ(rig.Run().End, c.end) << c.name;
        EXPECT_EQ(rig.messages, std::vector<std::string>{c.message}) << c.name;
        EXPECT_EQ(rig.portChoices, c.portChoices) << c.name;
        EXPECT_EQ(!rig.port.calls.empty(), c.portUsed) << c.name;
        // An empty file is found only behind the boot command, and no retry is offered.
        EXPECT_EQ(rig.module.boots, c.portUsed ? 1 : 0) << c.name;
        EXPECT_FALSE(rig.port.PortOpen()) << c.name;
        EXPECT_EQ(rig.enables, kDisabledThenEnabled) << c.name;
    }
}

TEST(UpdateRun, ARetrySendsTheBootCommandAgainAndReadsTheFileAnew) {
    Rig rig;
    rig.module.cancelTransfers = 1;
    rig.answers = {MessageAnswer::Ok};
    const std::string second = Firmware(1500, 'z');
    rig.onMessage = [&rig, &second] {
        if (rig.messages.size() == 1) rig.WriteFirmware("fw.cod", second);
    };
    const UpdateOutcome outcome = rig.Run();

    EXPECT_EQ(outcome.End, UpdateEnd::Programmed);
    EXPECT_EQ(outcome.Tries, 2);
    EXPECT_EQ(rig.module.boots, 2);
    EXPECT_EQ(rig.module.image, PaddedToWholeBlocks(second));
    const std::vector<std::string> expected = {RetryQuestion("Flash ERROR\r\n"), Success("Flash OK\r\n", 2048)};
    EXPECT_EQ(rig.messages, expected);
    // The port stays open between the tries.
    EXPECT_EQ(rig.Count("SetPortOpen(true)"), 1);
    EXPECT_EQ(rig.enables, kDisabledThenEnabled);
}

TEST(UpdateRun, EveryFailedDownloadEndsInTheRetryQuestion) {
    const struct {
        const char* name;
        std::function<void(Rig&)> fault;
        std::string report;
    } cases[] = {
        {"cancelled", [](Rig& r) { r.module.cancelTransfers = 1; }, "Flash ERROR\r\n"},
        {"refused", [](Rig& r) { r.module.refuseBlocks = true; }, "Flash ERROR\r\n"},
        {"end unacknowledged", [](Rig& r) { r.module.ignoreEot = true; }, ""},
        {"vanished", [](Rig& r) { r.module.vanishAfterBlocks = 0; }, ""},
        {"port cannot be opened", [](Rig& r) { r.port.failOpen = true; }, ""},
    };
    for (const auto& c : cases) {
        Rig rig;
        c.fault(rig);
        rig.answers = {MessageAnswer::Cancel};
        const UpdateOutcome outcome = rig.Run();

        EXPECT_EQ(outcome.End, UpdateEnd::Abandoned) << c.name;
        EXPECT_LE(outcome.Result, 0) << c.name;
        EXPECT_EQ(rig.messages, std::vector<std::string>{RetryQuestion(c.report)}) << c.name;
        EXPECT_EQ(rig.status.Text(), "Binary File was not downloaded") << c.name;
        EXPECT_FALSE(rig.port.PortOpen()) << c.name;
        EXPECT_EQ(rig.enables, kDisabledThenEnabled) << c.name;
    }
}

TEST(UpdateRun, APortThatCannotBeOpenedPassesTheWaitsIntoTheRetry) {
    Rig rig;
    rig.port.failOpen = true;
    rig.answers = {MessageAnswer::Ok, MessageAnswer::Cancel};
    const UpdateOutcome outcome = rig.Run();

    EXPECT_EQ(outcome.Tries, 2);
    // The opening, and once more at the start of each try while it stays closed.
    EXPECT_EQ(rig.Count("SetPortOpen(true)"), 3);
    ASSERT_TRUE(outcome.OpenFailure.has_value());
    EXPECT_EQ(rig.messages.size(), 2u);
    // 500 ms behind the opening, 500 behind the try's opening, 500 behind the
    // boot command and 1000 before the report; the retry without the first.
    const int64_t elapsed = rig.clock.Now() - rig.start;
    EXPECT_GE(elapsed, 2500 + 2000);
    EXPECT_LT(elapsed, 2500 + 2000 + 300);
}

TEST(UpdateRun, TheProductionRecordFollowsOnlyASuccessfulDownloadWithTheFlag) {
    const struct {
        const char* name;
        bool production;
        bool cancel;
        bool recorded;
    } cases[] = {
        {"flag and success", true, false, true},
        {"flag and failure", true, true, false},
        {"success without the flag", false, false, false},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.module.cancelTransfers = c.cancel ? 1 : 0;
        rig.answers = {MessageAnswer::Cancel};
        const UpdateOutcome outcome = rig.Run(c.production);

        EXPECT_EQ(outcome.Record.has_value(), c.recorded) << c.name;
        EXPECT_EQ(IniReadValue("STAT_00000001", "UID", "", rig.IniPath()), c.recorded ? "3A0F5C21D4E8B907" : "")
            << c.name;
        EXPECT_EQ(rig.module.commands.empty(), !c.recorded) << c.name;
        EXPECT_EQ(rig.port.calls.back(), "SetPortOpen(false)") << c.name;
    }
}

}  // namespace
}  // namespace sb

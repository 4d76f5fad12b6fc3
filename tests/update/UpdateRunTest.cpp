#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <stdexcept>
#include <tuple>

#include "../helpers/TempFolder.h"
#include "../link/ScriptedModule.h"
#include "FakeBootLoader.h"
#include "FirmwareImage.h"
#include "helpers/IniFile.h"
#include "update/UpdateRun.h"

// Whole update runs against the fake boot loader, with the screen's parts
// played by hooks.
namespace sb {
namespace {

using test::TempFolder;
using ui::MessageAnswer;

std::string RetryQuestion(const std::string& report) {
    return "Download was completed with Errors\r\nReport:" + report + "\r\nRetry ?";
}

// The update screen without a screen. A port choice of "!" fails.
struct Rig {
    Rig() { fileName = Firmware("fw.cod", test::RandomBytes(1000, 1)); }

    std::string Firmware(const std::string& name, const std::string& data) const {
        TempFolder::Write(folder.File(name), data);
        return folder.File(name);
    }

    UpdateOutcome Run(bool production = false) {
        UpdateHooks hooks;
        hooks.FileName = [this] { return fileName; };
        hooks.ChoosePort = [this] {
            ++portChoices;
            return selPort == "!" ? throw std::runtime_error("no screen") : selPort;
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
        const UpdateOutcome outcome = UpdateRun(port, status, hooks).Run(production, IniPath());
        EXPECT_FALSE(port.PortOpen());
        EXPECT_EQ(enables, (std::vector<bool>{false, true}));
        return outcome;
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
    const int64_t start = clock.Now();
    std::string fileName;
    std::string selPort = "ttyACM0";
    std::deque<MessageAnswer> answers;
    std::function<void()> onMessage;
    std::vector<std::string> messages;
    std::vector<bool> enables;
    int portChoices = 0;
};

TEST(UpdateRun, DownloadsTheFileIntoTheModuleAndTellsTheBlocksProgrammed) {
    Rig rig;
    const UpdateOutcome outcome = rig.Run();
    EXPECT_EQ(outcome.End, UpdateEnd::Programmed);
    // 1024 times the blocks, not the file's 1000 bytes.
    EXPECT_EQ(rig.module.image, test::PaddedToWholeBlocks(test::RandomBytes(1000, 1)));
    EXPECT_EQ(rig.messages, std::vector<std::string>{
                                "Update completed succesfully\r\nReport:Flash OK\r\n\r\n 1024 bytes programmed"});
    EXPECT_EQ(rig.status.Text(), "Update completed succesfully\r\n 1024 bytes programmed");
    const std::vector<std::string> opening = {
        "SetCommPort(ttyACM0)", "SetSettings(300, N, 8, 1)", "SetInputLen(0)",         "SetRThreshold(0)",
        "SetSThreshold(0)",     "SetInBufferSize(8192)",     "SetOutBufferSize(8192)", "SetPortOpen(true)"};
    EXPECT_TRUE(std::equal(opening.begin(), opening.end(), rig.port.calls.begin()));
    EXPECT_EQ(rig.port.written.front(), "\rBOOT\r");
    EXPECT_FALSE(std::filesystem::exists(rig.IniPath()));
}

TEST(UpdateRun, EndsWithItsMessageWhenFileOrPortIsMissing) {
    const struct {
        const char* name;
        std::string file;  // in the rig's folder: a file of content, none for "-", a folder for "/"
        std::string content, selPort, message;
        int portChoices;
        int boots;
    } cases[] = {
        {"no file chosen", "", "-", "ttyACM0", "Binary file does not exist!", 0, 0},
        {"a file that is gone", "gone.cod", "-", "ttyACM0", "Binary file does not exist!", 0, 0},
        {"a directory", "fw", "/", "ttyACM0", "Binary file does not exist!", 0, 0},
        {"a hidden file", ".fw.cod", "data", "ttyACM0", "Binary file does not exist!", 0, 0},
        {"no port chosen", "fw.cod", "data", "", "Cant find device in boot mode", 1, 0},
        {"Not Found chosen", "fw.cod", "data", "Not Found", "Cant find device in boot mode", 1, 0},
        {"the selection fails", "fw.cod", "data", "!", "Cant find device in boot mode", 1, 0},
        // Found only behind the boot command, and no retry is offered.
        {"an empty file", "fw.cod", "", "ttyACM0", "Error when reading binary file!", 1, 1},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.selPort = c.selPort;
        rig.fileName = c.file.empty() ? "" : rig.folder.File(c.file);
        if (c.content == "/") std::filesystem::create_directory(rig.fileName);
        if (c.content != "-" && c.content != "/") rig.Firmware(c.file, c.content);
        EXPECT_EQ(rig.Run().End == UpdateEnd::Programmed, false) << c.name;
        EXPECT_EQ(rig.messages, std::vector<std::string>{c.message}) << c.name;
        EXPECT_EQ(rig.portChoices, c.portChoices) << c.name;
        EXPECT_EQ(rig.module.boots, c.boots) << c.name;
        EXPECT_EQ(rig.port.calls.empty(), c.boots == 0) << c.name;
    }
}

TEST(UpdateRun, ARetrySendsTheBootCommandAgainAndReadsTheFileAnew) {
    Rig rig;
    rig.module.cancelTransfers = 1;
    rig.answers = {MessageAnswer::Ok};
    const std::string second = test::RandomBytes(1500, 2);
    rig.onMessage = [&rig, &second] { rig.Firmware("fw.cod", second); };
    const UpdateOutcome outcome = rig.Run();

    EXPECT_EQ(outcome.Tries, 2);
    EXPECT_EQ(rig.module.boots, 2);
    EXPECT_EQ(rig.module.image, test::PaddedToWholeBlocks(second));
    EXPECT_EQ(rig.messages.front(), RetryQuestion("Flash ERROR\r\n"));
    EXPECT_EQ(rig.messages.size(), 2u);
    EXPECT_EQ(rig.Count("SetPortOpen(true)"), 1);  // the port stays open between the tries
}

TEST(UpdateRun, AFailedDownloadOrAVanishedPortEndsInTheRetryQuestion) {
    for (const bool vanish : {false, true}) {
        Rig rig;
        rig.module.vanish = vanish;
        rig.module.cancelTransfers = 1;
        rig.answers = {MessageAnswer::Cancel};
        const UpdateOutcome outcome = rig.Run();
        EXPECT_EQ(outcome.End, UpdateEnd::Abandoned) << vanish;
        EXPECT_EQ(rig.messages, std::vector<std::string>{RetryQuestion(vanish ? "" : "Flash ERROR\r\n")}) << vanish;
        EXPECT_EQ(rig.status.Text(), "Binary File was not downloaded") << vanish;
    }
}

TEST(UpdateRun, APortThatCannotBeOpenedPassesTheWaitsIntoTheRetry) {
    Rig rig;
    rig.port.failOpen = true;
    rig.answers = {MessageAnswer::Ok, MessageAnswer::Cancel};
    const UpdateOutcome outcome = rig.Run();

    EXPECT_EQ(outcome.Tries, 2);
    EXPECT_EQ(rig.messages, std::vector<std::string>(2, RetryQuestion("")));
    // The opening, and once more at the start of each try while it stays closed.
    EXPECT_EQ(rig.Count("SetPortOpen(true)"), 3);
    // 500 ms behind the opening, 500 behind the try's opening, 500 behind the
    // boot command and 1000 before the report; the retry without the first.
    EXPECT_EQ((rig.clock.Now() - rig.start) / 100, (2500 + 2000) / 100);
}

TEST(UpdateRun, TheProductionRecordFollowsOnlyASuccessfulDownloadWithTheFlag) {
    for (const auto& [production, cancel, recorded] :
         {std::tuple{true, false, true}, std::tuple{true, true, false}, std::tuple{false, false, false}}) {
        Rig rig;
        rig.module.cancelTransfers = cancel ? 1 : 0;
        rig.answers = {MessageAnswer::Cancel};
        EXPECT_EQ(rig.Run(production).Record.has_value(), recorded) << production << cancel;
        EXPECT_EQ(IniReadValue("STAT_00000001", "UID", "", rig.IniPath()), recorded ? "3A0F5C21D4E8B907" : "");
        EXPECT_EQ(rig.module.commands.empty(), !recorded);
    }
}

}  // namespace
}  // namespace sb

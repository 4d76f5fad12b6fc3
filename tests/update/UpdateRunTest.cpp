#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>

#include "../helpers/TempFolder.h"
#include "../link/ScriptedModule.h"
#include "FakeBootLoader.h"
#include "FirmwareImage.h"
#include "helpers/IniFile.h"
#include "update/UpdateRun.h"

// Whole update runs and the production record at their end against the fake
// boot loader, with the screen's parts played by hooks and a sniffer.ini of
// the test's own.
namespace sb {
namespace {

using test::TempFolder;

std::string RetryQuestion(const std::string& report) {
    return "Download was completed with Errors\r\nReport:" + report + "\r\nRetry ?";
}

// The update screen without a screen: a retry question is answered Ok
// while retries last; a port choice of "!" fails.
struct Rig {
    Rig() { TempFolder::Write(fileName, test::RandomBytes(1000, 1)); }

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
            const bool ok = buttons == ui::MessageButtons::Ok || retries-- > 0;
            return ok ? ui::MessageAnswer::Ok : ui::MessageAnswer::Cancel;
        };
        hooks.EnableStart = [this](bool enabled) { enables.push_back(enabled); };
        const UpdateOutcome outcome = UpdateRun(module.port, status, hooks).Run(production, Ini());
        EXPECT_FALSE(module.port.PortOpen());
        EXPECT_EQ(enables, (std::vector<bool>{false, true}));
        return outcome;
    }

    std::string Ini() const { return folder.File("sniffer.ini"); }
    std::string Read(const std::string& section, const std::string& key) const {
        return IniReadValue(section, key, "(missing)", Ini());
    }
    int Opens() const { return static_cast<int>(std::ranges::count(module.port.calls, "SetPortOpen(true)")); }

    TempFolder folder;
    test::RecordingStatus status;
    test::FakeBootLoader module;
    const int64_t start = module.clock.Now();
    std::string fileName = folder.File("fw.cod");
    std::string selPort = "ttyACM0";
    int retries = 0;
    std::function<void()> onMessage;
    std::vector<std::string> messages;
    std::vector<bool> enables;
    int portChoices = 0;
};

TEST(UpdateRun, DownloadsTheFileAndRecordsItWithTheFlagOrOffersARetry) {
    const std::string done = "Update completed succesfully", failed = "Binary File was not downloaded";
    const std::string report = done + "\r\nReport:Flash OK\r\n\r\n 1024 bytes programmed";
    const std::vector<std::string> opening = {
        "SetCommPort(ttyACM0)", "SetSettings(300, N, 8, 1)", "SetInputLen(0)",         "SetRThreshold(0)",
        "SetSThreshold(0)",     "SetInBufferSize(8192)",     "SetOutBufferSize(8192)", "SetPortOpen(true)"};
    const struct {
        const char* name;
        bool production, cancel, vanish;
        std::string message, status;
    } cases[] = {
        {"a download", false, false, false, report, done + "\r\n 1024 bytes programmed"},
        {"with the record", true, false, false, report, done + "\r\n 1024 bytes programmed"},
        {"cancelled by the module", true, true, false, RetryQuestion("Flash ERROR\r\n"), failed},
        {"the port vanished", false, false, true, RetryQuestion(""), failed},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.module.cancelTransfers = c.cancel;
        rig.module.vanish = c.vanish;
        const UpdateOutcome outcome = rig.Run(c.production);
        const bool programmed = !c.cancel && !c.vanish, recorded = programmed && c.production;
        EXPECT_EQ(outcome.End, programmed ? UpdateEnd::Programmed : UpdateEnd::Abandoned) << c.name;
        EXPECT_EQ(rig.messages, std::vector<std::string>{c.message}) << c.name;
        EXPECT_EQ(std::ranges::count(rig.status.texts, c.status), 1) << c.name;
        // 1024 bytes a block, not the file's 1000.
        const std::string image = programmed ? test::PaddedToWholeBlocks(test::RandomBytes(1000, 1)) : "";
        EXPECT_EQ(rig.module.image, image) << c.name;
        EXPECT_TRUE(std::equal(opening.begin(), opening.end(), rig.module.port.calls.begin())) << c.name;
        EXPECT_EQ(outcome.Record.has_value(), recorded) << c.name;
        EXPECT_EQ(rig.Read("STAT_00000001", "UID"), recorded ? "3A0F5C21D4E8B907" : "(missing)") << c.name;
    }
}

// The cases of missing-cases.json: the file chosen in the rig's folder (a
// file when it has content, a folder, or nothing), the port chosen; the one
// message of each. Only an empty file is found behind the boot command.
TEST(UpdateRun, EndsWithItsMessageWhenFileOrPortIsMissing) {
    for (const auto& c : test::TestCases("update/missing-cases.json")) {
        SCOPED_TRACE(c.dump());
        Rig rig;
        rig.selPort = c.value("port", "ttyACM0");
        rig.fileName = c["file"] == "" ? "" : rig.folder.File(c["file"]);
        if (c.value("folder", false)) std::filesystem::create_directory(rig.fileName);
        if (c.contains("content")) TempFolder::Write(rig.fileName, c["content"]);
        EXPECT_NE(rig.Run().End, UpdateEnd::Programmed);
        EXPECT_EQ(rig.messages, std::vector<std::string>{c["message"]});
        EXPECT_EQ(rig.portChoices, c["message"] == "Binary file does not exist!" ? 0 : 1);
        const int boots = c["message"] == "Error when reading binary file!" ? 1 : 0;
        EXPECT_EQ(rig.module.boots, boots);
        EXPECT_EQ(rig.module.port.calls.empty(), boots == 0);
    }
}

TEST(UpdateRun, ARetrySendsTheBootCommandAgainAndReadsTheFileAnew) {
    Rig rig;
    rig.module.cancelTransfers = 1;
    rig.retries = 1;
    const std::string second = test::RandomBytes(1500, 2);
    rig.onMessage = [&rig, &second] { TempFolder::Write(rig.fileName, second); };
    EXPECT_EQ(rig.Run().Tries, 2);
    // Taken only behind a boot command.
    EXPECT_EQ(rig.module.image, test::PaddedToWholeBlocks(second));
    EXPECT_EQ(rig.messages.size(), 2u);
    EXPECT_EQ(rig.Opens(), 1);  // the port stays open between the tries
}

TEST(UpdateRun, APortThatCannotBeOpenedPassesTheWaitsIntoTheRetry) {
    Rig rig;
    rig.module.port.failOpen = true;
    rig.retries = 1;
    EXPECT_EQ(rig.Run().Tries, 2);
    EXPECT_EQ(rig.messages, std::vector<std::string>(2, RetryQuestion("")));
    // The opening, and once more at the start of each try while it stays closed.
    EXPECT_EQ(rig.Opens(), 3);
    // 500 ms behind the opening, 500 behind the try's opening, 500 behind the
    // boot command and 1000 before the report; the retry without the first.
    EXPECT_EQ((rig.module.clock.Now() - rig.start) / 100, (2500 + 2000) / 100);
}

// The cases of record-cases.json: the sniffer.ini before, the module's answers
// that differ, a fault of the file or the port; the record's end and how many
// of the commands went out. A written record shows its section, count and one
// value, or the whole file; any other end leaves the file as it was.
TEST(ProductionRecord, EachCaseEndsAsItSays) {
    const std::map<std::string, RecordEnd> ends = {
        {"Written", RecordEnd::Written},           {"UidNotSixteen", RecordEnd::UidNotSixteen},
        {"NotCleared", RecordEnd::NotCleared},     {"SerialError", RecordEnd::SerialError},
        {"NoNumberLeft", RecordEnd::NoNumberLeft}, {"WriteFailed", RecordEnd::WriteFailed}};
    const std::vector<std::string> commands = {"GETSN",    "GETVER", "GETNAME",
                                               "GETPDATE", "GETUID", "CLROTP 3A0F5C21D4E8B907"};
    for (const auto& c : test::TestCases("update/record-cases.json")) {
        SCOPED_TRACE(c.dump());
        const std::string before = c.value("before", ""), fault = c.value("fault", "");
        Rig rig;
        if (!before.empty()) TempFolder::Write(rig.Ini(), before);
        const auto answers = c.value("answers", nlohmann::json::object());
        for (const auto& [command, answer] : answers.items()) rig.module.answers[command] = answer;
        if (fault == "locked") std::filesystem::permissions(rig.Ini(), std::filesystem::perms::owner_read);
        rig.module.port.failOutput = fault == "port";
        rig.module.port.SetPortOpen(true);
        const ProductionRecord record = WriteProductionRecord(rig.module.port, rig.status, rig.Ini());
        EXPECT_EQ(record.End, ends.at(c["end"]));
        EXPECT_EQ(rig.module.commands, std::vector(commands.begin(), commands.begin() + c["sent"].get<int>()));
        EXPECT_EQ(record.PortFailure.has_value(), fault == "port");
        const auto why = fault == "locked" ? std::make_error_code(std::errc::permission_denied) : std::error_code();
        EXPECT_EQ(record.WriteFailure, why) << why.message();
        const std::string file = TempFolder::Read(rig.Ini());
        if (!c.contains("section")) {
            EXPECT_EQ(file, before);
            continue;
        }
        EXPECT_EQ(record.Section, c["section"]);
        EXPECT_NE(file.find("QTY=" + c["qty"].get<std::string>() + "\r\n"), std::string::npos);
        EXPECT_EQ(rig.Read(c["section"], c["key"]), c["value"]);
        EXPECT_EQ(file, c.value("file", file));  // the whole file where a case gives it
    }
}

}  // namespace
}  // namespace sb

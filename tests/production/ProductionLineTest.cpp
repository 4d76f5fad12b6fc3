#include "production/ProductionLine.h"

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "../helpers/TempFolder.h"
#include "production/ChildReport.h"
#include "production/Station.h"
#include "production/Summary.h"

namespace sb {
namespace {

using namespace std::chrono_literals;
using test::TempFolder;

constexpr ModuleMode R = ModuleMode::Running;
constexpr ModuleMode B = ModuleMode::Boot;

std::string Written(const std::string& path, const std::string& text) {
    TempFolder::Write(path, text);
    return path;
}

// A download program played by the shell: each port has its script.
struct FakeLine {
    TempFolder folder;
    FirmwareFile firmware{Written(folder.File("main.cod"), std::string(5000, 'F'))};
    ProductionLog log{folder.File("line.log")};
    std::map<std::string, std::string> scripts;
    int progress = 0;

    LineSettings Settings() {
        return {&firmware, &log, "test 1", {.Total = 30s}, [this](const ModuleJob& job) {
                    return std::vector<std::string>{"sh", "-c", scripts.at(job.Port)};
                }};
    }
    LineHooks Hooks() {
        return {[this](const ModuleJob&, const XmodemProgress&) { ++progress; }, {}};
    }
};

void RunOut(ProductionLine& line) {
    while (line.Running() > 0) line.Children().Wait(-1);
}

std::string Say(const std::string& line) { return "printf '%s\\n' '" + line + "'; "; }

const std::string kProgress = Say(ProgressLine({1, 1024, 5000}));

// Each module on a port of its own, ttyACM<case>, with what its log line must
// hold; the last case runs twice, the second time for the module of the first.
TEST(ProductionLine, EachEndOfADownloadIsLoggedAsTheRecordOfItsAttempt) {
    const std::vector<std::pair<std::string, const char*>> cases = {
        {kProgress + Say(R"({"end": "programmed", "tries": 1, "programmed": 5120, "result": 5120, "record": )"
                         R"({"written": true, "end": "written", "number": 7, "SN": "A1", "Ver": "2.0", )"
                         R"("Name": "Gate"}})"),
         R"({"result": "programmed", "xmodem_result": 5120, "bytes_programmed": 5120, "record_number": 7,
             "SN": "A1", "PVer": "2.0", "PName": "Gate", "detail": ""})"},
        {Say(R"({"end": "programmed", "tries": 1, "programmed": 5120, "result": 5120, )"
             R"("record": {"written": false, "end": "the module did not confirm CLROTP", "SN": "A1"}})") + "exit 4",
         R"({"result": "not confirmed", "xmodem_result": 5120, "record_number": null,
             "detail": "no production record: the module did not confirm CLROTP"})"},
        {Say(R"({"end": "not downloaded", "tries": 2, "programmed": 0, "result": -4, "record": null})") +
             "echo 'Binary File was not downloaded' >&2; exit 5",
         R"({"result": "not downloaded", "xmodem_result": -4, "detail": "Binary File was not downloaded"})"},
        {Say(R"({"end": "file unreadable", "tries": 0, "programmed": 0, "result": 0, "record": null})") + "exit 6",
         R"({"result": "firmware refused", "xmodem_result": null, "detail": "file unreadable, XMODEM result 0"})"},
        {kProgress + "echo 'lost the port' >&2; kill -KILL $$",
         R"({"result": "crashed", "xmodem_result": null,
             "detail": "died: Killed: lost the port; 1024 of 5000 bytes were acknowledged"})"},
        {"echo 'no result line'", R"x({"result": "crashed", "detail": "ended without a result (exit status 0)"})x"},
    };
    FakeLine fake;
    ProductionLine line(fake.Settings(), fake.Hooks());
    for (size_t i = 0; i < cases.size(); ++i) {
        fake.scripts["ttyACM" + std::to_string(i)] = cases[i].first;
        line.Start({JobStep::Flash, "ttyACM" + std::to_string(i), "SN" + std::to_string(i)});
    }
    RunOut(line);
    line.Start({JobStep::Flash, "ttyACM" + std::to_string(cases.size() - 1), "SN0"});
    RunOut(line);

    std::istringstream log(TempFolder::Read(fake.folder.File("line.log")));
    ASSERT_EQ(line.Records().size(), cases.size() + 1);
    for (const ModuleRecord& record : line.Records()) {
        std::string text;
        std::getline(log, text);
        EXPECT_EQ(text + '\n', LogLine(record));
        const nlohmann::json logged = nlohmann::json::parse(text);
        const auto expected = nlohmann::json::parse(cases.at(std::stoul(record.Port.substr(6))).second);
        for (const auto& [key, value] : expected.items()) EXPECT_EQ(logged[key], value) << key << " of " << text;
        EXPECT_EQ(record.Attempt, &record == &line.Records().back() ? 2 : 1) << text;
    }
    EXPECT_EQ(fake.progress, 2);
}

TEST(ProductionLine, AStationRefusesAFirmwareFileThatChanged) {
    FakeLine fake;
    fake.scripts["ttyACM0"] = "exit 0";
    const auto listing = [] { return std::vector<ListedModule>{{"ttyACM0", "SB1", B}}; };
    Station station({fake.Settings(), 0, listing}, fake.Hooks());
    TempFolder::Write(fake.firmware.Path(), std::string(4999, 'F') + 'G');
    station.Refresh();
    EXPECT_EQ(station.Line().Running(), 0u);
    ASSERT_TRUE(station.Refusal());
    EXPECT_TRUE(station.Finished());
}

// A step of a station's day: the modules listed now, what the book starts
// for them, and how those jobs end.
struct Step {
    std::vector<ListedModule> listing;
    std::vector<std::string> starts;  // "boot SERIAL" or "flash SERIAL"
    bool ok = true;
};

std::string Name(const ModuleJob& job) {
    return (job.Step == JobStep::Flash ? "flash " : "boot ") + job.UsbSerial;
}

void Play(StationBook& book, const std::vector<Step>& steps) {
    for (size_t i = 0; i < steps.size(); ++i) {
        const auto jobs = book.Plan(steps[i].listing);
        std::vector<std::string> names;
        for (const auto& job : jobs) names.push_back(Name(job));
        EXPECT_EQ(names, steps[i].starts) << "step " << i;
        for (const auto& job : jobs) book.Started(job);
        for (const auto& job : jobs) book.Ended(job, steps[i].ok);
    }
}

TEST(StationBook, ProgramsEachModuleOnceAndAFailedOneWhenPluggedInAgain) {
    StationBook book;
    Play(book, {
                   // Running: into the boot loader, and downloaded when it shows up there.
                   {{{"ttyACM0", "S1", R}}, {"boot S1"}},
                   {{{"ttyACM0", "S1", R}}, {}},
                   {{{"ttyACM1", "S1", B}, {"ttyACM2", "S2", B}}, {"flash S1", "flash S2"}},
                   // Programmed, back after RUN: left alone.
                   {{{"ttyACM0", "S1", R}, {"ttyACM2", "S2", B}}, {}},
                   // A failure stays failed while the module stays plugged in...
                   {{{"ttyACM3", "S3", B}}, {"flash S3"}, false},
                   {{{"ttyACM3", "S3", B}}, {}},
                   // ...and is tried again once it was away.
                   {{}, {}},
                   {{{"ttyACM4", "S3", R}}, {"boot S3"}},
               });
    EXPECT_EQ(book.Programmed(), 2);
}

// Count 0 runs until it is stopped.
TEST(StationBook, EndsAfterItsCountOrAStopOnceItsJobsHaveEnded) {
    for (const int count : {1, 0}) {
        StationBook book(count);
        const auto jobs = book.Plan({{"ttyACM0", "S1", B}, {"ttyACM1", "S2", B}});
        ASSERT_EQ(jobs.size(), count == 0 ? 2u : 1u);
        book.Started(jobs[0]);
        if (count == 0) book.Stop();
        EXPECT_TRUE(book.Plan({{"ttyACM1", "S2", B}, {"ttyACM2", "S3", B}}).empty()) << count;
        EXPECT_FALSE(book.Finished()) << count;
        book.Ended(jobs[0], count > 0);
        EXPECT_TRUE(book.Finished()) << count;
    }
}

TEST(StationBook, SerialIsTheLastPartOfTheUsbIdentity) {
    EXPECT_EQ(UsbSerialOf("USB\\VID_0483&PID_5740\\SB0001"), "SB0001");
    EXPECT_EQ(UsbSerialOf("USB\\VID_0483&PID_5740"), "");
    EXPECT_EQ(UsbSerialOf(""), "");
}

TEST(Summary, NamesTheModulesWhoseLastAttemptFailed) {
    const auto record = [](const char* serial, ModuleResult result) {
        ModuleRecord r;
        r.UsbSerial = serial;
        r.Port = std::string("tty") + serial;
        r.Result = result;
        return r;
    };
    const Summary summary = Summarize({record("S1", ModuleResult::NotDownloaded), record("S2", ModuleResult::Hung),
                                       record("S1", ModuleResult::Programmed)});
    ASSERT_EQ(summary.Rows.size(), 2u);
    EXPECT_EQ(summary.Rows[0].Attempts, 2);
    EXPECT_FALSE(summary.AllSucceeded());
    EXPECT_TRUE(summary.Table().ends_with("\n1 of 2 modules programmed; failed: S2 (ttyS2) [hung]\n")) << summary.Table();
}

TEST(FirmwareFile, KeepsTheBytesReadAtTheStartAndTellsAChangedFile) {
    TempFolder folder;
    const std::string path = folder.File("main.cod");
    const FirmwareFile firmware(Written(path, "firmware"));
    EXPECT_EQ(firmware.Check(), FirmwareState::Unchanged);
    TempFolder::Write(path, "firmwarf");
    EXPECT_EQ(firmware.Check(), FirmwareState::Changed);
    EXPECT_EQ(TempFolder::Read(firmware.CopyPath()), "firmware");
    std::filesystem::remove(path);
    EXPECT_EQ(firmware.Check(), FirmwareState::Gone);
    EXPECT_THROW(FirmwareFile{path}, FirmwareError);
    TempFolder::Write(path, "");
    EXPECT_THROW(FirmwareFile{path}, FirmwareError);
}

}  // namespace
}  // namespace sb

#include "production/ProductionLine.h"

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "../helpers/TempFolder.h"
#include "production/ChildReport.h"
#include "production/Station.h"

namespace sb {
namespace {

using namespace std::chrono_literals;
using test::TempFolder;

// A download program played by the shell: each port has its script.
struct FakeLine {
    TempFolder folder;
    std::string firmwarePath = folder.File("main.cod");
    std::unique_ptr<FirmwareFile> firmware;
    std::unique_ptr<ProductionLog> log;
    std::map<std::string, std::string> scripts;
    std::vector<std::pair<ModuleJob, bool>> ended;
    std::vector<XmodemProgress> progress;

    FakeLine() {
        TempFolder::Write(firmwarePath, std::string(5000, 'F'));
        firmware = std::make_unique<FirmwareFile>(firmwarePath);
        log = std::make_unique<ProductionLog>(folder.File("line.log"));
    }
    LineSettings Settings() {
        LineSettings settings;
        settings.Firmware = firmware.get();
        settings.Log = log.get();
        settings.ProgramVersion = "test 1";
        settings.Limits.Total = 30s;
        settings.Command = [this](const ModuleJob& job) {
            return std::vector<std::string>{"sh", "-c", scripts.at(job.Port)};
        };
        return settings;
    }
    LineHooks Hooks() {
        return {[this](const ModuleJob&, const XmodemProgress& p) { progress.push_back(p); },
                [this](const ModuleJob& job, const ModuleRecord*, bool ok) { ended.emplace_back(job, ok); }};
    }
    std::vector<nlohmann::json> LogLines() {
        std::vector<nlohmann::json> lines;
        std::istringstream in(TempFolder::Read(folder.File("line.log")));
        for (std::string line; std::getline(in, line);) lines.push_back(nlohmann::json::parse(line));
        return lines;
    }
};

std::string Say(const std::string& line) { return "printf '%s\\n' '" + line + "'; "; }

const std::string kProgress = Say(ProgressLine({1, 1024, 5000}));
const std::string kWritten =
    R"("record": {"written": true, "end": "written", "number": 7, "SN": "A1", "Ver": "2.0", "Name": "Gate"})";

TEST(ProductionLine, EachEndOfADownloadBecomesItsRecord) {
    struct Case {
        std::string script;
        ModuleResult result;
        std::optional<int32_t> xmodem;
        int64_t bytes;
        std::optional<int32_t> number;
        std::string detailHolds;
    };
    const std::vector<Case> cases = {
        {kProgress + Say(R"({"end": "programmed", "tries": 1, "programmed": 5120, "result": 5120, )" + kWritten + "}"),
         ModuleResult::Programmed, 5120, 5120, 7, ""},
        {Say(R"({"end": "programmed", "tries": 1, "programmed": 5120, "result": 5120, "record": {"written": false, "end": "the module did not confirm CLROTP", "SN": "A1"}})") +
             "exit 4",
         ModuleResult::NotConfirmed, 5120, 5120, std::nullopt, "CLROTP"},
        {Say(R"({"end": "not downloaded", "tries": 2, "programmed": 0, "result": -4, "record": null})") +
             "echo 'Binary File was not downloaded' >&2; exit 5",
         ModuleResult::NotDownloaded, -4, 0, std::nullopt, "not downloaded"},
        {Say(R"({"end": "file unreadable", "tries": 0, "programmed": 0, "result": 0, "record": null})") + "exit 6",
         ModuleResult::FirmwareRefused, std::nullopt, 0, std::nullopt, ""},
        {kProgress + "echo 'lost the port' >&2; kill -KILL $$", ModuleResult::Crashed, std::nullopt, 0, std::nullopt,
         "1024 of 5000"},
        {"echo 'no result line'", ModuleResult::Crashed, std::nullopt, 0, std::nullopt, "without a result"},
    };
    FakeLine fake;
    ProductionLine line(fake.Settings(), fake.Hooks());
    for (size_t i = 0; i < cases.size(); ++i) {
        const std::string port = "ttyACM" + std::to_string(i);
        fake.scripts[port] = cases[i].script;
        line.Start({JobStep::Flash, port, "SN" + std::to_string(i)});
    }
    while (line.Running() > 0) line.Children().Wait(-1);

    const auto logged = fake.LogLines();
    ASSERT_EQ(logged.size(), cases.size());
    for (size_t i = 0; i < cases.size(); ++i) {
        const std::string port = "ttyACM" + std::to_string(i);
        const auto record = std::find_if(line.Records().begin(), line.Records().end(),
                                         [&](const ModuleRecord& r) { return r.Port == port; });
        ASSERT_NE(record, line.Records().end());
        const Case& c = cases[i];
        EXPECT_EQ(record->Result, c.result) << port;
        EXPECT_EQ(record->XmodemResult, c.xmodem) << port;
        EXPECT_EQ(record->BytesProgrammed, c.bytes) << port;
        EXPECT_EQ(record->RecordNumber, c.number) << port;
        EXPECT_NE(record->Detail.find(c.detailHolds), std::string::npos) << port << ": " << record->Detail;
        EXPECT_EQ(logged[record - line.Records().begin()]["port"], port);
    }
    EXPECT_EQ(fake.progress.size(), 2u);
}

TEST(ProductionLine, AttemptsAreCountedPerModule) {
    FakeLine fake;
    fake.scripts["ttyACM0"] = "exit 9";
    ProductionLine line(fake.Settings(), fake.Hooks());
    std::vector<int> attempts;
    for (const char* serial : {"SB1", "SB1", "SB2"}) {
        line.Start({JobStep::Flash, "ttyACM0", serial});
        while (line.Running() > 0) line.Children().Wait(-1);
        attempts.push_back(line.Records().back().Attempt);
    }
    EXPECT_EQ(attempts, (std::vector<int>{1, 2, 1}));
}

TEST(ProductionLine, AStationRefusesAFirmwareFileThatChanged) {
    FakeLine fake;
    fake.scripts["ttyACM0"] = "exit 0";
    StationSettings settings{fake.Settings(), 0, [] {
                                 return std::vector<ListedModule>{{"ttyACM0", "SB1", ModuleMode::Boot}};
                             }};
    Station station(std::move(settings), fake.Hooks());
    TempFolder::Write(fake.firmwarePath, std::string(4999, 'F') + 'G');
    station.Refresh();
    EXPECT_EQ(station.Line().Running(), 0u);
    ASSERT_TRUE(station.Refusal());
    EXPECT_TRUE(station.Finished());
}

}  // namespace
}  // namespace sb

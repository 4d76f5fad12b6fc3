#include "production/ProductionLine.h"

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "../helpers/TempFolder.h"
#include "production/ChildReport.h"
#include "production/Station.h"

namespace sb {
namespace {

using namespace std::chrono_literals;
using test::TempFolder;

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
    const auto listing = [] { return std::vector<ListedModule>{{"ttyACM0", "SB1", ModuleMode::Boot}}; };
    Station station({fake.Settings(), 0, listing}, fake.Hooks());
    TempFolder::Write(fake.firmware.Path(), std::string(4999, 'F') + 'G');
    station.Refresh();
    EXPECT_EQ(station.Line().Running(), 0u);
    ASSERT_TRUE(station.Refusal());
    EXPECT_TRUE(station.Finished());
}

}  // namespace
}  // namespace sb

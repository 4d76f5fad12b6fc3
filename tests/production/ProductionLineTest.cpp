#include "production/ProductionLine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "../helpers/TempFolder.h"
#include "production/Station.h"
#include "production/Summary.h"

namespace sb {
namespace {

using namespace std::chrono_literals;
using test::TempFolder;

constexpr ModuleMode R = ModuleMode::Running;
constexpr ModuleMode B = ModuleMode::Boot;

// A module answers in bytes: its SN holds one beyond ASCII.
const ModuleRecord kRecord{.Time = UtcTimeText(1715933702345), .Port = "ttyACM3", .UsbSerial = "SB0001", .Attempt = 2,
                           .SN = "Caf\xE9", .PName = {}, .PVer = "1.02.03", .FirmwareFile = "fw/main.cod",
                           .FirmwareSize = 5000, .FirmwareSha256 = "9f43", .Result = ModuleResult::NotDownloaded,
                           .Detail = "CommPort Error\r\nInput/output error", .XmodemResult = -4, .Seconds = 2.34567,
                           .RecordNumber = {}, .ProgramVersion = "servicebay-cli 0.1.0"};

TEST(ProductionLog, LineIsOneJsonObjectOfTheRecord) {
    EXPECT_EQ(LogLine(kRecord),
              R"({"time":"2024-05-17T08:15:02.345Z","port":"ttyACM3","usb_serial":"SB0001","attempt":2,"SN":"Café",)"
              R"("PName":null,"PVer":"1.02.03","firmware_file":"fw/main.cod","firmware_size":5000,)"
              R"("firmware_sha256":"9f43","result":"not downloaded","detail":"CommPort Error\r\nInput/output error",)"
              R"("xmodem_result":-4,"bytes_programmed":0,"seconds":2.346,"record_number":null,)"
              R"("program":"servicebay-cli 0.1.0"})" "\n");
}

TEST(ProductionLog, AppendsWholeLinesBehindWhatIsThere) {
    TempFolder folder;
    const std::string path = folder.File("line.log");
    TempFolder::Write(path, "{\"earlier\": true}\n");
    // Two logs on one file, as two programs have them, each line long enough
    // to need many pages: every line must stand whole, none cut into another.
    std::latch start(2);
    const auto writer = [&](char fill) {
        ProductionLog log(path);
        ModuleRecord record = kRecord;
        record.Detail = std::string(20000, fill);
        start.arrive_and_wait();
        for (int i = 0; i < 300; ++i) log.Append(record);
    };
    {
        const std::jthread x(writer, 'x'), y(writer, 'y');  // both joined here
    }
    std::istringstream lines(TempFolder::Read(path));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "{\"earlier\": true}");
    int count = 0;
    for (; std::getline(lines, line); ++count)
        ASSERT_FALSE(nlohmann::json::parse(line, nullptr, false).is_discarded()) << "line " << count << " is cut";
    EXPECT_EQ(count, 600);
}

TEST(ProductionLog, RefusesToOpenWhereNoLineCanBeWritten) {
    TempFolder folder;
    for (const std::string& path : {folder.File("missing/line.log"), folder.Path().string(), std::string("/dev/null")})
        EXPECT_THROW(ProductionLog{path}, LogError) << path;
}

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

// The download programs of download-ends.json, one a port, ttyACM<case>:
// what each says on its standard output and does then, and what its log line
// must hold. The last case runs twice, the second time for the module of the first.
TEST(ProductionLine, EachEndOfADownloadIsLoggedAsTheRecordOfItsAttempt) {
    const char* source = std::getenv("SB_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    const std::string path = std::string(source) + "/tests/production/download-ends.json";
    const auto cases = nlohmann::json::parse(TempFolder::Read(path));
    FakeLine fake;
    ProductionLine line(fake.Settings(), fake.Hooks());
    for (size_t i = 0; i < cases.size(); ++i) {
        std::string& script = fake.scripts["ttyACM" + std::to_string(i)];
        for (const auto& said : cases[i]["says"])
            script += Say(said.is_string() ? said.get<std::string>() : said.dump());
        script += cases[i].value("then", "");
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
        const auto& expected = cases.at(std::stoul(record.Port.substr(6)))["logged"];
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

// A station's day, step by step: the modules listed, what the book starts for
// them, and whether those jobs succeed.
TEST(StationBook, ProgramsEachModuleOnceAndAFailedOneWhenPluggedInAgain) {
    struct Step {
        std::vector<ListedModule> listing;
        std::vector<std::string> starts;  // "boot SERIAL" or "flash SERIAL"
        bool ok = true;
    };
    const std::vector<Step> day = {
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
    };
    StationBook book;
    for (size_t i = 0; i < day.size(); ++i) {
        const auto jobs = book.Plan(day[i].listing);
        std::vector<std::string> names;
        for (const auto& job : jobs) names.push_back((job.Step == JobStep::Flash ? "flash " : "boot ") + job.UsbSerial);
        EXPECT_EQ(names, day[i].starts) << "step " << i;
        for (const auto& job : jobs) book.Started(job);
        for (const auto& job : jobs) book.Ended(job, day[i].ok);
    }
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
    const std::string table = summary.Table();
    EXPECT_TRUE(table.ends_with("\n1 of 2 modules programmed; failed: S2 (ttyS2) [hung]\n")) << table;
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
    EXPECT_THROW(FirmwareFile{Written(path, "")}, FirmwareError);
}

}  // namespace
}  // namespace sb

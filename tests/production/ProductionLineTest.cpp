#include "production/ProductionLine.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

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
using test::TestCases;

constexpr ModuleMode R = ModuleMode::Running;
constexpr ModuleMode B = ModuleMode::Boot;

std::string Written(const std::string& path, const std::string& text) {
    TempFolder::Write(path, text);
    return path;
}

// A module answers in bytes: its SN holds one beyond ASCII.
const ModuleRecord kRecord{.Time = UtcTimeText(1715933702345), .Port = "ttyACM3", .UsbSerial = "SB0001", .Attempt = 2,
                           .SN = "Caf\xE9", .PName = {}, .PVer = "1.02.03", .FirmwareFile = "/fw/main.cod",
                           .FirmwareSize = 5000, .FirmwareSha256 = "9f43", .Result = ModuleResult::NotDownloaded,
                           .Detail = "CommPort Error\r\nInput/output error", .Report = "Flash ERROR\r\n",
                           .XmodemResult = -4, .BytesAcknowledged = 3072, .Seconds = 2.34567, .RecordNumber = {},
                           .Run = {"5f0c", "bench-pc", "line 2", "servicebay-cli 0.1.0"}};

TEST(ProductionLog, LineIsOneJsonObjectOfTheRecord) {
    EXPECT_EQ(LogLine(kRecord),
              R"({"time":"2024-05-17T08:15:02.345Z","port":"ttyACM3","usb_serial":"SB0001","attempt":2,"SN":"Café",)"
              R"("PName":null,"PVer":"1.02.03","firmware_file":"/fw/main.cod","firmware_size":5000,)"
              R"("firmware_sha256":"9f43","result":"not downloaded","detail":"CommPort Error\r\nInput/output error",)"
              R"("report":"Flash ERROR\r\n","xmodem_result":-4,"bytes_programmed":0,"bytes_acknowledged":3072,)"
              R"("seconds":2.346,"record_number":null,"program":"servicebay-cli 0.1.0","run_id":"5f0c",)"
              R"("host":"bench-pc","station":"line 2"})" "\n");
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

// A disk that fills, played by a limit on the size of files: the part of a
// line that found room is taken back.
TEST(ProductionLog, TakesBackThePartOfALineThatFoundNoRoom) {
    TempFolder folder;
    const std::string path = Written(folder.File("line.log"), "{\"earlier\": true}\n");
    if (::fork() == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try {
            ProductionLog(path).Append(kRecord);
        } catch (const LogError&) {
        }
        ::_exit(0);
    }
    ::wait(nullptr);
    EXPECT_EQ(TempFolder::Read(path), "{\"earlier\": true}\n");
}

TEST(ProductionLog, RefusesToOpenWhereNoLineCanBeWritten) {
    TempFolder folder;
    for (const std::string& path : {folder.File("missing/line.log"), folder.Path().string(), std::string("/dev/null")})
        EXPECT_THROW(ProductionLog{path}, LogError) << path;
}

// A download program played by the shell: each port has its script.
struct FakeLine {
    TempFolder folder;
    FirmwareFile firmware{Written(folder.File("main.cod"), std::string(5000, 'F'))};
    ProductionLog log{folder.File("line.log")};
    std::map<std::string, std::string> scripts;
    int progress = 0;
    int steps = 0;  // under a recipe, as the programs began them

    LineSettings Settings(int retries = 0) {
        return {&firmware, &log, {"run 1", "host 1", "bench", "test 1"}, retries, {.Total = 30s},
                [this](const ModuleJob& job) { return std::vector<std::string>{"sh", "-c", scripts.at(job.Port)}; }};
    }
    LineHooks Hooks() {
        return {{}, [this](const ModuleJob&, const XmodemProgress&) { ++progress; }, {}, {},
                [this](const ModuleJob&, RecipeStep) { ++steps; }, {}, {}};
    }
    std::vector<nlohmann::json> Logged() const {
        std::vector<nlohmann::json> lines;
        std::istringstream log(TempFolder::Read(folder.File("line.log")));
        for (std::string line; std::getline(log, line);) lines.push_back(nlohmann::json::parse(line));
        return lines;
    }
};

void RunOut(ProductionLine& line) {
    while (line.Running() > 0) line.Children().Wait(-1);
}

std::string Say(const std::string& line) { return "printf '%s\\n' '" + line + "'; "; }

// The download programs of download-ends.json, one a port, ttyACM<case>, each
// port a module of its own serial: what each says on its standard output and
// does then, what each end of its tries must log, and how many tries it
// takes with one retry allowed. The last case runs once more, for the module
// of the first: its attempts count on.
TEST(ProductionLine, EachTryOfADownloadIsLoggedWhenItStartsAndWhenItEnds) {
    const auto cases = TestCases("production/download-ends.json");
    FakeLine fake;
    ProductionLine line(fake.Settings(1), fake.Hooks());
    for (size_t i = 0; i < cases.size(); ++i) {
        std::string& script = fake.scripts["ttyACM" + std::to_string(i)];
        for (const auto& said : cases[i]["says"])
            script += Say(said.is_string() ? said.get<std::string>() : said.dump());
        script += cases[i].value("then", "");
        line.Start({JobStep::Flash, "ttyACM" + std::to_string(i), "SN" + std::to_string(i), static_cast<int>(i) + 1});
    }
    RunOut(line);
    line.Start({JobStep::Flash, "ttyACM" + std::to_string(cases.size() - 1), "SN0", 1});
    RunOut(line);

    std::map<std::string, int> attempts;  // by serial, as started
    std::vector<int> tries(cases.size());
    size_t ended = 0;
    for (const auto& logged : fake.Logged()) {
        const std::string serial = logged["usb_serial"];
        EXPECT_EQ(logged["station"], "bench");
        if (logged["result"] == "started") {
            EXPECT_EQ(logged["attempt"], ++attempts[serial]) << logged;
            continue;
        }
        EXPECT_EQ(logged["attempt"], attempts[serial]) << logged;
        ASSERT_LT(ended, line.Records().size());
        EXPECT_EQ(logged, nlohmann::json::parse(LogLine(line.Records()[ended++])));
        const size_t c = std::stoul(logged["port"].get<std::string>().substr(6));
        ++tries[c];
        for (const auto& [key, value] : cases[c]["logged"].items())
            EXPECT_EQ(logged[key], value) << key << " of " << logged;
    }
    EXPECT_EQ(ended, line.Records().size());
    for (size_t c = 0; c < cases.size(); ++c)
        EXPECT_EQ(tries[c], cases[c].value("tries", 1) * (c + 1 == cases.size() ? 2 : 1)) << "case " << c;
    EXPECT_EQ(fake.progress, 3);
    EXPECT_EQ(fake.steps, 3);
}

// Two at a time: the others wait in the order they came and start as others
// end; a stop takes back the waiting ones and starts none of them.
TEST(ProductionLine, KeepsAtMostItsJobsInProgressAndTheOthersWaitTheirTurn) {
    FakeLine fake;
    LineSettings settings = fake.Settings();
    settings.Jobs = 2;
    std::vector<std::string> started, waiting, withdrawn;
    size_t most = 0;
    ProductionLine* running = nullptr;
    LineHooks hooks = fake.Hooks();
    hooks.Started = [&](const ModuleJob& job, int) {
        started.push_back(job.Port);
        most = std::max(most, running->Running() + 1);
    };
    hooks.Waiting = [&](const ModuleJob& job) { waiting.push_back(job.Port); };
    hooks.Withdrawn = [&](const ModuleJob& job) { withdrawn.push_back(job.Port); };
    ProductionLine line(settings, hooks);
    running = &line;
    const auto start = [&](int first, int last, const std::string& script) {
        for (int i = first; i <= last; ++i) {
            fake.scripts["ttyACM" + std::to_string(i)] = script;
            line.Start({JobStep::Flash, "ttyACM" + std::to_string(i), "SN", i});
        }
    };
    start(1, 5, "exit 0");
    RunOut(line);
    start(6, 8, "sleep 30");
    line.StopAll();
    RunOut(line);
    using Ports = std::vector<std::string>;
    EXPECT_EQ(most, 2u);
    EXPECT_EQ(started, (Ports{"ttyACM1", "ttyACM2", "ttyACM3", "ttyACM4", "ttyACM5", "ttyACM6", "ttyACM7"}));
    EXPECT_EQ(waiting, (Ports{"ttyACM3", "ttyACM4", "ttyACM5", "ttyACM8"}));
    EXPECT_EQ(withdrawn, Ports{"ttyACM8"});
    EXPECT_EQ(line.Waiting(), 0u);
}

// A station stopped while a module waits for its turn: that one is seen but
// not started, and the station ends once the one in progress has ended.
TEST(ProductionLine, AStationStoppedTakesBackTheModulesWaitingForTheirTurn) {
    FakeLine fake;
    fake.scripts = {{"ttyACM0", "exit 0"}, {"ttyACM1", "exit 0"}};
    LineSettings settings = fake.Settings();
    settings.Jobs = 1;
    Station station({settings, 0, [] { return std::vector<ListedModule>{{"ttyACM0", "SB0", B}, {"ttyACM1", "SB1", B}}; },
                     {}},
                    fake.Hooks());
    station.Refresh();
    station.Stop();
    RunOut(station.Line());
    EXPECT_TRUE(station.Finished());
    const auto left = station.NotStarted();
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].Port, "ttyACM1");
}

// The file changes while a module is on its way into its boot loader: the
// station sees it at its next look, says so and logs it, and the module,
// once in its boot loader, gets the line of a module left there.
TEST(ProductionLine, AStationSeesItsFirmwareFileChangeAndLogsTheModuleItLeaves) {
    FakeLine fake;
    fake.scripts["ttyACM0"] = "exit 0";
    std::vector<ListedModule> listing = {{"ttyACM0", "SB1", R}};
    std::vector<std::string> notes;
    Station station({fake.Settings(), 0, [&] { return listing; }, [&](const std::string& t) { notes.push_back(t); }},
                    fake.Hooks());
    station.Refresh();
    TempFolder::Write(fake.firmware.Path(), "changed");
    station.CheckFirmware();
    ASSERT_TRUE(station.Refusal());
    EXPECT_EQ(notes, std::vector<std::string>{*station.Refusal()});
    listing = {{"ttyACM1", "SB1", B}};
    RunOut(station.Line());
    EXPECT_TRUE(station.Finished());
    std::vector<std::string> logged;
    for (const auto& line : fake.Logged())
        logged.push_back(line["result"].get<std::string>() + " " + line["port"].dump());
    EXPECT_EQ(logged, (std::vector<std::string>{"started \"ttyACM0\"", "firmware changed null",
                                                "not downloaded \"ttyACM1\""}));
}

// A station's day, step by step: the modules listed, what the book starts for
// them and which it leaves alone as programmed, and whether those jobs succeed.
TEST(StationBook, ProgramsEachModuleOnceAndAFailedOneWhenPluggedInAgain) {
    struct Step {
        std::vector<ListedModule> listing;
        std::vector<std::string> starts;  // "boot PORT" or "flash PORT"
        std::vector<std::string> skipped = {};
        bool ok = true;
    };
    const std::vector<Step> day = {
        // Running: into the boot loader, and downloaded when it shows up there.
        {{{"ttyACM0", "S1", R}}, {"boot ttyACM0"}},
        {{{"ttyACM0", "S1", R}}, {}},
        // Two ports of one serial are two modules.
        {{{"ttyACM1", "S1", B}, {"ttyACM2", "S2", B}, {"ttyACM5", "S2", B}},
         {"flash ttyACM1", "flash ttyACM2", "flash ttyACM5"}},
        // Programmed, back after RUN: left alone. One more of a serial whose
        // modules are all here: a module of its own.
        {{{"ttyACM0", "S1", R}, {"ttyACM2", "S2", B}, {"ttyACM5", "S2", B}, {"ttyACM6", "S2", B}},
         {"flash ttyACM6"},
         {"ttyACM0"}},
        // A failure stays failed while the module stays plugged in...
        {{{"ttyACM3", "S3", B}}, {"flash ttyACM3"}, {}, false},
        {{{"ttyACM3", "S3", B}}, {}},
        // ...and is tried again once it was away.
        {{}, {}},
        {{{"ttyACM4", "S3", R}}, {"boot ttyACM4"}},
    };
    StationBook book;
    for (size_t i = 0; i < day.size(); ++i) {
        const StationPlan plan = book.Plan(day[i].listing);
        std::vector<std::string> names, skipped;
        for (const auto& job : plan.Jobs) names.push_back((job.Step == JobStep::Flash ? "flash " : "boot ") + job.Port);
        for (const auto& module : plan.Skipped) skipped.push_back(module.Port);
        EXPECT_EQ(names, day[i].starts) << "step " << i;
        EXPECT_EQ(skipped, day[i].skipped) << "step " << i;
        for (const auto& job : plan.Jobs) book.Started(job);
        for (const auto& job : plan.Jobs) book.Ended(job, day[i].ok);
    }
    EXPECT_EQ(book.Programmed(), 4);
}

// Count 0 runs until it is stopped; a module seen after that is named.
TEST(StationBook, EndsAfterItsCountOrAStopOnceItsJobsHaveEnded) {
    for (const int count : {1, 0}) {
        StationBook book(count);
        const auto jobs = book.Plan({{"ttyACM0", "S1", B}, {"ttyACM1", "S2", B}}).Jobs;
        ASSERT_EQ(jobs.size(), count == 0 ? 2u : 1u);
        book.Started(jobs[0]);
        if (count == 0) book.Stop();
        EXPECT_TRUE(book.Plan({{"ttyACM1", "S2", B}, {"ttyACM2", "S3", B}}).Jobs.empty()) << count;
        EXPECT_FALSE(book.Finished()) << count;
        EXPECT_EQ(CountsOf(book.Entries()), (StationCounts{0, 0, 1, 2})) << count;
        book.Ended(jobs[0], count > 0);
        EXPECT_TRUE(book.Finished()) << count;
        EXPECT_EQ(book.NotStarted().size(), 2u) << count;
        // The first module is gone: its result stands, a waiting one must be plugged in.
        book.Plan({{"ttyACM1", "S2", B}});
        EXPECT_EQ(CountsOf(book.Entries()), (StationCounts{count, 1 - count, 0, 1})) << count;
    }
}

TEST(StationBook, SerialIsTheLastPartOfTheUsbIdentity) {
    EXPECT_EQ(UsbSerialOf("USB\\VID_0483&PID_5740\\SB0001"), "SB0001");
    EXPECT_EQ(UsbSerialOf("USB\\VID_0483&PID_5740"), "");
    EXPECT_EQ(UsbSerialOf(""), "");
}

// Two modules of one serial are two rows.
TEST(Summary, NamesTheModulesWhoseLastAttemptFailed) {
    const auto record = [](int module, const char* serial, ModuleResult result) {
        ModuleRecord r;
        r.Module = module;
        r.Port = "tty" + std::to_string(module);
        r.UsbSerial = serial;
        r.Result = result;
        return r;
    };
    const Summary summary =
        Summarize({record(1, "S1", ModuleResult::NotDownloaded), record(2, "S2\x1b", ModuleResult::Hung),
                   record(1, "S1", ModuleResult::Programmed), record(3, "S2\x1b", ModuleResult::Programmed)});
    ASSERT_EQ(summary.Rows.size(), 3u);
    EXPECT_EQ(summary.Rows[0].Attempts, 2);
    EXPECT_FALSE(summary.AllSucceeded());
    const std::string table = summary.Table();
    EXPECT_TRUE(table.ends_with("\n2 of 3 modules programmed; failed: S2\\x1B (tty2) [hung]\n")) << table;
    EXPECT_EQ(table.find('\x1b'), std::string::npos) << "a device's serial never reaches the terminal raw";
}

TEST(FirmwareFile, KeepsTheBytesReadAtTheStartAndTellsAChangedFile) {
    TempFolder folder;
    const std::string path = folder.File("main.cod");
    const FirmwareFile firmware(Written(path, "firmware"));
    EXPECT_EQ(firmware.Check(), FirmwareState::Unchanged);
    EXPECT_EQ(FirmwareFile(std::filesystem::relative(path).string()).Path(), path);
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

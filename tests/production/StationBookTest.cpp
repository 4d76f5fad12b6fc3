#include "production/StationBook.h"

#include <gtest/gtest.h>

#include "production/FirmwareFile.h"
#include "production/Summary.h"
#include "../helpers/TempFolder.h"

namespace sb {
namespace {

using test::TempFolder;

constexpr ModuleMode R = ModuleMode::Running;
constexpr ModuleMode B = ModuleMode::Boot;

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

TEST(StationBook, EndsAfterItsCountOrAStop) {
    StationBook counted(1);
    const auto jobs = counted.Plan({{"ttyACM0", "S1", B}, {"ttyACM1", "S2", B}});
    ASSERT_EQ(jobs.size(), 1u);
    counted.Started(jobs[0]);
    EXPECT_FALSE(counted.Finished());
    counted.Ended(jobs[0], true);
    EXPECT_TRUE(counted.Finished());
    EXPECT_TRUE(counted.Plan({{"ttyACM1", "S2", B}}).empty());

    StationBook stopped;
    const auto first = stopped.Plan({{"ttyACM0", "S1", B}});
    stopped.Started(first[0]);
    stopped.Stop();
    EXPECT_TRUE(stopped.Plan({{"ttyACM1", "S2", B}}).empty());
    EXPECT_FALSE(stopped.Finished());
    stopped.Ended(first[0], false);
    EXPECT_TRUE(stopped.Finished());
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
    ASSERT_EQ(summary.Failed().size(), 1u);
    EXPECT_EQ(summary.Failed()[0]->Last.UsbSerial, "S2");
    EXPECT_NE(summary.Table().find("failed: S2 (ttyS2) [hung]"), std::string::npos) << summary.Table();
}

TEST(FirmwareFile, KeepsTheBytesReadAtTheStartAndTellsAChangedFile) {
    TempFolder folder;
    const std::string path = folder.File("main.cod");
    TempFolder::Write(path, "firmware");
    const FirmwareFile firmware(path);
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

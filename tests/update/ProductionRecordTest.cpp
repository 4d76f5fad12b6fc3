#include <gtest/gtest.h>

#include <optional>

#include "../helpers/TempFolder.h"
#include "../link/ScriptedModule.h"
#include "FakeBootLoader.h"
#include "helpers/IniFile.h"
#include "update/ProductionRecord.h"

// The production record against the fake boot loader and a sniffer.ini of
// the test's own.
namespace sb {
namespace {

using test::TempFolder;

struct RecordRig {
    RecordRig() { port.SetPortOpen(true); }

    ProductionRecord Write() { return WriteProductionRecord(port, status, Ini()); }
    std::string Ini() const { return folder.File("sniffer.ini"); }
    std::string Read(const std::string& section, const std::string& key) const {
        return IniReadValue(section, key, "(missing)", Ini());
    }

    TempFolder folder;
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    test::FakeBootLoader module{port, clock};
};

TEST(ProductionRecord, TheFirstRecordMakesTheFile) {
    RecordRig rig;
    const ProductionRecord record = rig.Write();
    EXPECT_EQ(record.End, RecordEnd::Written);
    const std::vector<std::string> commands = {"GETSN",    "GETVER", "GETNAME",
                                               "GETPDATE", "GETUID", "CLROTP 3A0F5C21D4E8B907"};
    EXPECT_EQ(rig.module.commands, commands);
    // The count with its leading blank, the answers trimmed.
    EXPECT_EQ(TempFolder::Read(rig.Ini()),
              "[STAT]\r\nQTY= 1\r\n"
              "[STAT_00000001]\r\nSN=00004711\r\nVer=1.04.02\r\nName=Sniffer\r\nDate=17.01.2024\r\n"
              "UID=3A0F5C21D4E8B907\r\n");
}

TEST(ProductionRecord, NumbersTheRecordBehindTheCount) {
    const struct {
        const char* name;
        std::string before;
        std::string count;
        std::string section;
    } cases[] = {
        {"a file without the count", "[FRMLOAD]\r\nDIR=/tmp\r\n", " 1", "STAT_00000001"},
        {"a count of 9", "[STAT]\r\nQTY= 9\r\n", " 10", "STAT_0000000A"},
        {"a count that is no number", "[STAT]\r\nQTY=abc\r\n", " 1", "STAT_00000001"},
        {"an empty count", "[STAT]\r\nQTY=\r\n", " 1", "STAT_00000001"},
        {"a count lowered by hand", "[STAT]\r\nQTY=0\r\n[STAT_00000001]\r\nSN=old\r\nVer=old\r\n", " 1",
         "STAT_00000001"},
    };
    for (const auto& c : cases) {
        RecordRig rig;
        TempFolder::Write(rig.Ini(), c.before);
        const ProductionRecord record = rig.Write();
        EXPECT_EQ(record.End, RecordEnd::Written) << c.name;
        EXPECT_EQ(record.Section, c.section) << c.name;
        EXPECT_EQ(rig.Read("STAT", "QTY"), c.count.substr(1)) << c.name;
        EXPECT_NE(TempFolder::Read(rig.Ini()).find("QTY=" + c.count + "\r\n"), std::string::npos) << c.name;
        EXPECT_EQ(rig.Read(c.section, "SN"), "00004711") << c.name;
        EXPECT_EQ(rig.Read(c.section, "Ver"), "1.04.02") << c.name;
    }
    // The chooser's section beside the records stays.
    RecordRig rig;
    TempFolder::Write(rig.Ini(), "[FRMLOAD]\r\nDIR=/tmp\r\n");
    rig.Write();
    EXPECT_EQ(rig.Read("FRMLOAD", "DIR"), "/tmp");
}

TEST(ProductionRecord, WritesNothingUnlessTheModuleConfirmsTheClearing) {
    const std::string before = "[STAT]\r\nQTY= 3\r\n";
    const struct {
        const char* name;
        std::string command, answer;
        RecordEnd end;
        bool clearing;  // CLROTP went out
    } cases[] = {
        {"a UID of 15 characters", "GETUID", "3A0F5C21D4E8B90", RecordEnd::UidNotSixteen, false},
        {"a UID of 17 characters", "GETUID", "3A0F5C21D4E8B9071", RecordEnd::UidNotSixteen, false},
        {"a refused clearing", "CLROTP", "Error!", RecordEnd::NotCleared, true},
        {"ok in small letters", "CLROTP", "ok", RecordEnd::NotCleared, true},
        {"NOK holds OK", "CLROTP", "NOK", RecordEnd::Written, true},
        {"a serial number Error!", "GETSN", "Error!", RecordEnd::SerialError, true},
    };
    for (const auto& c : cases) {
        RecordRig rig;
        TempFolder::Write(rig.Ini(), before);
        rig.module.answers[c.command] = c.answer;
        EXPECT_EQ(rig.Write().End, c.end) << c.name;
        EXPECT_EQ(rig.module.commands.size(), c.clearing ? 6u : 5u) << c.name;
        if (c.end == RecordEnd::Written)
            EXPECT_EQ(rig.Read("STAT", "QTY"), "4") << c.name;
        else
            EXPECT_EQ(TempFolder::Read(rig.Ini()), before) << c.name;
    }
}

TEST(ProductionRecord, AnswersAreKeptAsTheyComeAndAFailingPortIsSkipped) {
    RecordRig rig;
    rig.module.answers.erase("GETNAME");  // "Error!"
    rig.module.answers["GETPDATE"] = "  ";
    const ProductionRecord record = rig.Write();
    EXPECT_EQ(record.End, RecordEnd::Written);
    EXPECT_EQ(rig.Read(record.Section, "Name"), "Error!");
    // An empty answer removes the key rather than writing it.
    EXPECT_EQ(rig.Read(record.Section, "Date"), "(missing)");

    RecordRig broken;
    broken.port.failOutput = true;
    const ProductionRecord none = broken.Write();
    EXPECT_EQ(none.End, RecordEnd::UidNotSixteen);
    ASSERT_TRUE(none.PortFailure.has_value());
    EXPECT_EQ(none.UID, "");
}

}  // namespace
}  // namespace sb

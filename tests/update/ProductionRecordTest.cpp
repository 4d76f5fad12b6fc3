#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

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
    RecordRig(const std::string& before, const std::string& command = "", const std::string& answer = "") {
        port.SetPortOpen(true);
        if (!before.empty()) TempFolder::Write(Ini(), before);
        if (!command.empty()) module.answers[command] = answer;
    }
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
    RecordRig rig("");
    EXPECT_EQ(rig.Write().End, RecordEnd::Written);
    EXPECT_EQ(rig.module.commands, (std::vector<std::string>{"GETSN", "GETVER", "GETNAME", "GETPDATE", "GETUID",
                                                              "CLROTP 3A0F5C21D4E8B907"}));
    // The count with its leading blank, the answers trimmed.
    EXPECT_EQ(TempFolder::Read(rig.Ini()), "[STAT]\r\nQTY= 1\r\n[STAT_00000001]\r\nSN=00004711\r\nVer=1.04.02\r\n"
                                           "Name=Sniffer\r\nDate=17.01.2024\r\nUID=3A0F5C21D4E8B907\r\n");
}

TEST(ProductionRecord, NumbersTheRecordBehindTheCountAndKeepsEachAnswerOnOneLine) {
    const std::vector<std::vector<std::string>> cases = {  // before, command, answer; section, QTY, key, value
        {"[FRMLOAD]\r\nDIR=/tmp\r\n", "", "", "STAT_00000001", " 1", "Name", "Sniffer"},
        {"[STAT]\r\nQTY= 9\r\n", "", "", "STAT_0000000A", " 10", "Name", "Sniffer"},
        {"[STAT]\r\nQTY=abc\r\n", "", "", "STAT_00000001", " 1", "Name", "Sniffer"},
        {"[STAT]\r\nQTY=\r\n", "", "", "STAT_00000001", " 1", "Name", "Sniffer"},
        {"[STAT]\r\nQTY=0\r\n[STAT_00000001]\r\nName=old\r\n", "", "", "STAT_00000001", " 1", "Name", "Sniffer"},
        {"[STAT]\r\nQTY=2147483646\r\n", "", "", "STAT_7FFFFFFF", " 2147483647", "UID", "3A0F5C21D4E8B907"},
        {"", "CLROTP", "NOK", "STAT_00000001", " 1", "UID", "3A0F5C21D4E8B907"},  // NOK holds OK
        {"", "GETNAME", "Sniffer\r\nC:\\V2\n", "STAT_00000001", " 1", "Name", "Sniffer\\r\\nC:\\\\V2"},
        {"", "GETPDATE", "  ", "STAT_00000001", " 1", "Date", "(missing)"},  // an empty answer leaves its key out
    };
    for (const auto& c : cases) {
        RecordRig rig(c[0], c[1], c[2]);
        const ProductionRecord record = rig.Write();
        EXPECT_EQ(record.End, RecordEnd::Written) << c[0];
        EXPECT_EQ(record.Section, c[3]) << c[0];
        EXPECT_NE(TempFolder::Read(rig.Ini()).find("QTY=" + c[4] + "\r\n"), std::string::npos) << c[0];
        EXPECT_EQ(rig.Read(c[3], c[5]), c[6]) << c[0];
        EXPECT_EQ(rig.Read("FRMLOAD", "DIR"), c[0].starts_with("[FRMLOAD]") ? "/tmp" : "(missing)");
    }
}

TEST(ProductionRecord, WritesNothingUnlessTheRecordIsConfirmedNewAndWritable) {
    const std::string three = "[STAT]\r\nQTY= 3\r\n";
    const struct {
        std::string before, command, answer;
        RecordEnd end;
        size_t sent;  // commands
        std::string fault = "";
    } cases[] = {
        {three, "GETUID", "3A0F5C21D4E8B90", RecordEnd::UidNotSixteen, 5},
        {three, "GETUID", "3A0F5C21D4E8B9071", RecordEnd::UidNotSixteen, 5},
        {three, "CLROTP", "Error!", RecordEnd::NotCleared, 6},
        {three, "CLROTP", "ok", RecordEnd::NotCleared, 6},
        {three, "GETSN", "Error!", RecordEnd::SerialError, 6},
        {"[STAT]\r\nQTY=2147483647\r\n[STAT_00000001]\r\nSN=1\r\n", "", "", RecordEnd::NoNumberLeft, 0},
        {"[STAT]\r\nQTY=1e10\r\n", "", "", RecordEnd::NoNumberLeft, 0},
        {"[STAT]\r\nQTY=1e400\r\n", "", "", RecordEnd::NoNumberLeft, 0},
        {three, "", "", RecordEnd::WriteFailed, 6, "locked"},
        {three, "", "", RecordEnd::UidNotSixteen, 0, "port"},  // each question fails, the record goes on
    };
    for (const auto& c : cases) {
        RecordRig rig(c.before, c.command, c.answer);
        if (c.fault == "locked") std::filesystem::permissions(rig.Ini(), std::filesystem::perms::owner_read);
        rig.port.failOutput = c.fault == "port";
        const ProductionRecord record = rig.Write();
        EXPECT_EQ(record.End, c.end) << c.command << c.answer << c.before;
        EXPECT_EQ(rig.module.commands.size(), c.sent) << c.command << c.answer << c.before;
        EXPECT_EQ(TempFolder::Read(rig.Ini()), c.before) << c.command << c.answer;
        const auto why = c.fault == "locked" ? std::make_error_code(std::errc::permission_denied) : std::error_code();
        EXPECT_EQ(record.WriteFailure, why) << why.message();
        EXPECT_EQ(record.PortFailure.has_value(), c.fault == "port") << c.fault;
    }
}

}  // namespace
}  // namespace sb

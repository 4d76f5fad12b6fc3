#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
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
    explicit RecordRig(const std::string& before) {
        module.port.SetPortOpen(true);
        if (!before.empty()) TempFolder::Write(Ini(), before);
    }
    ProductionRecord Write() { return WriteProductionRecord(module.port, status, Ini()); }
    std::string Ini() const { return folder.File("sniffer.ini"); }
    std::string Read(const std::string& section, const std::string& key) const {
        return IniReadValue(section, key, "(missing)", Ini());
    }

    TempFolder folder;
    test::RecordingStatus status;
    test::FakeBootLoader module;
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

// The cases of record-cases.json: the sniffer.ini before, the module's answers
// that differ, a fault of the file or the port; the record's end and the
// commands sent. A written record shows its section, count and one value;
// any other end leaves the file as it was.
TEST(ProductionRecord, EachCaseEndsAsItSays) {
    const std::map<std::string, RecordEnd> ends = {
        {"Written", RecordEnd::Written},         {"UidNotSixteen", RecordEnd::UidNotSixteen},
        {"NotCleared", RecordEnd::NotCleared},   {"SerialError", RecordEnd::SerialError},
        {"NoNumberLeft", RecordEnd::NoNumberLeft}, {"WriteFailed", RecordEnd::WriteFailed}};
    const std::string here = std::string(std::getenv("SB_SOURCE_DIR")) + "/tests/update/";
    for (const auto& c : nlohmann::json::parse(TempFolder::Read(here + "record-cases.json"))) {
        SCOPED_TRACE(c.dump());
        const std::string before = c.value("before", ""), fault = c.value("fault", "");
        RecordRig rig(before);
        const auto answers = c.value("answers", nlohmann::json::object());
        for (const auto& [command, answer] : answers.items()) rig.module.answers[command] = answer;
        if (fault == "locked") std::filesystem::permissions(rig.Ini(), std::filesystem::perms::owner_read);
        rig.module.port.failOutput = fault == "port";
        const ProductionRecord record = rig.Write();
        EXPECT_EQ(record.End, ends.at(c["end"]));
        EXPECT_EQ(rig.module.commands.size(), c["sent"]);
        EXPECT_EQ(record.PortFailure.has_value(), fault == "port");
        const auto why = fault == "locked" ? std::make_error_code(std::errc::permission_denied) : std::error_code();
        EXPECT_EQ(record.WriteFailure, why) << why.message();
        if (!c.contains("section")) {
            EXPECT_EQ(TempFolder::Read(rig.Ini()), before);
            continue;
        }
        EXPECT_EQ(record.Section, c["section"]);
        EXPECT_NE(TempFolder::Read(rig.Ini()).find("QTY=" + c["qty"].get<std::string>() + "\r\n"), std::string::npos);
        EXPECT_EQ(rig.Read(c["section"], c["key"]), c["value"]);
        EXPECT_EQ(rig.Read("FRMLOAD", "DIR"), before.starts_with("[FRMLOAD]") ? "/tmp" : "(missing)");
    }
}

}  // namespace
}  // namespace sb

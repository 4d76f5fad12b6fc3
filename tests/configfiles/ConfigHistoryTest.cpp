#include <gtest/gtest.h>

#include <cstdlib>

#include "Catalogs.h"
#include "TempFolder.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/ConfigHistory.h"

namespace sb::test {
namespace {
using namespace std::chrono;

TimePoint Day(int year) { return sys_days{std::chrono::year{year} / 1 / 31} + hours{23}; }

TEST(ConfigHistory, KeepsTheNewestHundredPerSerialNumberNewestFirst) {
    TempFolder root;
    DeviceInfo device = LoadedDevice();
    device.SN = "A/1";
    const ConfigDocument document = MakeConfigDocument(device, device.PredefCfgs.Items[1].Data);
    ConfigDocument other = document;  // its newest file is newer, its name sorts later
    other.Module.SN = "B";
    KeepInHistory(other, root.File("x"), Day(2030));
    for (int i = 0; i < 100; ++i) KeepInHistory(document, root.File("x"), Day(2020) + milliseconds(i % 2 == 0 ? i : -i));
    const std::string newest = KeepInHistory(document, root.File("x"), Day(2021));

    const std::vector<HistoryGroup> groups = ListHistory(root.File("x"));
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].SN, "B");
    ASSERT_EQ(groups[1].SN, "A/1");
    ASSERT_EQ(groups[1].Files.size(), kHistoryLimit);
    EXPECT_EQ(groups[1].Files.front().Path, newest);
    EXPECT_EQ(groups[1].Files[1].Stamp, "20200131T230000.098Z");
    EXPECT_EQ(groups[1].Files.back().Stamp, "20200131T225959.903Z");  // the oldest, 20200131T225959.901Z, went
    EXPECT_EQ(ReadConfigFile(newest).Document.Module.SN, "A/1");
}

TEST(ConfigHistory, AFolderThatCannotBeMadeIsAnError) {
    TempFolder root;
    TempFolder::Write(root.File("file"), "");
    const DeviceInfo device = LoadedDevice();
    try {
        KeepInHistory(MakeConfigDocument(device, device.PredefCfgs.Items[1].Data), root.File("file"));
        ADD_FAILURE() << "kept";
    } catch (const ConfigFileError& e) {
        EXPECT_EQ(e.Fault(), ConfigFault::CannotWrite);
    }
}

TEST(ConfigHistory, RootIsTheAbsoluteDataHomeElseTheHomesShare) {
    ::setenv("HOME", "/home/tech", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(HistoryRoot(), "/data/servicebay/history");
    ::setenv("XDG_DATA_HOME", "data", 1);
    EXPECT_EQ(HistoryRoot(), "/home/tech/.local/share/servicebay/history");
}

}  // namespace
}  // namespace sb::test

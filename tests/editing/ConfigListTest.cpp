#include <gtest/gtest.h>

#include "editing/ConfigList.h"

namespace sb {
namespace {

DeviceInfo CatalogOfFiveBytes(std::string appConfig) {
    DeviceInfo device;
    device.Options.CfgLen = 5;
    const std::string data(5, '\0');
    // Name, Data, Info, ExtraMask, DisabledMask, VisibleMask, Id
    device.PredefCfgs.Items = {{"Car", data, "first", "E1", "04", "05", "00000004"},
                               {"Van", data, "second", "E2", "01", "03", "12345678"},
                               {"Van again", data, "third", "E3", "FF", "FF", "12345678"}};
    device.AppConfig = std::move(appConfig);
    return device;
}

std::string Fields(const PredefCfg& c) {
    return c.Name + "|" + c.Info + "|" + c.ExtraMask + "|" + c.DisabledMask + "|" + c.VisibleMask + "|" + c.Id;
}

TEST(ReadedConfig, IsAppendedWithInfoAndMasksOfTheFirstEntryOfItsId) {
    DeviceInfo device = CatalogOfFiveBytes("78 56 34 12 0c");
    ASSERT_EQ(AppendReadedConfig(device), ReadedConfig::Appended);
    EXPECT_EQ(Fields(device.PredefCfgs.Items.at(3)), "READED CONFIG|second|E2|01|03|12345678");
    EXPECT_EQ(device.PredefCfgs.Items[3].Data, std::string("\x78\x56\x34\x12\x0C", 5));
    EXPECT_EQ(device.AppConfig, "785634120C");

    device = CatalogOfFiveBytes("0x0100000000");
    ASSERT_EQ(AppendReadedConfig(device), ReadedConfig::Appended);
    EXPECT_EQ(Fields(device.PredefCfgs.Items.at(3)), "READED CONFIG|No info about configuration|0|0|0|00000001");
}

TEST(ReadedConfig, AnythingButTwoDigitsAByteIsTheWrongLength) {
    for (const char* answer : {"No answer", "", "785634120C00", "785634120", "Error!"}) {
        DeviceInfo device = CatalogOfFiveBytes(answer);
        EXPECT_EQ(AppendReadedConfig(device), ReadedConfig::WrongLength) << answer;
        EXPECT_EQ(device.PredefCfgs.Count(), 3);
    }
}

TEST(ConfigInfo, ShowsTheSelectedEntryElseShortInfo) {
    const DeviceInfo device = CatalogOfFiveBytes("");
    const ConfigInfoView van = InfoOfEntry(device, 1, 3);
    EXPECT_EQ(van.Info + "|" + van.Caption, "second|Short info for configuration: Van");
    for (const auto& [index, count] : {std::pair{-1, 3}, {3, 3}, {3, 4}}) {
        const ConfigInfoView none = InfoOfEntry(device, index, count);
        EXPECT_EQ(none.Info + "|" + none.Caption, "|Short info") << index << " of " << count;
    }
}

}  // namespace
}  // namespace sb

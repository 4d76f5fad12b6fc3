#include <gtest/gtest.h>

#include "editing/ConfigList.h"

namespace sb {
namespace {

PredefCfg Entry(std::string name, std::string id, std::string info, std::string disabled, std::string visible) {
    PredefCfg cfg;
    cfg.Name = std::move(name);
    cfg.Id = std::move(id);
    cfg.Info = std::move(info);
    cfg.DisabledMask = std::move(disabled);
    cfg.VisibleMask = std::move(visible);
    cfg.ExtraMask = "E";
    cfg.Data = std::string(5, '\0');
    return cfg;
}

DeviceInfo CatalogOfFiveBytes(std::string appConfig) {
    DeviceInfo device;
    device.Options.CfgLen = 5;
    device.PredefCfgs.Items = {Entry("Car", "00000004", "first", "04", "05"),
                               Entry("Van", "12345678", "second", "01", "03"),
                               Entry("Van again", "12345678", "third", "FF", "FF")};
    device.AppConfig = std::move(appConfig);
    return device;
}

TEST(ReadedConfig, TakesInfoAndMasksOfTheFirstEntryWithItsId) {
    DeviceInfo device = CatalogOfFiveBytes("78 56 34 12 0c");
    ASSERT_EQ(AppendReadedConfig(device), ReadedConfig::Appended);
    ASSERT_EQ(device.PredefCfgs.Count(), 4);
    const PredefCfg& read = device.PredefCfgs.Items.back();
    EXPECT_EQ(read.Name, "READED CONFIG");
    EXPECT_EQ(read.Data, std::string("\x78\x56\x34\x12\x0C", 5));
    EXPECT_EQ(read.Id, "12345678");
    EXPECT_EQ(read.Info, "second");
    EXPECT_EQ(read.DisabledMask, "01");
    EXPECT_EQ(read.VisibleMask, "03");
    EXPECT_EQ(read.ExtraMask, "E");
    EXPECT_EQ(device.AppConfig, "785634120C");
}

TEST(ReadedConfig, UnknownIdStandsWithoutInfoAndWithEmptyMasks) {
    DeviceInfo device = CatalogOfFiveBytes("0x0100000000");
    ASSERT_EQ(AppendReadedConfig(device), ReadedConfig::Appended);
    const PredefCfg& read = device.PredefCfgs.Items.back();
    EXPECT_EQ(read.Id, "00000001");
    EXPECT_EQ(read.Info, "No info about configuration");
    EXPECT_EQ(read.DisabledMask, "0");
    EXPECT_EQ(read.VisibleMask, "0");
    EXPECT_EQ(read.ExtraMask, "0");
}

TEST(ReadedConfig, AnythingButTwoDigitsAByteIsTheWrongLength) {
    for (const char* answer : {"No answer", "", "785634120C00", "785634120", "Error!"}) {
        DeviceInfo device = CatalogOfFiveBytes(answer);
        EXPECT_EQ(AppendReadedConfig(device), ReadedConfig::WrongLength) << answer;
        EXPECT_EQ(device.PredefCfgs.Count(), 3);
    }
}

}  // namespace
}  // namespace sb

#include <gtest/gtest.h>

#include "editing/ConfigList.h"
#include "helpers/HexText.h"

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

// The entry that the module's answer adds: its fields, its data and the
// answer as hex text, with info and masks of the first entry of its Id; none
// for an answer that is not two hex digits a byte.
TEST(ReadedConfig, IsAppendedWithInfoAndMasksOfTheFirstEntryOfItsIdOrNotAtAll) {
    const std::pair<const char*, const char*> cases[] = {
        {"78 56 34 12 0c", "READED CONFIG|second|E2|01|03|12345678|785634120C|785634120C"},
        {"0x0100000000", "READED CONFIG|No info about configuration|0|0|0|00000001|0100000000|0100000000"},
        {"No answer", ""}, {"", ""}, {"785634120C00", ""}, {"785634120", ""}, {"Error!", ""}};
    for (const auto& [answer, readed] : cases) {
        DeviceInfo device = CatalogOfFiveBytes(answer);
        EXPECT_EQ(AppendReadedConfig(device), *readed ? ReadedConfig::Appended : ReadedConfig::WrongLength) << answer;
        const auto& items = device.PredefCfgs.Items;
        const std::string added = items.size() > 3 ? Fields(items[3]) + "|" + BytesToHex(items[3].Data) : "";
        EXPECT_EQ(added.empty() ? added : added + "|" + device.AppConfig, readed) << answer;
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

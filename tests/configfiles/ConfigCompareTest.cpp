#include <gtest/gtest.h>

#include <vector>

#include "Catalogs.h"
#include "configfiles/ConfigCompare.h"
#include "configfiles/WriteChecks.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

TEST(ConfigCompare, OneChangedOptionIsTheOneNamedWithBothShownTexts) {
    const DeviceInfo device = LoadedDevice();
    const std::string a = device.PredefCfgs.Items[1].Data;
    const std::string b = WithOption(device, 0, "00000001");
    EXPECT_TRUE(CompareConfigurations(device, a, device, a).Equal());
    const ConfigComparison c = CompareConfigurations(device, a, device, b);
    ASSERT_EQ(c.Options.size(), 1u);
    EXPECT_EQ(c.Options[0].Name, "Mod\xE9");
    EXPECT_EQ(c.Options[0].A.Shown, "Off");
    EXPECT_EQ(c.Options[0].B.Shown, "On");
    EXPECT_EQ(CompareConfigurations(device, a, device, b, CompareMode::All).Options.size(), 3u);
    EXPECT_EQ(ComparisonJson(c).dump(),
              R"({"equal":false,"options":[{"name":")" "Mod\u00E9" R"(","differs":true,)"
              R"("a":{"index":0,"value":"00000000","shown":"Off","hidden":false},)"
              R"("b":{"index":0,"value":"00000001","shown":"On","hidden":false}}]})");
}

TEST(ConfigCompare, LinesMatchOptionsByNameAcrossCatalogsAndMarkHiddenOnes) {
    const DeviceInfo a = LoadedDevice();
    // B's catalog has no Hidden but a Speed, other units for Limit, another
    // text for Mode's 1, and no configuration of the Id 00000004.
    const DeviceInfo b = LoadedDevice(CatalogXml(
        "8",
        R"(<O N="Limit" S="30" L="10" T="INT" U=" kph"/><O N="Speed" S="28" L="2" T="INT"/>)"
        "<O N=\"Mod\xE9\" S=\"20\" L=\"8\" T=\"INT\"><L V=\"1\">Off</L></O>",
        R"(<C V="7">0900000000002C01</C>)"));
    const std::vector<std::string> lines = ComparisonLines(
        CompareConfigurations(a, a.PredefCfgs.Items[1].Data, b, WithOption(a, 0, "00000001")), "file", "module");
    EXPECT_EQ(lines, (std::vector<std::string>{"-Hidden:00000000  (hidden in file)",
                                               " Mod\xE9:Off [00000000] -> Off [00000001]  (hidden in module)",
                                               " Limit:0000012C km/h -> 0000012C kph  (hidden in module)",
                                               "+Speed:00000000  (hidden in module)"}));
}

TEST(WriteChecks, FitAndVerifyJudgeByTheModulesCatalog) {
    const DeviceInfo module = LoadedDevice();
    const std::string sent = module.PredefCfgs.Items[1].Data;
    EXPECT_EQ(CheckFit(module, module.PredefCfgs.Items[0].Data).Verdict, Fit::Fits);
    EXPECT_EQ(CheckFit(module, sent + '\0').Verdict, Fit::WrongLength);
    EXPECT_EQ(CheckFit(module, HexToBytes("0500000000002C01")).Verdict, Fit::UnknownId);

    EXPECT_TRUE(VerifyWrite(module, sent, "04000000 00002C01").Holds);
    EXPECT_EQ(VerifyMessage(VerifyWrite(module, sent, BytesToHex(WithOption(module, 2, "00000050")))),
              "The module holds another configuration than the one written:\n"
              " Limit:0000012C km/h -> 00000050 km/h");
    const VerifyResult unread = VerifyWrite(module, sent, "No answer");
    EXPECT_FALSE(unread.Holds || unread.ReadBack);
    const VerifyResult outside = VerifyWrite(module, sent, "0401000000002C01");  // no option covers the Id
    EXPECT_FALSE(outside.Holds);
    EXPECT_TRUE(outside.Differences.Options.empty());
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include "../config/CatalogText.h"
#include "../helpers/TempFolder.h"
#include "../link/ScriptedModule.h"
#include "../update/FakeBootLoader.h"
#include "helpers/HexText.h"
#include "production/RecipeRun.h"

namespace sb::test {
namespace {

// Option A in a configuration of five bytes, Id 00000003.
const std::string kCatalog =
    CatalogXml("5", R"(<O N="A" S="20" L="8" T="INT"/>)", R"(<C V="3">0300000000</C>)");
constexpr const char* kFirmware = "firmware";
constexpr const char* kFirmwareSha256 = "c3bf47ea1f4a4a605470313cacb3a44f4a461f68c6faeab07e737610cb5ac835";

Recipe RecipeOf(const nlohmann::json& c, const std::string& firmware) {
    Recipe recipe;
    recipe.Firmware = {firmware, c.value("sha256", kFirmwareSha256)};
    if (c.contains("pname")) recipe.ExpectedPName = c["pname"].get<std::string>();
    if (c.value("configuration", false)) {
        LoadedConfig config;
        config.Device = Load(kCatalog).device;
        config.Device.CfgImage = HexToBytes("0300000005");
        config.Document = MakeConfigDocument(config.Device, config.Device.CfgImage);
        recipe.Config = config;
    }
    recipe.ProductionRecord = c.value("record", false);
    recipe.RunAfter = c.value("run", false);
    return recipe;
}

// Each case of recipe-run-cases.json: the module's answers that differ from
// a healthy one's, a GETSN answer that changes from its nth question on, and
// the step that fails (with a part of why), how often BOOT went out, and
// the steps begun.
TEST(RecipeRun, TheFirstStepThatFailsEndsTheModule) {
    for (const nlohmann::json& c : TestCases("production/recipe-run-cases.json")) {
        SCOPED_TRACE(c["name"].get<std::string>());
        TempFolder folder(c["name"].get<std::string>());
        TempFolder::Write(folder.File("fw.cod"), kFirmware);
        const Recipe recipe = RecipeOf(c, folder.File("fw.cod"));
        FakeBootLoader module;
        module.answers.insert({{"GETINFOFILE", kCatalog}, {"SETAPPCFG", "OK"}, {"GETAPPCFG", "0300000005"}});
        const nlohmann::json answers = c.value("answers", nlohmann::json::object());
        for (const auto& [command, answer] : answers.items()) module.answers[command] = answer;
        const auto take = module.port.onOutput;
        int serials = 0;
        module.port.onOutput = [&](const std::string& bytes) {
            if (c.contains("sn_from") && bytes == "GETSN\r" && ++serials == c["sn_from"][0])
                module.answers["GETSN"] = c["sn_from"][1];
            take(bytes);
        };
        RecordingStatus status;
        std::vector<std::string> entered;
        const auto enter = [&entered](RecipeStep step) { entered.push_back(StepName(step)); };
        const RecipeOutcome outcome = RecipeRun(module.port, status, recipe, {}, enter)
                                          .Run("ttyACM0", folder.File("fw.cod"), folder.File("sniffer.ini"));
        if (c.contains("entered")) {
            EXPECT_EQ(entered, c["entered"].get<std::vector<std::string>>());
        }
        EXPECT_FALSE(module.port.PortOpen());
        EXPECT_EQ(module.boots, c["boots"].get<int>());
        EXPECT_EQ(outcome.Failed ? StepName(*outcome.Failed) : nlohmann::json(), c["failed"]);
        EXPECT_NE(outcome.Detail.find(c.value("says", "")), std::string::npos) << outcome.Detail;
    }
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "../helpers/TempFolder.h"
#include "CatalogText.h"
#include "config/CatalogFile.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/BitMasks.h"

namespace sb::test {
namespace {

TEST(CatalogFile, GivesTheDocumentAndTheModulesConfiguration) {
    TempFolder folder;
    const std::string path = folder.File("ConfigOptions.xml");
    const std::string original = "<?xml version=\"1.0\"?>\n<!-- a module -->\n" +
                                 CatalogXml("5", "<O N=\"Stra\xDF" "e\" T=\"BIN\" L=\"8\"><L V=\"01\"> One </L></O>",
                                            "<C N=\"written 00\" I=\"00\">1111111111</C>\n"
                                            "<C N=\"module\" I=\"0\">\n  00 00 00 00 01\n</C>\n"
                                            "<C N=\"second\" I=\"0\">0000000002</C>");
    TempFolder::Write(path, original);

    const CatalogFile file = LoadCatalogFile(path);
    ASSERT_TRUE(file.Loaded);
    EXPECT_EQ(file.Reason, "");
    EXPECT_EQ(file.AppConfig, "00 00 00 00 01");

    // The document text loads as the file itself does.
    const auto fromXml = Load(file.Xml);
    const auto fromFile = Load(original);
    ASSERT_TRUE(fromXml.ok);
    ASSERT_TRUE(fromFile.ok);
    EXPECT_EQ(fromXml.device.Options.Items[0].Name, "Stra\xDF" "e");
    EXPECT_EQ(fromXml.device.Options.Items[0].Values.Items[0].Text, "One");
    ASSERT_EQ(fromXml.device.PredefCfgs.Count(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(fromXml.device.PredefCfgs.Items[i].Name, fromFile.device.PredefCfgs.Items[i].Name);
        EXPECT_EQ(fromXml.device.PredefCfgs.Items[i].Data, fromFile.device.PredefCfgs.Items[i].Data);
        EXPECT_EQ(fromXml.device.PredefCfgs.Items[i].Id, "00000000");
    }
}

TEST(CatalogFile, ReportsWhyAFileIsNoDocument) {
    TempFolder folder;
    struct Case {
        const char* what;
        std::string path;
        std::string content;  // written when not empty
        std::string inReason;
    };
    const std::vector<Case> cases = {
        {"missing", folder.File("none.xml"), "", "none.xml"},
        {"a folder", folder.Path().string(), "", folder.Path().string()},
        {"broken", folder.File("broken.xml"), "<CFG>\n<PDF></CFG>", "line 2"},
        {"no element", folder.File("blank.xml"), " \n", "line"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        if (!c.content.empty()) TempFolder::Write(c.path, c.content);
        const CatalogFile file = LoadCatalogFile(c.path);
        EXPECT_FALSE(file.Loaded);
        EXPECT_NE(file.Reason.find(c.inReason), std::string::npos) << file.Reason;
        EXPECT_EQ(file.Xml, "");
    }
    // A document without the module's configuration still loads.
    const std::string path = folder.File("plain.xml");
    TempFolder::Write(path, CatalogXml("5", "", Cfg5("I=\"00\"")));
    const CatalogFile file = LoadCatalogFile(path);
    EXPECT_TRUE(file.Loaded);
    EXPECT_EQ(file.AppConfig, "");
}

// The demonstration catalog of the virtual module shows every feature of
// the format and stays small enough for the terminal's reads.
TEST(SampleCatalog, ShowsEveryFeatureCompactly) {
    const char* source = std::getenv("SB_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    const std::string path = std::string(source) + "/data/SampleCatalog.xml";
    EXPECT_LT(TempFolder::Read(path).size(), 4096u);

    const CatalogFile file = LoadCatalogFile(path);
    ASSERT_TRUE(file.Loaded) << file.Reason;
    EXPECT_FALSE(file.AppConfig.empty());
    LoadResult r = Load(TempFolder::Read(path));
    ASSERT_TRUE(r.ok);

    std::set<std::string> types;
    bool units = false, list = false, setMask = false, resetValue = false;
    for (const OptionRec& option : r.device.Options.Items) {
        types.insert(option.Type);
        units |= !option.Units.empty();
        list |= option.Type != "BITFIELD" && option.Values.Count() > 1;
        if (option.Type != "BITFIELD") continue;
        for (const OptValue& member : option.Values.Items) {
            setMask |= member.SetMask != member.Mask;
            resetValue |= member.ResetValue != HexNot(member.Value);
        }
    }
    EXPECT_EQ(types.size(), 5u);
    for (const char* type : {"INT", "BIN", "STR", "BITFIELD"}) EXPECT_TRUE(types.contains(type)) << type;
    EXPECT_TRUE(units);
    EXPECT_TRUE(list);
    EXPECT_TRUE(setMask);
    EXPECT_TRUE(resetValue);

    ASSERT_GE(r.device.PredefCfgs.Count(), 2);
    bool locked = false, hidden = false;
    for (const PredefCfg& cfg : r.device.PredefCfgs.Items) {
        MemoryOptionTree tree;
        EXPECT_TRUE(BuildOptionTree(cfg.Data, r.device, tree)) << cfg.Name;
        locked |= cfg.DisabledMask != "0";
        const size_t shown = tree.Roots().at(0)->Children().size();
        hidden |= shown < static_cast<size_t>(r.device.Options.Count());
        EXPECT_GT(shown, 0u) << cfg.Name;
    }
    EXPECT_TRUE(locked);
    EXPECT_TRUE(hidden);
}

}  // namespace
}  // namespace sb::test

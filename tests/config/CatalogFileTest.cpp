#include <gtest/gtest.h>

#include "CatalogText.h"
#include "config/CatalogFile.h"

namespace sb::test {
namespace {

using namespace std::string_literals;

TEST(CatalogFile, GivesTheDocumentAndTheModulesConfiguration) {
    TempFolder folder;
    const std::string path = folder.File("ConfigOptions.xml");
    TempFolder::Write(path, "<?xml version=\"1.0\"?>\n<!-- a module -->\n" +
                                CatalogXml("5", "<O N=\"Stra\xDF" "e\" T=\"BIN\" L=\"8\"><L V=\"01\"> One </L></O>",
                                           "<C N=\"written 00\" I=\"00\">1111111111</C>\n"
                                           "<C N=\"module\" I=\"0\">\n  00 00 00 00 01\n</C>"
                                           "<C I=\"0\">0000000002</C>"));
    const CatalogFile file = LoadCatalogFile(path);
    ASSERT_TRUE(file.Loaded);
    EXPECT_EQ(file.Reason, "");
    EXPECT_EQ(file.AppConfig, "00 00 00 00 01");  // the first C whose I is written "0"
    // The document's text loads as the file does, byte for byte.
    const auto r = Load(file.Xml);
    ASSERT_EQ(r.device.PredefCfgs.Count(), 3);
    EXPECT_EQ(r.device.Options.Items[0].Name, "Stra\xDF" "e");
    EXPECT_EQ(r.device.PredefCfgs.Items[1].Name + r.device.PredefCfgs.Items[1].Data, "module\0\0\0\0\1"s);
}

TEST(CatalogFile, SaysWhyAFileIsNoDocument) {
    TempFolder folder;
    TempFolder::Write(folder.File("broken.xml"), "<CFG>\n<PDF></CFG>");
    TempFolder::Write(folder.File("blank.xml"), " \n");
    const std::pair<std::string, std::string> cases[] = {  // the path, a piece of the reason
        {folder.File("none.xml"), "none.xml"}, {folder.Path().string(), folder.Path().string()},
        {folder.File("broken.xml"), "line 2"}, {folder.File("blank.xml"), "line"},
    };
    for (const auto& [path, reason] : cases) {
        const CatalogFile file = LoadCatalogFile(path);
        EXPECT_FALSE(file.Loaded) << path;
        EXPECT_NE(file.Reason.find(reason), std::string::npos) << file.Reason;
        EXPECT_EQ(file.Xml, "") << path;
    }
}

}  // namespace
}  // namespace sb::test

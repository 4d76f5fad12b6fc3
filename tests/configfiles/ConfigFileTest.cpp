#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "Catalogs.h"
#include "TempFolder.h"
#include "config/MemoryOptionTree.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/JsonBytes.h"

namespace sb::test {
namespace {

// One line a node: key, text, tag.
std::vector<std::string> TreeOf(const std::string& image, const DeviceInfo& device) {
    MemoryOptionTree tree;
    EXPECT_TRUE(BuildOptionTree(image, device, tree));
    std::vector<std::string> lines;
    std::function<void(const MemoryTreeNode&)> walk = [&](const MemoryTreeNode& node) {
        lines.push_back(node.Key() + " " + node.Text() + " [" + node.Tag() + "]");
        for (const MemoryTreeNode* child : node.Children()) walk(*child);
    };
    for (const MemoryTreeNode* root : tree.Roots()) walk(*root);
    return lines;
}

TEST(ConfigFile, SavedFileOpensToTheSameTreeIdentityAndCatalog) {
    TempFolder folder;
    DeviceInfo device = LoadedDevice();
    device.SN = std::string("S\0N\xE9", 4);
    device.VIN = "WVW123";
    const std::string image = WithOption(device, 2, "00000050");
    WriteConfigFile(folder.File("a.sbconf"), MakeConfigDocument(device, image));

    const LoadedConfig opened = ReadConfigFile(folder.File("a.sbconf"));
    EXPECT_EQ(TreeOf(opened.Device.CfgImage, opened.Device), TreeOf(image, device));
    EXPECT_EQ(IdentityOf(opened.Device), IdentityOf(device));
    EXPECT_EQ(opened.Device.InfoFile, kCatalog);
    // Any JSON reader gets the bytes as the characters of the same numbers.
    const Json json = Json::parse(TempFolder::Read(folder.File("a.sbconf")));
    EXPECT_EQ(json["module"]["SN"].get<std::string>(), std::string("S\0N\xC3\xA9", 5));
    EXPECT_EQ(json["options"][1]["shown"], "00000050 km/h");
}

struct BadFile {
    const char* what;
    ConfigFault fault;
    std::function<void(std::string& text, Json& json)> spoil;  // a text left empty is the JSON's dump
};

TEST(ConfigFile, EveryBadFileIsRefusedNamingTheFile) {
    const DeviceInfo device = LoadedDevice();
    const std::string good = ConfigDocumentText(MakeConfigDocument(device, device.PredefCfgs.Items[1].Data));
    const std::vector<BadFile> cases = {
        {"empty", ConfigFault::NotJson, [](std::string& t, Json&) { t = " "; }},
        {"no JSON", ConfigFault::NotJson, [](std::string& t, Json&) { t = "CFG=1\n"; }},
        {"JSON and more", ConfigFault::NotJson, [&](std::string& t, Json&) { t = good + "}"; }},
        {"cut short", ConfigFault::CutShort, [&](std::string& t, Json&) { t = good.substr(0, good.size() / 2); }},
        {"another format", ConfigFault::OtherFormat, [](std::string&, Json& j) { j["format"] = "kconfig"; }},
        {"no document", ConfigFault::OtherFormat, [](std::string& t, Json&) { t = "[1, 2]"; }},
        {"version 2", ConfigFault::OtherVersion, [](std::string&, Json& j) { j["version"] = 2; }},
        {"refused catalog", ConfigFault::CatalogRefused, [](std::string&, Json& j) { j["catalog"] = "<CFG/>"; }},
        {"broken catalog", ConfigFault::CatalogRefused, [](std::string&, Json& j) { j["catalog"] = "<CFG>"; }},
        {"long image", ConfigFault::WrongImageLength,
         [](std::string&, Json& j) { j["image"] = j["image"].get<std::string>() + "00"; }},
        {"no image", ConfigFault::WrongImageLength, [](std::string&, Json& j) { j["image"] = ""; }},
        {"image no hex", ConfigFault::NotHex, [](std::string&, Json& j) { j["image"] = "04000000000G2C01"; }},
        {"image of half a byte", ConfigFault::NotHex, [](std::string&, Json& j) { j["image"] = "0400000000002C0"; }},
        {"no program", ConfigFault::BadField, [](std::string&, Json& j) { j.erase("program"); }},
        {"SN a number", ConfigFault::BadField, [](std::string&, Json& j) { j["module"]["SN"] = 7; }},
        {"text beyond U+00FF", ConfigFault::BadField, [](std::string&, Json& j) { j["module"]["VIN"] = "\u0100"; }},
        {"Id not the image's", ConfigFault::BadField, [](std::string&, Json& j) { j["id"] = "00000003"; }},
    };
    TempFolder folder;
    const std::string path = folder.File("bad.sbconf");
    for (const BadFile& c : cases) {
        std::string text;
        Json json = Json::parse(good);
        c.spoil(text, json);
        TempFolder::Write(path, text.empty() ? json.dump() : text);
        try {
            ReadConfigFile(path);
            ADD_FAILURE() << c.what << ": read";
        } catch (const ConfigFileError& e) {
            EXPECT_EQ(e.Fault(), c.fault) << c.what << ": " << e.what();
            EXPECT_EQ(std::string(e.what()).rfind(path + ": ", 0), 0u) << c.what << ": " << e.what();
        }
    }
    EXPECT_THROW(ReadConfigFile(folder.File("missing.sbconf")), ConfigFileError);
}

TEST(ConfigFile, ModuleAnswersBecomeADocumentOnlyWithAnImageOfTheCatalog) {
    DeviceInfo read;
    read.InfoFile = kCatalog;
    read.SN = "77";
    read.AppConfig = "04 00 00 00 00 00 2c 01";
    const LoadedConfig config = LoadModuleConfig(read, "the module");
    EXPECT_EQ(config.Document.Image, "040000000000" "2C01");
    EXPECT_EQ(config.Document.Module.SN, "77");
    read.AppConfig = "No answer";
    EXPECT_THROW(LoadModuleConfig(read, "the module"), ConfigFileError);
}

TEST(ConfigFile, WriteIntoAMissingFolderFails) {
    const DeviceInfo device = LoadedDevice();
    TempFolder folder;
    EXPECT_THROW(WriteConfigFile(folder.File("no/such/a.sbconf"), MakeConfigDocument(device, device.PredefCfgs.Items[0].Data)),
                 ConfigFileError);
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

#include "CatalogText.h"
#include "TempFolder.h"
#include "config/ConfigTool.h"
#include "configfiles/ConfigCompare.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/ConfigHistory.h"
#include "configfiles/HistoryReads.h"
#include "configfiles/JsonBytes.h"
#include "configfiles/WriteChecks.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// Option 0 Mod\xE9 (a list; its name has a byte beyond ASCII), 1 Hidden,
// 2 Limit. The passenger car (Id 00000004) shows options 0 and 2, by a mask
// of two bytes whose last one counts from option 0.
const std::string kCatalog = CatalogXml(
    "8",
    "<O N=\"Mod\xE9\" S=\"20\" L=\"8\" T=\"INT\"><L V=\"0\">Off</L><L V=\"1\">On</L></O>"
    R"(<O N="Hidden" S="28" L="8" T="INT"/>)"
    R"(<O N="Limit" S="30" L="10" T="INT" U=" km/h"/>)",
    R"(<C N="Truck" V="7">0300000001000000</C>)"
    R"(<C N="Passenger car" I="00000004" V="0005" D="04">0400000000002C01</C>)");

DeviceInfo LoadedDevice(const std::string& xml = kCatalog) {
    LoadResult r = Load(xml);
    EXPECT_TRUE(r.ok) << r.reason;
    return r.device;
}

// The passenger car's image with one option set to a raw value.
std::string WithOption(const DeviceInfo& device, int index, std::string value) {
    std::string image = device.PredefCfgs.Items[1].Data;
    SetOptionValue(image, device.Options.Items[static_cast<size_t>(index)], value);
    return image;
}

TEST(ConfigFile, SavedFileOpensToTheSameImageIdentityAndCatalog) {
    TempFolder folder;
    DeviceInfo device = LoadedDevice();
    device.SN = std::string("S\0N\xE9", 4);
    device.VIN = "WVW123";
    const std::string image = WithOption(device, 2, "00000050");
    WriteConfigFile(folder.File("a.sbconf"), MakeConfigDocument(device, image));
    EXPECT_THROW(WriteConfigFile(folder.File("no/a.sbconf"), MakeConfigDocument(device, image)), ConfigFileError);

    const LoadedConfig opened = ReadConfigFile(folder.File("a.sbconf"));
    EXPECT_EQ(opened.Device.CfgImage, image);
    EXPECT_EQ(IdentityOf(opened.Device), IdentityOf(device));
    EXPECT_EQ(opened.Device.InfoFile, kCatalog);
    // Any JSON reader gets the bytes as the characters of the same numbers,
    // and the options that the image's configuration shows.
    const Json json = Json::parse(TempFolder::Read(folder.File("a.sbconf")));
    EXPECT_EQ(json["module"]["SN"].get<std::string>(), std::string("S\0N\xC3\xA9", 5));
    EXPECT_EQ(json["options"], Json::parse(R"([{"index": 0, "name": "Mod\u00E9", "value": "00000000", "shown": "Off"},
        {"index": 2, "name": "Limit", "value": "00000050", "shown": "00000050 km/h"}])"));
}

struct BadFile {
    const char* what;
    ConfigFault fault;
    std::function<void(std::string& text, Json& json)> spoil;  // a text left empty is the JSON's dump
    const char* says = "";                                     // a piece of the message
};

// The compact JSON text with its first piece of that text in place of another.
std::string Replaced(const Json& json, const std::string& piece, const std::string& by) {
    std::string text = json.dump();
    return text.replace(text.find(piece), piece.size(), by);
}

TEST(ConfigFile, EveryBadFileIsRefusedNamingTheFile) {
    const DeviceInfo device = LoadedDevice();
    const std::string good = ConfigDocumentText(MakeConfigDocument(device, device.PredefCfgs.Items[1].Data));
    const std::vector<BadFile> cases = {
        {"empty", ConfigFault::NotJson, [](std::string& t, Json&) { t = " "; }},
        {"JSON and more", ConfigFault::NotJson, [&](std::string& t, Json&) { t = good + "}"; }},
        {"cut short", ConfigFault::CutShort, [&](std::string& t, Json&) { t = good.substr(0, good.size() / 2); }},
        {"another format", ConfigFault::OtherFormat, [](std::string&, Json& j) { j["format"] = "kconfig"; }},
        {"no document", ConfigFault::OtherFormat, [](std::string& t, Json&) { t = "[1, 2]"; }},
        {"version 2", ConfigFault::OtherVersion, [](std::string&, Json& j) { j["version"] = 2; }},
        {"refused catalog", ConfigFault::CatalogRefused, [](std::string&, Json& j) { j["catalog"] = "<CFG>"; }},
        {"long image", ConfigFault::WrongImageLength,
         [](std::string&, Json& j) { j["image"] = j["image"].get<std::string>() + "00"; }},
        {"no image", ConfigFault::WrongImageLength, [](std::string&, Json& j) { j["image"] = ""; }},
        {"image no hex", ConfigFault::NotHex, [](std::string&, Json& j) { j["image"] = "04000000000G2C01"; }},
        {"image of half a byte", ConfigFault::NotHex, [](std::string&, Json& j) { j["image"] = "0400000000002C0"; }},
        {"no program", ConfigFault::BadField, [](std::string&, Json& j) { j.erase("program"); }},
        {"SN a number", ConfigFault::BadField, [](std::string&, Json& j) { j["module"]["SN"] = 7; }},
        {"text beyond U+00FF", ConfigFault::BadField, [](std::string&, Json& j) { j["module"]["VIN"] = "\u0100"; }},
        {"Id not the image's", ConfigFault::BadField, [](std::string&, Json& j) { j["id"] = "00000003"; }},
        // Hostile files: each is refused at once, in memory of about its length, saying what is wrong.
        {"version nested 70,000 deep", ConfigFault::NotJson,
         [](std::string& t, Json& j) {
             t = Replaced(j, "\"version\":1", "\"version\":" + std::string(70000, '[') + std::string(70000, ']'));
         }, "3 levels deep"},
        {"16 MiB of [", ConfigFault::NotJson, [](std::string& t, Json&) { t = std::string(16 << 20, '['); }, "deep"},
        {"one byte more than 16 MiB", ConfigFault::Unreadable,
         [](std::string& t, Json&) { t = std::string((16 << 20) + 1, ' '); }, "too large"},
        {"a number beyond a double", ConfigFault::NotJson,
         [](std::string& t, Json& j) { t = Replaced(j, "\"index\":2", "\"index\":1e999"); }, "number 1e999"},
        {"NUL and more", ConfigFault::NotJson, [](std::string& t, Json& j) { t = j.dump() + '\0' + "{}"; }, "NUL"},
        {"the image twice", ConfigFault::BadField,
         [](std::string& t, Json& j) { t = Replaced(j, "\"image\":", "\"image\":\"\",\"image\":"); }, "\"image\" is given twice"},
        {"SN twice", ConfigFault::BadField,
         [](std::string& t, Json& j) { t = Replaced(j, "\"SN\":", "\"SN\":1,\"SN\":"); }, "\"module.SN\""},
        {"a version of 15 MB", ConfigFault::OtherVersion,
         [](std::string&, Json& j) { j["version"] = std::string(15000000, '9'); }, "(15000002 bytes)"},
        {"a string of 15 MB with a control character", ConfigFault::NotJson,
         [](std::string& t, Json& j) { t = Replaced(j, "\"program\":\"", "\"program\":\"" + std::string(15000000, 'a') + '\1'); },
         "a... (150000"},
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
            const std::string message = e.what(), shown = c.what + (": " + message.substr(0, 400));
            EXPECT_EQ(e.Fault(), c.fault) << shown;
            EXPECT_EQ(message.rfind(path + ": ", 0), 0u) << shown;
            EXPECT_NE(message.find(c.says), std::string::npos) << shown;
            EXPECT_LT(message.size(), path.size() + 300) << c.what;
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
    EXPECT_EQ(config.Document.Image, "0400000000002C01");
    EXPECT_EQ(config.Document.Module.SN, "77");
    read.AppConfig = "No answer";
    EXPECT_THROW(LoadModuleConfig(read, "the module"), ConfigFileError);
}

TimePoint Day(int year) { return std::chrono::sys_days{std::chrono::year{year} / 1 / 31} + std::chrono::hours{23}; }

// Serial numbers are the module's bytes: "A/1" must not climb into a folder "A".
TEST(ConfigHistory, KeepsTheNewestHundredPerSerialNumberNewestFirst) {
    TempFolder root;
    DeviceInfo device = LoadedDevice();
    device.SN = "A/1";
    const ConfigDocument document = MakeConfigDocument(device, device.PredefCfgs.Items[1].Data);
    ConfigDocument other = document;  // its newest file is newer, its name sorts later
    other.Module.SN = "B";
    KeepInHistory(other, root.File("x"), Day(2030));
    for (int i = 0; i < 100; ++i)
        KeepInHistory(document, root.File("x"), Day(2020) + std::chrono::milliseconds(i % 2 == 0 ? i : -i));
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
    // A folder that cannot be made: below a file.
    EXPECT_THROW(KeepInHistory(document, newest), ConfigFileError);
}

// Newest first: each read names its configuration and counts the options
// that differ from the read before it; a file that cannot be read counts
// for neither of its neighbours.
TEST(ConfigHistory, ReadsNameTheirConfigurationAndCountTheOptionsChangedSinceTheOneBefore) {
    TempFolder root;
    const DeviceInfo device = LoadedDevice();
    const std::string images[] = {WithOption(device, 0, "00000001"), WithOption(device, 2, "0000012D"),
                                  WithOption(device, 0, "00000001"), device.PredefCfgs.Items[0].Data};
    int year = 2020;
    for (const std::string& image : images) KeepInHistory(MakeConfigDocument(device, image), root.File("x"), Day(year++));
    const std::string broken = KeepInHistory(MakeConfigDocument(device, images[0]), root.File("x"), Day(2019));
    TempFolder::Write(broken, "{");
    std::string seen;
    for (const HistoryRead& read : DescribeHistory(ListHistory(root.File("x")).at(0)))
        seen += read.Name + ":" + std::to_string(read.Differing) + " ";
    EXPECT_EQ(seen, "Truck:1 Passenger car:2 Passenger car:2 Passenger car:-1 :-1 ");
}

TEST(ConfigHistory, TwoKeepersOfOneMillisecondKeepAFileEach) {
    TempFolder root;
    const DeviceInfo device = LoadedDevice();
    const ConfigDocument document = MakeConfigDocument(device, device.PredefCfgs.Items[1].Data);
    const auto keep = [&] {
        for (int i = 0; i < 40; ++i) KeepInHistory(document, root.File("x"), Day(2020));
    };
    std::thread other(keep);
    keep();
    other.join();
    EXPECT_EQ(ListHistory(root.File("x")).at(0).Files.size(), 80u);
}

// Failure words are no serial numbers; a serial number of 900 bytes as a
// folder name is kept whole in its file.
TEST(ConfigHistory, ReadsWithoutAUsableSerialNumberAreKeptToo) {
    TempFolder root;
    const DeviceInfo device = LoadedDevice();
    ConfigDocument document = MakeConfigDocument(device, device.PredefCfgs.Items[1].Data);
    const std::string slashes(300, '/');
    const std::pair<std::string, int> reads[] = {{"", 2022}, {"No answer", 2022}, {"Error!", 2022},
                                                 {slashes + "a", 2021}, {slashes + "b", 2020}};
    for (const auto& [sn, year] : reads) {
        document.Module.SN = sn;
        KeepInHistory(document, root.File("x"), Day(year));
    }
    const std::vector<HistoryGroup> groups = ListHistory(root.File("x"));
    ASSERT_EQ(groups.size(), 3u);
    EXPECT_EQ(groups[0].SN, kUnknownModule);
    EXPECT_EQ(groups[0].Files.size(), 3u);
    for (const HistoryGroup& group : {groups[1], groups[2]})
        EXPECT_TRUE(group.SN.starts_with("////") && group.SN.ends_with("...")) << group.SN;
    EXPECT_EQ(ReadConfigFile(groups[1].Files.at(0).Path).Document.Module.SN, slashes + "a");
}

TEST(ConfigHistory, RootIsTheAbsoluteDataHomeElseTheHomesShare) {
    ::setenv("HOME", "/home/tech", 1);
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(HistoryRoot(), "/data/servicebay/history");
    ::setenv("XDG_DATA_HOME", "data", 1);
    EXPECT_EQ(HistoryRoot(), "/home/tech/.local/share/servicebay/history");
}

TEST(ConfigCompare, OneChangedOptionIsTheOneNamedWithBothShownTexts) {
    const DeviceInfo device = LoadedDevice();
    const std::string a = device.PredefCfgs.Items[1].Data;
    const std::string b = WithOption(device, 0, "00000001");
    EXPECT_TRUE(CompareConfigurations(device, a, device, a).Equal());
    EXPECT_EQ(CompareConfigurations(device, a, device, b, CompareMode::All).Options.size(), 3u);
    EXPECT_EQ(ComparisonJson(CompareConfigurations(device, a, device, b)).dump(),
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

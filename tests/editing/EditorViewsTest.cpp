// What the editor shows beside the tree: the filter, the options that
// differ from the read image, and the details of one option, all on the
// test catalog with the module's configuration read.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "TestCatalog.h"
#include "config/Catalog.h"
#include "editing/ConfigList.h"
#include "editing/OptionDetails.h"
#include "editing/OptionFilter.h"
#include "editing/PendingChanges.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// The test catalog read with the module's image as the read one, working
// on image.
DeviceInfo ReadModule(const std::string& image, const char* appConfig = kModuleImage) {
    DeviceInfo device;
    std::string reason;
    device.InfoFile = TestCatalog();
    device.AppConfig = appConfig;
    if (!LoadCatalog(device, reason)) throw std::runtime_error(reason);
    AppendReadedConfig(device);
    device.CfgImage = HexToBytes(image);
    return device;
}

nlohmann::json Cases(const char* group) {
    static const auto all = nlohmann::json::parse(TempFolder::Read(SourceFile("tests/editing/editor-cases.json")));
    return all.at(group);
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

// The names of the options whose flag is set.
std::string Flagged(const DeviceInfo& device, const std::vector<bool>& flags) {
    std::vector<std::string> names;
    for (size_t i = 0; i < flags.size(); ++i)
        if (flags[i]) names.push_back(device.Options.Items.at(i).Name);
    return Joined(names);
}

TEST(OptionFilter, KeepsOptionsWhoseNameOrShownValueHoldsEveryWord) {
    for (const auto& c : Cases("filter")) {
        const DeviceInfo device = ReadModule(c.value("image", kModuleImage));
        const std::string search = c["search"];
        EXPECT_EQ(Flagged(device, FilterOptions(device, device.CfgImage, SearchWords(search))), c["passing"]) << search;
    }
    // Names are Latin-1: its capitals fold too, and the sign that stands among them is none.
    EXPECT_TRUE(HoldsEveryWord(SearchWords("\xD6L"), "Heiz\xF6l", ""));
    EXPECT_FALSE(HoldsEveryWord(SearchWords("\xD7"), "\xF7", ""));
}

TEST(PendingChanges, ListTheOptionsWhoseValueDiffersFromTheReadImage) {
    for (const auto& c : Cases("changes")) {
        const std::string image = c["image"];
        const DeviceInfo device = ReadModule(image, c.value("read", kModuleImage).c_str());
        std::vector<std::string> pending;
        for (const OptionComparison& option : PendingChanges(device).Options)
            pending.push_back(option.Name + ":" + option.A.Shown + ">" + option.B.Shown);
        EXPECT_EQ(Joined(pending), c["pending"]) << image;
        EXPECT_EQ(Flagged(device, ChangedOptions(device)), c["changed"]) << image;
    }
}

TEST(OptionDetails, DescribeTheOptionItsRangeOrEntriesAndItsValuesElsewhere) {
    for (const auto& c : Cases("details")) {
        const DeviceInfo device = ReadModule(c["image"]);
        std::string expected;
        for (const auto& line : c["lines"]) expected += line.get<std::string>() + "\n";
        EXPECT_EQ(OptionDetails(device, c["option"], c["chosen"]), c["option"] < 0 ? "" : expected) << c["option"];
    }
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// One line per node, indented by level, with the properties the build set.
void Describe(const MemoryTreeNode& node, int level, std::vector<std::string>& lines) {
    std::string line = std::string(2 * level, ' ') + node.Key() + " " + node.Text() + " [" + node.Tag() + "]";
    if (node.Expanded()) line += " expanded=" + std::to_string(*node.Expanded());
    if (node.ForeColor()) line += " color=" + std::to_string(*node.ForeColor());
    if (node.Checked()) line += " checked=" + std::to_string(*node.Checked()) + " bold=" + std::to_string(*node.Bold());
    lines.push_back(line);
    for (const MemoryTreeNode* child : node.Children()) Describe(*child, level + 1, lines);
}

// The catalog of option-tree.json has the options 0 Mode (a list), 1 Hidden,
// 2 Limit, 3 Lamps (a bit field at byte 8) and 4 Odd (of no known type).
// Configuration 1, the passenger car, hides option 1 and locks option 2.
class OptionTreeBuild : public ::testing::Test {
protected:
    bool Build(const std::string& hex) { return BuildOptionTree(HexToBytes(hex), device, tree); }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (const MemoryTreeNode* root : tree.Roots()) Describe(*root, 0, lines);
        return lines;
    }

    const nlohmann::json cases = TestCases("config/option-tree.json");
    DeviceInfo device = Load(cases.at("catalog")).device;
    MemoryOptionTree tree;
};

TEST_F(OptionTreeBuild, ShowsTheNamedConfigurationAndUpdatesItInPlace) {
    ASSERT_TRUE(Build(cases.at("image")));
    EXPECT_EQ(Lines(), cases.at("tree").get<std::vector<std::string>>());
    // A value node's colour follows from the configuration alone: an update in
    // place leaves it as it is. Another Id builds anew, an unknown one nothing.
    tree.Node("OPTION00000000_VALUE00000000")->SetForeColor(7);
    ASSERT_TRUE(Build("040000000000 2D01 05"));
    EXPECT_EQ(Lines()[2], "    OPTION00000000_VALUE00000000 Off [00000000] color=7 checked=1 bold=1");
    EXPECT_EQ(Lines()[4], "  OPTION00000002 Limit:0000012D [0000012D] color=255");
    ASSERT_TRUE(Build("030000000102 2C01 00"));
    EXPECT_EQ(Lines()[3], "    OPTION00000000_VALUE00000001 On [00000001] color=16711680 checked=1 bold=1");
    EXPECT_EQ(Lines()[4], "  OPTION00000001 Hidden:00000002 [00000002] color=0");
    EXPECT_FALSE(Build("0900000001022C01"));
    EXPECT_EQ(tree.Size(), 0u);
}

TEST_F(OptionTreeBuild, ShortImagesCountMissingBytesAsZeroAndReadAsRefused) {
    device.PredefCfgs.Items[0].Id = "00000000";
    for (const auto& c : cases.at("short images")) {
        if (c.is_string()) continue;
        const std::string shown = c[1];
        EXPECT_EQ(Build(c[0]), !shown.empty()) << c;
        EXPECT_EQ(tree.Size() ? tree.Roots()[0]->Key() + " " + tree.Node("OPTION00000000")->Text() : "", shown);
    }
}

TEST_F(OptionTreeBuild, VisibleMaskChoosesTheOptionsByIndex) {
    for (const auto& c : cases.at("visible masks")) {
        if (c.is_string()) continue;
        device.PredefCfgs.Items[1].VisibleMask = c[0];
        tree.Clear();
        ASSERT_TRUE(Build(cases.at("image")));
        std::string keys;
        for (const MemoryTreeNode* option : tree.Roots().at(0)->Children()) keys += option->Key() + " ";
        EXPECT_EQ(keys, c[1]) << c;
    }
}

TEST_F(OptionTreeBuild, LockedOptionsShowTheFixedValueRedAndTheOthersGray) {
    device.Options.Items[2].Values.Items = {Entry("Low", "0000012C"), Entry("High", "00000200")};
    ASSERT_TRUE(Build("040000000100 0002 05"));
    EXPECT_EQ(Lines()[5], "    OPTION00000002_VALUE00000000 Low [0000012C] color=255 checked=0 bold=0");
    EXPECT_EQ(Lines()[6], "    OPTION00000002_VALUE00000001 High [00000200] color=2147483665 checked=1 bold=1");
}

// A tree that refuses the node of one key, as a tree refuses a taken key.
class RefusingTree final : public OptionTree {
public:
    void Clear() override { inner.Clear(); }
    TreeNode* Find(const std::string& key) override { return inner.Find(key); }
    TreeNode* Add(TreeNode* relative, const std::string& key, const std::string& text) override {
        return key == "OPTION00000000" ? nullptr : inner.Add(relative, key, text);
    }
    MemoryOptionTree inner;
};

TEST_F(OptionTreeBuild, ANodeTheTreeRefusesIsSkipped) {
    RefusingTree refusing;
    ASSERT_TRUE(BuildOptionTree(HexToBytes(cases.at("image").get<std::string>()), device, refusing));
    EXPECT_EQ(refusing.inner.Node("OPTION00000002")->Text(), "Limit:0000012C");
}

}  // namespace
}  // namespace sb::test

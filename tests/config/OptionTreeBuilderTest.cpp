#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// Options: 0 Mode (a list), 1 Hidden, 2 Limit, 3 Lamps (a bit field at byte
// 8), 4 Odd (of no known type). Configuration 1, the passenger car, hides
// option 1 and locks option 2.
const std::string kCatalog = CatalogXml(
    "9",
    R"(<O N="Mode" S="20" L="8" T="INT"><L V="0">Off</L><L V="1">On</L></O><O N="Hidden" S="28" L="8" T="INT"/>)"
    R"(<O N="Limit" S="30" L="10" T="INT"/><O N="Lamps" S="40" L="8" T="BITFIELD" U=" x"><L V="01" M="01">a</L>)"
    R"(<L V="02" M="02">b</L><L V="04" M="04">c</L><L V="1" M="01">odd</L><L V="00" M="03">none</L></O>)"
    R"(<O N="Odd" S="40" L="8" T="BOOL"><L V="5"/></O>)",
    R"(<C N="Truck" V="7">030000000100000000</C>)"
    R"(<C N="Passenger car" I="00000004" V="1D" D="04">0400000000002C0104</C>)");

// One line per node, indented by level, with the properties the build set.
void Describe(const MemoryTreeNode& node, int level, std::vector<std::string>& lines) {
    std::string line = std::string(2 * level, ' ') + node.Key() + " " + node.Text() + " [" + node.Tag() + "]";
    if (node.Expanded()) line += " expanded=" + std::to_string(*node.Expanded());
    if (node.ForeColor()) line += " color=" + std::to_string(*node.ForeColor());
    if (node.Checked()) line += " checked=" + std::to_string(*node.Checked()) + " bold=" + std::to_string(*node.Bold());
    lines.push_back(line);
    for (const MemoryTreeNode* child : node.Children()) Describe(*child, level + 1, lines);
}

class OptionTreeBuild : public ::testing::Test {
protected:
    void SetUp() override {
        const auto r = Load(kCatalog);
        ASSERT_TRUE(r.ok);
        device = r.device;
    }
    bool Build(const std::string& hex) { return BuildOptionTree(HexToBytes(hex), device, tree); }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (const MemoryTreeNode* root : tree.Roots()) Describe(*root, 0, lines);
        return lines;
    }

    DeviceInfo device;
    MemoryOptionTree tree;
};

TEST_F(OptionTreeBuild, ShowsTheNamedConfigurationAndUpdatesItInPlace) {
    ASSERT_TRUE(Build("040000000100 2C01 05"));
    EXPECT_EQ(Lines(), (std::vector<std::string>{
                           "CONFIGURATION00000001 Passenger car [00000001] expanded=1",
                           "  OPTION00000000 Mode:On [00000001] color=0",
                           "    OPTION00000000_VALUE00000000 Off [00000000] color=16711680 checked=0 bold=0",
                           "    OPTION00000000_VALUE00000001 On [00000001] color=0 checked=1 bold=1",
                           "  OPTION00000002 Limit:0000012C [0000012C] color=255",
                           "  OPTION00000003 Lamps:05 [05] color=0",
                           "    OPTION00000003_VALUE00000000 a [01] color=0 checked=1 bold=1",
                           "    OPTION00000003_VALUE00000001 b [02] color=0 checked=0 bold=0",
                           "    OPTION00000003_VALUE00000002 c [04] color=16711680 checked=1 bold=1",
                           "    OPTION00000003_VALUE00000003 odd [1] color=0 checked=0 bold=0",
                           "    OPTION00000003_VALUE00000004 none [00] color=16711680 checked=0 bold=0",
                           "  OPTION00000004 Odd:Wrong Value [] color=0",
                       }));
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
    const std::pair<std::string, std::string> cases[] = {
        {"", "CONFIGURATION00000000 Mode:Wrong Value"},
        {"040000", "CONFIGURATION00000001 Mode:Wrong Value"},
        {"0401", ""},
    };
    for (const auto& [hex, shown] : cases) {
        EXPECT_EQ(Build(hex), !shown.empty()) << hex;
        EXPECT_EQ(tree.Size() ? tree.Roots()[0]->Key() + " " + tree.Node("OPTION00000000")->Text() : "", shown);
    }
}

TEST_F(OptionTreeBuild, VisibleMaskChoosesTheOptionsByIndex) {
    const std::pair<std::string, std::string> cases[] = {
        {"0", ""}, {"1", "OPTION00000000 "}, {"6", "OPTION00000001 OPTION00000002 "},
        {"ABC", "OPTION00000002 OPTION00000003 OPTION00000004 "},  // bits 0 to 7 are the pair BC
    };
    for (const auto& [mask, shown] : cases) {
        device.PredefCfgs.Items[1].VisibleMask = mask;
        tree.Clear();
        ASSERT_TRUE(Build("040000000100 2C01 05"));
        std::string keys;
        for (const MemoryTreeNode* option : tree.Roots().at(0)->Children()) keys += option->Key() + " ";
        EXPECT_EQ(keys, shown) << mask;
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
    ASSERT_TRUE(BuildOptionTree(HexToBytes(std::string("0400000001002C0105")), device, refusing));
    EXPECT_EQ(refusing.inner.Node("OPTION00000002")->Text(), "Limit:0000012C");
}

}  // namespace
}  // namespace sb::test

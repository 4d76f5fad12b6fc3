#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// Option 0 Mode (a list), 1 Hidden, 2 Limit; configuration 1 is the
// passenger car, which hides option 1 and locks option 2.
const std::string kCatalog = CatalogXml(
    "8",
    R"(<O N="Mode" S="20" L="8" T="INT"><L V="0">Off</L><L V="1">On</L></O>)"
    R"(<O N="Hidden" S="28" L="8" T="INT"/>)"
    R"(<O N="Limit" S="30" L="10" T="INT"/>)",
    R"(<C N="Truck" V="7">0300000001000000</C>)"
    R"(<C N="Passenger car" I="00000004" V="05" D="04">0400000000002C01</C>)");

std::string Image(const std::string& hex) { return HexToBytes(hex); }

// One line per node, indented by level, with the properties the build set.
void Describe(const MemoryTreeNode& node, int level, std::vector<std::string>& lines) {
    std::string line = std::string(2 * level, ' ') + node.Key() + " " + node.Text() + " [" + node.Tag() + "]";
    if (node.Expanded()) line += " expanded=" + std::to_string(*node.Expanded());
    if (node.ForeColor()) line += " color=" + std::to_string(*node.ForeColor());
    if (node.Checked()) line += " checked=" + std::to_string(*node.Checked());
    if (node.Bold()) line += " bold=" + std::to_string(*node.Bold());
    lines.push_back(line);
    for (const MemoryTreeNode* child : node.Children()) Describe(*child, level + 1, lines);
}

std::vector<std::string> Describe(const MemoryOptionTree& tree) {
    std::vector<std::string> lines;
    for (const MemoryTreeNode* root : tree.Roots()) Describe(*root, 0, lines);
    return lines;
}

std::map<std::string, const MemoryTreeNode*> NodesByKey(const MemoryOptionTree& tree) {
    std::map<std::string, const MemoryTreeNode*> nodes;
    std::vector<const MemoryTreeNode*> open(tree.Roots().begin(), tree.Roots().end());
    while (!open.empty()) {
        const MemoryTreeNode* node = open.back();
        open.pop_back();
        nodes[node->Key()] = node;
        open.insert(open.end(), node->Children().begin(), node->Children().end());
    }
    return nodes;
}

class OptionTreeBuild : public ::testing::Test {
protected:
    void SetUp() override {
        const auto r = Load(kCatalog);
        ASSERT_TRUE(r.ok);
        device = r.device;
    }
    bool Build(const std::string& hex) { return BuildOptionTree(Image(hex), device, tree); }

    DeviceInfo device;
    MemoryOptionTree tree;
};

TEST_F(OptionTreeBuild, ShowsTheConfigurationThatTheImageNames) {
    ASSERT_TRUE(Build("0400000001002C01"));
    EXPECT_EQ(Describe(tree), (std::vector<std::string>{
                                  "CONFIGURATION00000001 Passenger car [00000001] expanded=1",
                                  "  OPTION00000000 Mode:On [00000001] color=0",
                                  "    OPTION00000000_VALUE00000000 Off [00000000] color=16711680 checked=0 bold=0",
                                  "    OPTION00000000_VALUE00000001 On [00000001] color=0 checked=1 bold=1",
                                  "  OPTION00000002 Limit:0000012C [0000012C] color=255",
                              }));
}

TEST_F(OptionTreeBuild, UpdatesTheSameNodesInPlace) {
    ASSERT_TRUE(Build("0400000001002C01"));
    const auto before = NodesByKey(tree);
    // Colours of value nodes follow from the configuration alone: an update
    // leaves them as they are, whatever they are.
    tree.Node("OPTION00000000_VALUE00000000")->SetForeColor(7);

    ASSERT_TRUE(Build("0400000000002D01"));
    EXPECT_EQ(NodesByKey(tree), before);
    EXPECT_EQ(tree.Size(), before.size());
    EXPECT_EQ(Describe(tree), (std::vector<std::string>{
                                  "CONFIGURATION00000001 Passenger car [00000001] expanded=1",
                                  "  OPTION00000000 Mode:Off [00000000] color=0",
                                  "    OPTION00000000_VALUE00000000 Off [00000000] color=7 checked=1 bold=1",
                                  "    OPTION00000000_VALUE00000001 On [00000001] color=0 checked=0 bold=0",
                                  "  OPTION00000002 Limit:0000012D [0000012D] color=255",
                              }));
}

TEST_F(OptionTreeBuild, RebuildsForAnotherIdAndEmptiesForAnUnknownOne) {
    ASSERT_TRUE(Build("0400000001002C01"));
    ASSERT_TRUE(Build("0300000001022C01"));
    EXPECT_EQ(tree.Node("CONFIGURATION00000001"), nullptr);
    EXPECT_EQ(Describe(tree), (std::vector<std::string>{
                                  "CONFIGURATION00000000 Truck [00000000] expanded=1",
                                  "  OPTION00000000 Mode:On [00000001] color=0",
                                  "    OPTION00000000_VALUE00000000 Off [00000000] color=0 checked=0 bold=0",
                                  "    OPTION00000000_VALUE00000001 On [00000001] color=16711680 checked=1 bold=1",
                                  "  OPTION00000001 Hidden:00000002 [00000002] color=0",
                                  "  OPTION00000002 Limit:0000012C [0000012C] color=0",
                              }));

    EXPECT_FALSE(Build("0900000001022C01"));
    EXPECT_EQ(tree.Size(), 0u);
    EXPECT_TRUE(tree.Roots().empty());
}

TEST_F(OptionTreeBuild, ShortImagesCountMissingBytesAsZero) {
    device.PredefCfgs.Items[0].Id = "00000000";
    struct Case {
        std::string hex;
        const char* root;  // nullptr: no configuration
    };
    const std::vector<Case> cases = {
        {"", "CONFIGURATION00000000"},
        {"04", "CONFIGURATION00000001"},
        {"040000", "CONFIGURATION00000001"},
        {"0401", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.hex);
        EXPECT_EQ(Build(c.hex), c.root != nullptr);
        ASSERT_EQ(tree.Roots().size(), c.root ? 1u : 0u);
        if (c.root) {
            EXPECT_EQ(tree.Roots()[0]->Key(), c.root);
            // Options beyond the image read as refused.
            EXPECT_EQ(tree.Node("OPTION00000000")->Text(), "Mode:Wrong Value");
            EXPECT_EQ(tree.Node("OPTION00000000")->Tag(), "");
        }
    }
}

TEST_F(OptionTreeBuild, VisibleMaskChoosesTheOptionsByIndex) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0", ""},
        {"1", "OPTION00000000 "},
        {"6", "OPTION00000001 OPTION00000002 "},
        {"FFF8", ""},
        {"ABC", "OPTION00000002 "},  // bits 0 to 7 are the pair BC
    };
    for (const auto& [mask, shown] : cases) {
        SCOPED_TRACE(mask);
        device.PredefCfgs.Items[1].VisibleMask = mask;
        tree.Clear();
        ASSERT_TRUE(Build("0400000001002C01"));
        ASSERT_EQ(tree.Roots().size(), 1u);
        std::string keys;
        for (const MemoryTreeNode* option : tree.Roots()[0]->Children()) keys += option->Key() + " ";
        EXPECT_EQ(keys, shown);
    }
}

TEST_F(OptionTreeBuild, LockedOptionsShowTheFixedValueRedAndTheOthersGray) {
    device.Options.Items[2].Values.Items = {Entry("Low", "0000012C"), Entry("High", "00000200")};
    ASSERT_TRUE(Build("0400000001000002"));
    EXPECT_EQ(tree.Node("OPTION00000002")->Text(), "Limit:High");
    EXPECT_EQ(tree.Node("OPTION00000002")->ForeColor(), kColorRed);
    EXPECT_EQ(tree.Node("OPTION00000002_VALUE00000000")->ForeColor(), kColorRed);
    EXPECT_EQ(tree.Node("OPTION00000002_VALUE00000000")->Checked(), false);
    EXPECT_EQ(tree.Node("OPTION00000002_VALUE00000001")->ForeColor(), kColorGrayText);
    EXPECT_EQ(tree.Node("OPTION00000002_VALUE00000001")->Checked(), true);
}

TEST(OptionTreeMembers, MembersAreOnByTheirMaskAndPattern) {
    // A one-byte bit field at byte 4; the configuration holds 04 there.
    const auto r = Load(CatalogXml("5",
                                   R"(<O N="Lamps" S="20" L="8" T="BITFIELD" U=" x">)"
                                   R"(<L V="01" M="01">a</L><L V="02" M="02">b</L><L V="04" M="04">c</L>)"
                                   R"(<L V="1" M="01">odd</L><L V="0001" M="0001">wide</L><L V="00" M="03">none</L></O>)"
                                   R"(<O N="Empty" S="20" L="8" T="BITFIELD"/><O N="Odd" S="20" L="8" T="BOOL"><L V="5"/></O>)",
                                   R"(<C V="7">0000000004</C>)"));
    ASSERT_TRUE(r.ok);
    MemoryOptionTree tree;
    ASSERT_TRUE(BuildOptionTree(HexToBytes(std::string("0000000005")), r.device, tree));
    EXPECT_EQ(Describe(tree), (std::vector<std::string>{
                                  "CONFIGURATION00000000 Unnamed configuration 00000000 [00000000] expanded=1",
                                  "  OPTION00000000 Lamps:05 [05] color=0",
                                  "    OPTION00000000_VALUE00000000 a [01] color=0 checked=1 bold=1",
                                  "    OPTION00000000_VALUE00000001 b [02] color=0 checked=0 bold=0",
                                  "    OPTION00000000_VALUE00000002 c [04] color=16711680 checked=1 bold=1",
                                  "    OPTION00000000_VALUE00000003 odd [1] color=0 checked=0 bold=0",
                                  "    OPTION00000000_VALUE00000004 wide [0001] color=0 checked=0 bold=0",
                                  "    OPTION00000000_VALUE00000005 none [00] color=16711680 checked=0 bold=0",
                                  "  OPTION00000001 Empty:05 [05] color=0",
                                  "  OPTION00000002 Odd:Wrong Value [] color=0",
                              }));
}

// A tree that refuses to add the node of one key.
class RefusingTree final : public OptionTree {
public:
    explicit RefusingTree(std::string refused) : refused_(std::move(refused)) {}
    void Clear() override { inner.Clear(); }
    TreeNode* Find(const std::string& key) override { return inner.Find(key); }
    TreeNode* Add(TreeNode* relative, const std::string& key, const std::string& text) override {
        return key == refused_ ? nullptr : inner.Add(relative, key, text);
    }
    MemoryOptionTree inner;

private:
    std::string refused_;
};

TEST_F(OptionTreeBuild, ANodeTheTreeRefusesIsSkipped) {
    for (const char* refused : {"OPTION00000000", "OPTION00000000_VALUE00000000"}) {
        SCOPED_TRACE(refused);
        RefusingTree refusing(refused);
        ASSERT_TRUE(BuildOptionTree(Image("0400000001002C01"), device, refusing));
        EXPECT_EQ(refusing.inner.Node(refused), nullptr);
        ASSERT_NE(refusing.inner.Node("OPTION00000002"), nullptr);
        EXPECT_EQ(refusing.inner.Node("OPTION00000002")->Text(), "Limit:0000012C");
    }
    RefusingTree noRoot("CONFIGURATION00000001");
    EXPECT_TRUE(BuildOptionTree(Image("0400000001002C01"), device, noRoot));
    EXPECT_EQ(noRoot.inner.Size(), 0u);
}

}  // namespace
}  // namespace sb::test

// The tree's events over the in-memory tree, as a technician's gestures:
// clicks on check boxes, double clicks, a box turned by the keyboard.
#include <gtest/gtest.h>

#include <sstream>

#include "TestCatalog.h"
#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "editing/TreeEvents.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

using S = const std::string&;

class TestTree final : public EditTree {
public:
    MemoryOptionTree nodes;
    TreeNode* selected = nullptr;

    void Clear() override { selected = nullptr; nodes.Clear(); }
    TreeNode* Find(S key) override { return nodes.Find(key); }
    TreeNode* Add(TreeNode* relative, S key, S text) override { return nodes.Add(relative, key, text); }
    TreeNode* SelectedItem() override { return selected; }
    void SetSelectedItem(TreeNode* node) override { selected = node; }
    std::string KeyOf(TreeNode& node) override { return Of(node).Key(); }
    TreeNode* ParentOf(TreeNode& node) override { return Of(node).Parent(); }
    int ChildrenOf(TreeNode& node) override { return static_cast<int>(Of(node).Children().size()); }
    bool CheckedOf(TreeNode& node) override { return Of(node).Checked().value_or(false); }
    static MemoryTreeNode& Of(TreeNode& node) { return static_cast<MemoryTreeNode&>(node); }
};

// Notes each form opened ("INT Limit 00000010 00000020 0000000F") and
// answers the scripted entry, or the start value as Cancel does.
struct Forms final : ValueEditors {
    std::string opened, entry;
    std::string EditInt(S c, S min, S max, S v) override { return Open("INT " + c + " " + min + " " + max, v); }
    std::string EditBin(S c, int n, S v) override { return Open("BIN " + c + " " + std::to_string(n), v); }
    std::string EditStr(S c, int n, S v) override { return Open("STR " + c + " " + std::to_string(n), v); }
    std::string Open(S form, S v) { opened += form + " " + v; return entry.empty() ? v : entry; }
};

struct Case {
    const char* gestures;  // c: click on the box, k: box turned by the keyboard, s: click on the text,
                           // d: double click (on the selection when no node is named)
    const char* image;     // txtCfgEdited afterwards
    const char* opened = "";
    const char* selected = "";
    const char* boxes = "";      // "2.2+ 2.1-": ticked and bold, or empty
    int cfg = 0;                 // 0 "Module", 2 "Car"
    const char* disabled = "0";  // DisabledMask of "Module"
    const char* entry = "";
};

const Case kCases[] = {
    {"c2.2", "000000000F22415A", "", "2.2", "2.2+ 2.1-"},
    {"k2.0 c2.1", "000000000F21415A", "", "2.1", "2.1+ 2.0-"},  // the ticked entry stays ticked
    {"c3.0", "000000000F31415A", "", "3.0", "3.0+ 3.1+ 3.2+"},
    {"c3.2 c3.2", "000000000F11415A", "", "3.2", "3.0+ 3.1- 3.2-"},
    {"c2.0", "0400000014020058", "", "", "2.2+ 2.0-", 2},  // a locked list refuses another entry
    {"c3.0", "000000000F21415A", "", "3.0", "3.0- 3.1+ 3.2-", 0, "08"},  // a locked bit field falls back
    {"c2.1", "000000000F21415A", "", "2.1", "2.1+", 0, "04"},  // a locked list takes its own entry
    {"croot", "000000000F21415A", "", "", "root-"},
    {"c1", "000000001221415A", "INT Limit 00000010 00000020 0000000F", "", "1-", 0, "0", "12"},
    {"c4 c2", "000000000F21415A", "", "", "4- 2-"},  // only the box of an INT without a list opens a form
    {"d4", "000000000F217E5A", "BIN Key 1 41", "", "", 0, "0", "7E"},
    {"d5", "000000000F214151", "STR Tag 1 Z", "", "", 0, "0", "Q"},
    {"d1 d2 d3", "000000000F21415A", "", "", "", 0, "02"},  // locked, a list, a bit field
    {"d2.0", "000000000F21415A", "", "2.0", "2.1+"},
    {"droot d", "000000000F21415A"},
    {"c2.2 s2.0", "000000000F22415A", "", "2.0", "2.2+"},  // a click on a text applies nothing
    {"k2.2 d2.0", "000000000F21415A", "", "2.0", "2.1+"},  // the MouseUp that ends a double click
};

struct Gestures {
    explicit Gestures(const Case& c) {
        std::string reason;
        device.InfoFile = kTestCatalog;
        if (!LoadCatalog(device, reason)) throw std::runtime_error(reason);
        device.PredefCfgs.Items[0].DisabledMask = c.disabled;
        device.CfgImage = device.PredefCfgs.Items[static_cast<size_t>(c.cfg)].Data;
        forms.entry = c.entry;
        Show();
    }

    void Play(S gestures) {
        std::istringstream words(gestures);
        for (std::string word; words >> word;) {
            TreeNode* node = word.size() > 1 ? Node(word.substr(1)) : tree.selected;
            if (word[0] == 'c' || word[0] == 'k') {
                TestTree::Of(*node).SetChecked(!tree.CheckedOf(*node));
                events.NodeCheck(*node);
            } else {
                tree.selected = node;
            }
            if (word[0] == 'd') events.DblClick();
            if (word[0] != 'k') events.MouseUp();
        }
    }

    // "root", "2" for option 2, "2.1" for its value 1.
    TreeNode* Node(S name) {
        const size_t dot = name.find('.');
        const std::string value = dot == std::string::npos ? "" : "_VALUE" + Uint32ToHex(std::stoi(name.substr(dot + 1)));
        TreeNode* node = name == "root" ? tree.nodes.Roots().at(0) : tree.Find("OPTION" + Uint32ToHex(std::stoi(name)) + value);
        return node ? node : throw std::out_of_range(name);
    }

    // As txtCfgEdited does: the tree is built anew when the text changes.
    void Show() {
        if (BytesToHex(device.CfgImage) == shown) return;
        shown = BytesToHex(device.CfgImage);
        BuildOptionTree(device.CfgImage, device, tree);
    }

    DeviceInfo device;
    TestTree tree;
    Forms forms;
    std::string shown;
    TreeEvents events{device, tree, forms, [this] { Show(); }};
};

TEST(TreeEvents, GesturesChangeTheImageAndTheBoxesAsTheCatalogSays) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.gestures);
        Gestures run(c);
        run.Play(c.gestures);
        EXPECT_EQ(run.shown, c.image);
        EXPECT_EQ(run.forms.opened, c.opened);
        EXPECT_EQ(run.tree.selected, *c.selected ? run.Node(c.selected) : nullptr);
        std::istringstream boxes(c.boxes);
        for (std::string box; boxes >> box;) {
            const MemoryTreeNode& node = TestTree::Of(*run.Node(box.substr(0, box.size() - 1)));
            const bool on = box.back() == '+';
            EXPECT_EQ(std::pair(node.Checked().value_or(false), node.Bold().value_or(false)), std::pair(on, on)) << box;
        }
    }
}

}  // namespace
}  // namespace sb::test

// The tree's events over the in-memory tree, as a technician's gestures:
// clicks on check boxes, double clicks, a box turned by the keyboard.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
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

// One case of tree-gestures.json: the catalog's configuration cfg (0
// "Module", 2 "Car") with the DisabledMask disabled for "Module", and the
// gestures, each a letter and a node ("root", "2" for option 2, "2.1" for its
// value 1): c a click on the box, k the box turned by the tree control's own
// key, s a click on the text, d a double click; and keys at a time in ms
// ("S2.1@100"): R Return, F F2, S Space, - the minus sign, t and its text a
// printable key ("tl@0"). A gesture without a node acts on the selection.
// Afterwards the image, the forms opened, the selection and the boxes
// ("2.2+ 2.1-": ticked and bold, or neither) are as the case says.
struct Gestures {
    explicit Gestures(const nlohmann::json& c) {
        std::string reason;
        device.InfoFile = TestCatalog();
        if (!LoadCatalog(device, reason)) throw std::runtime_error(reason);
        device.PredefCfgs.Items[0].DisabledMask = c.value("disabled", "0");
        device.CfgImage = device.PredefCfgs.Items.at(c.value("cfg", 0u)).Data;
        forms.entry = c.value("entry", "");
        Show();
    }

    void Play(S gestures) {
        std::istringstream words(gestures);
        for (std::string word; words >> word;) {
            const size_t at = word.find('@');
            if (at != std::string::npos) {
                Key(word[0], word.substr(1, at - 1), std::stoll(word.substr(at + 1)));
                continue;
            }
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

    void Key(char letter, std::string rest, int64_t at) {
        if (letter == 't' || letter == '-') {
            events.KeyPress(letter == 't' ? TreeKey::Text : TreeKey::Sign, letter == 't' ? rest : "-", at);
            return;
        }
        if (!rest.empty()) tree.selected = Node(rest);
        const TreeKey key = letter == 'R' ? TreeKey::Return : letter == 'F' ? TreeKey::F2 : TreeKey::Space;
        events.KeyPress(key, letter == 'S' ? " " : "", at);
    }

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
    const auto cases = nlohmann::json::parse(TempFolder::Read(SourceFile("tests/editing/tree-gestures.json")));
    ASSERT_GT(cases.size(), 10u);
    for (const auto& c : cases) {
        SCOPED_TRACE(c["gestures"].get<std::string>() + " " + c.value("why", ""));
        Gestures run(c);
        run.Play(c["gestures"]);
        EXPECT_EQ(run.shown, c["image"]);
        EXPECT_EQ(run.forms.opened, c.value("opened", ""));
        const std::string selected = c.value("selected", "");
        EXPECT_EQ(run.tree.selected, selected.empty() ? nullptr : run.Node(selected));
        std::istringstream boxes(c.value("boxes", ""));
        for (std::string box; boxes >> box;) {
            const MemoryTreeNode& node = TestTree::Of(*run.Node(box.substr(0, box.size() - 1)));
            const bool on = box.back() == '+';
            EXPECT_EQ(std::pair(node.Checked().value_or(false), node.Bold().value_or(false)), std::pair(on, on)) << box;
        }
    }
}

}  // namespace
}  // namespace sb::test

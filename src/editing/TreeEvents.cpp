#include "editing/TreeEvents.h"

#include <stdexcept>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "editing/NodeKeys.h"
#include "editing/OptionEdits.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"

namespace sb {

struct TreeEvents::OptionRef {
    int32_t optionIndex;
    const OptionRec& option;
    const PredefCfg& cfg;
};

namespace {

TreeNode& Require(TreeNode* node) {
    if (!node) throw std::out_of_range("no such node");
    return *node;
}

template <class Item>
const Item& At(const std::vector<Item>& items, int32_t index) {
    if (index < 0) throw std::out_of_range("negative index");
    return items.at(static_cast<size_t>(index));
}

}  // namespace

TreeEvents::TreeEvents(DeviceInfo& device, EditTree& tree, ValueEditors& editors, std::function<void()> showImage,
                       int64_t typingPauseMs)
    : device_(device), tree_(tree), editors_(editors), showImage_(std::move(showImage)), typeAhead_(typingPauseMs) {}

void TreeEvents::RunSilently(const std::function<void()>& event) {
    try {
        event();
    } catch (const std::exception&) {
        // A tree event ends silently on any failure.
    }
}

void TreeEvents::NodeCheck(TreeNode& node) {
    tree_.SetSelectedItem(&node);
    nodeCheckPending_ = true;
}

void TreeEvents::DblClick() {
    nodeCheckPending_ = false;
    RunSilently([this] { DblClickSteps(); });
}

void TreeEvents::MouseUp() {
    if (!nodeCheckPending_) return;
    nodeCheckPending_ = false;
    RunSilently([this] { MouseUpSteps(); });
}

void TreeEvents::DblClickSteps() {
    TreeNode& node = Require(tree_.SelectedItem());
    if (KindOfKey(tree_.KeyOf(node)) == NodeKind::Value) return;  // nothing changes, the selection stays
    OnOptionOrRoot(node, [](const OptionRef& ref) { return IsListType(ref.option.Type); });
}

void TreeEvents::MouseUpSteps() {
    TreeNode& node = Require(tree_.SelectedItem());
    if (KindOfKey(tree_.KeyOf(node)) != NodeKind::Value) {
        // The box of an option opens a form only for an integer.
        OnOptionOrRoot(node, [](const OptionRef& ref) { return ref.option.Type == "INT"; });
        return;
    }
    TreeNode& optionNode = Require(tree_.ParentOf(node));
    const OptionRef ref = OptionOfNode(optionNode);
    if (IsListType(ref.option.Type)) {
        if (!ApplyListEntry(ref, optionNode, node)) return;
    } else if (ref.option.Type == "BITFIELD") {
        ApplyMember(ref, optionNode, node);
    }
    showImage_();
}

void TreeEvents::OnOptionOrRoot(TreeNode& node, const std::function<bool(const OptionRef&)>& opensForm) {
    node.SetChecked(false);
    if (KindOfKey(tree_.KeyOf(node)) == NodeKind::Option) {
        const OptionRef ref = OptionOfNode(node);
        if (OpenForEditing(ref, node) && opensForm(ref)) EditInForm(ref, node);
    }
    tree_.SetSelectedItem(nullptr);
}

TreeEvents::OptionRef TreeEvents::OptionOfNode(TreeNode& node) {
    const int32_t optionIndex = OptionIndexOfKey(tree_.KeyOf(node));
    const int32_t cfgIndex = IndexOfTag(Require(tree_.ParentOf(node)).Tag());
    return {optionIndex, At(device_.Options.Items, optionIndex), At(device_.PredefCfgs.Items, cfgIndex)};
}

bool TreeEvents::OpenForEditing(const OptionRef& ref, TreeNode& node) {
    return !IsLocked(ref.cfg, ref.optionIndex) && tree_.ChildrenOf(node) == 0;
}

void TreeEvents::EditInForm(const OptionRef& ref, TreeNode& node) {
    const OptionRec& option = ref.option;
    const FormStart start = StartValueForForm(option, node.Tag());
    if (start.TagReplaced) node.SetTag(start.Value);
    std::string value;
    if (option.Type == "INT")
        value = editors_.EditInt(option.Name, option.MinValue, option.MaxValue, start.Value);
    else if (option.Type == "BIN")
        value = editors_.EditBin(option.Name, FormLength(option), start.Value);
    else
        value = editors_.EditStr(option.Name, FormLength(option), start.Value);
    WriteBack(ref, node, std::move(value));
}

void TreeEvents::WriteBack(const OptionRef& ref, TreeNode& node, std::string value) {
    // The codec may rewrite the value (hex text without its blanks); the
    // node keeps it as rewritten.
    const std::string shown = SetOptionValue(device_.CfgImage, ref.option, value);
    // When the hex text stays the same no rebuild follows, so the node shows
    // the result by itself.
    node.SetText(OptionNodeText(ref.option, shown));
    node.SetTag(value);
    showImage_();
}

template <class Visit>
void TreeEvents::ForEachChild(TreeNode& parent, Visit visit) {
    TreeNode* child = parent.Child();
    const int count = tree_.ChildrenOf(parent);
    for (int n = 0; n < count; ++n) {
        TreeNode& each = Require(child);
        visit(each);
        child = each.Next();
    }
}

bool TreeEvents::ApplyListEntry(const OptionRef& ref, TreeNode& optionNode, TreeNode& entryNode) {
    std::string value = entryNode.Tag();
    const std::string allowed = AllowedValue(ref.cfg, ref.optionIndex, ref.option);
    if (!allowed.empty() && allowed != value) {
        // A locked option refuses any other entry, without a word.
        entryNode.SetChecked(false);
        tree_.SetSelectedItem(nullptr);
        return false;
    }
    const std::string key = tree_.KeyOf(entryNode);
    ForEachChild(optionNode, [&](TreeNode& child) {
        if (tree_.KeyOf(child) == key) return;
        child.SetChecked(false);
        child.SetBold(false);
    });
    // A ticked entry can't be switched off, only replaced.
    entryNode.SetChecked(true);
    entryNode.SetBold(true);
    const std::string shown = SetOptionValue(device_.CfgImage, ref.option, value);
    optionNode.SetText(OptionNodeText(ref.option, shown));
    optionNode.SetTag(value);
    return true;
}

void TreeEvents::ApplyMember(const OptionRef& ref, TreeNode& optionNode, TreeNode& memberNode) {
    const OptValue& member = At(ref.option.Values.Items, ValueIndexOfKey(tree_.KeyOf(memberNode)));
    std::string value = SwitchMember(optionNode.Tag(), member, tree_.CheckedOf(memberNode));
    // A locked bit field falls back to the configuration's own value.
    const std::string allowed = AllowedValue(ref.cfg, ref.optionIndex, ref.option);
    if (!allowed.empty() && allowed != value) value = allowed;
    const std::string shown = SetOptionValue(device_.CfgImage, ref.option, value);
    optionNode.SetText(OptionNodeText(ref.option, shown));
    optionNode.SetTag(value);
    // This puts back the box of a refused click and shows the members that
    // the masks switched along.
    ForEachChild(optionNode, [&](TreeNode& child) {
        const OptValue& each = At(ref.option.Values.Items, ValueIndexOfKey(tree_.KeyOf(child)));
        const bool on = child.Tag() == HexAnd(value, each.Mask);
        child.SetChecked(on);
        child.SetBold(on);
    });
}

bool TreeEvents::KeyPress(TreeKey key, const std::string& text, int64_t atMs) {
    if ((key == TreeKey::Space || key == TreeKey::Sign) && typeAhead_.Typing(atMs)) key = TreeKey::Text;
    if (key != TreeKey::Text) typeAhead_.Reset();
    switch (key) {
        case TreeKey::Return:
        case TreeKey::F2:
            DblClick();
            return true;
        case TreeKey::Space:
            ClickBoxByKey();
            return true;
        case TreeKey::Text:
            typeAhead_.Type(text, atMs);
            RunSilently([this] { GoToTypedOption(); });
            return true;
        case TreeKey::Sign:
        case TreeKey::Other:
            break;
    }
    return false;
}

// A tick by the keyboard has no MouseUp to follow it: it is carried out at
// once, and whatever a mouse left pending is dropped.
void TreeEvents::ClickBoxByKey() {
    nodeCheckPending_ = false;
    RunSilently([this] {
        TreeNode& node = Require(tree_.SelectedItem());
        node.SetChecked(!tree_.CheckedOf(node));
        MouseUpSteps();
    });
}

// Among the options that the tree shows; from a value node, its option is
// the current one.
void TreeEvents::GoToTypedOption() {
    const int32_t cfgIndex = FindPredefCfgById(device_, ImageId(device_.CfgImage));
    TreeNode& root = Require(tree_.Find("CONFIGURATION" + Uint32ToHex(cfgIndex)));
    TreeNode* selected = tree_.SelectedItem();
    if (selected && KindOfKey(tree_.KeyOf(*selected)) == NodeKind::Value) selected = tree_.ParentOf(*selected);
    std::vector<TreeNode*> shown;
    std::vector<std::string> names;
    int current = -1;
    for (TreeNode* node = root.Child(); node; node = node->Next()) {
        if (node == selected) current = static_cast<int>(shown.size());
        shown.push_back(node);
        names.push_back(At(device_.Options.Items, OptionIndexOfKey(tree_.KeyOf(*node))).Name);
    }
    const int found = typeAhead_.Find(names, current);
    if (found >= 0) tree_.SetSelectedItem(shown[static_cast<size_t>(found)]);
}

}  // namespace sb

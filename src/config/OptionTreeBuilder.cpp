// The option tree of an image: root = the configuration the image's Id
// names, one node per visible option, one per list entry or member below.
// The same configuration again means an update in place: the walk along
// Child and Next meets the nodes in the order of the loops, for with the
// same root the same options are visible and the same entries exist.
#include <optional>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

// An index in 8 upper-case hex digits, as Uint32ToHex writes it; a build
// makes one a node, so it is written here directly.
std::string IndexText(int32_t index) {
    std::string digits(8, '0');
    auto value = static_cast<uint32_t>(index);
    for (int at = 7; at >= 0 && value != 0; --at, value >>= 4) digits[static_cast<size_t>(at)] = "0123456789ABCDEF"[value & 0xF];
    return digits;
}

std::string ConfigurationKey(int32_t index) { return "CONFIGURATION" + IndexText(index); }
std::string OptionKey(int32_t option) { return "OPTION" + IndexText(option); }
std::string ValueKey(const std::string& optionKey, int32_t entry) { return optionKey + "_VALUE" + IndexText(entry); }

bool IsListType(const std::string& type) { return type == "INT" || type == "BIN" || type == "STR"; }

// A member is on when the value under its mask equals its pattern; a mask
// or value beyond the helpers' limits matches nothing.
bool MemberIsOn(const std::string& value, const OptValue& member) {
    try {
        return HexAnd(value, member.Mask) == member.Value;
    } catch (const OverflowError&) {
        return false;
    }
}

// Whether the entry names the value, by the rule of the option's type.
bool EntryMatches(const std::string& type, const OptValue& entry, const std::string& value) {
    return type == "BITFIELD" ? MemberIsOn(value, entry) : entry.Value == value;
}

// A node's colour tells its relation to the configuration: locked options
// red; of a locked option the fixed value red and the others gray; of a
// free one the configuration's own value blue and the others black.
uint32_t ValueColor(bool locked, bool configurationsOwn) {
    if (locked) return configurationsOwn ? kColorRed : kColorGrayText;
    return configurationsOwn ? kColorBlue : kColorBlack;
}

class TreeBuild {
public:
    TreeBuild(const std::string& image, const DeviceInfo& device, const PredefCfg& cfg, OptionTree& tree)
        : image_(image), device_(device), cfg_(cfg), tree_(tree) {}

    // The root of the configuration; a root of another one goes, with all
    // below it. Nullptr when the tree refuses the root.
    TreeNode* Root(int32_t index) {
        const std::string key = ConfigurationKey(index);
        if (TreeNode* root = tree_.Find(key)) return root;
        tree_.Clear();
        TreeNode* root = tree_.Add(nullptr, key, cfg_.Name);
        if (root) {
            root->SetTag(IndexText(index));
            root->SetExpanded(true);
        }
        return root;
    }

    void Options(TreeNode& root) {
        TreeNode* optNode = root.Child();
        const auto& options = device_.Options.Items;
        for (size_t i = 0; i < options.size(); ++i) {
            const auto index = static_cast<int32_t>(i);
            if (!TestBit(cfg_.VisibleMask, index, 1)) continue;
            if (!optNode) optNode = tree_.Add(&root, OptionKey(index), "");
            // A node the tree refuses is skipped; the walk goes on.
            if (!optNode) continue;
            Option(index, options[i], *optNode);
            optNode = optNode->Next();
        }
    }

private:
    void Option(int32_t index, const OptionRec& option, TreeNode& optNode) {
        std::string shown;
        const std::string raw = GetOptionValue(image_, option, shown);
        // One buffer for every option's text: a rebuild of a large tree
        // would otherwise allocate a text per option to compare it.
        text_.assign(option.Name).append(":").append(shown);
        optNode.SetText(text_);
        optNode.SetTag(raw);
        const bool locked = TestBit(cfg_.DisabledMask, index, 1);
        optNode.SetForeColor(locked ? kColorRed : kColorBlack);
        if (!IsListType(option.Type) && option.Type != "BITFIELD") return;

        // The configuration's own value and the option's key, needed only
        // for nodes yet to make.
        std::optional<std::string> own;
        std::optional<std::string> optionKey;
        const bool list = IsListType(option.Type);
        TreeNode* valNode = optNode.Child();
        const auto& entries = option.Values.Items;
        for (size_t j = 0; j < entries.size(); ++j) {
            const OptValue& entry = entries[j];
            if (!valNode) {
                if (!own) {
                    own = GetOptionValue(cfg_.Data, option, shown);
                    optionKey = OptionKey(index);
                }
                valNode = NewValueNode(optNode, ValueKey(*optionKey, static_cast<int32_t>(j)), entry, option.Type,
                                       *own, locked);
            }
            if (!valNode) continue;
            const bool on = list ? valNode->Tag() == raw : MemberIsOn(raw, entry);
            valNode->SetChecked(on);
            valNode->SetBold(on);
            valNode = valNode->Next();
        }
    }

    // Text, tag and colour of a value node follow from the catalog and the
    // configuration alone, so they are set once, when the node is made.
    TreeNode* NewValueNode(TreeNode& optNode, const std::string& key, const OptValue& entry, const std::string& type,
                           const std::string& own, bool locked) {
        TreeNode* valNode = tree_.Add(&optNode, key, entry.Text);
        if (valNode) {
            valNode->SetTag(entry.Value);
            valNode->SetForeColor(ValueColor(locked, EntryMatches(type, entry, own)));
        }
        return valNode;
    }

    const std::string& image_;
    const DeviceInfo& device_;
    const PredefCfg& cfg_;
    OptionTree& tree_;
    std::string text_;  // the option's text, made here
};

}  // namespace

std::string ImageId(const std::string& image) { return Uint32ToHex(BytesToUint32(image.substr(0, 4))); }

bool BuildOptionTree(const std::string& image, const DeviceInfo& device, OptionTree& tree) {
    const int32_t index = FindPredefCfgById(device, ImageId(image));
    if (index < 0) {
        tree.Clear();
        return false;
    }
    TreeBuild build(image, device, device.PredefCfgs.Items[static_cast<size_t>(index)], tree);
    if (TreeNode* root = build.Root(index)) build.Options(*root);
    return true;
}

}  // namespace sb

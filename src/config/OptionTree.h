#pragma once
#include <cstdint>
#include <string>

// What the option tree builder needs of a tree control. The in-memory tree
// and the Qt tree of the main screen implement it.
namespace sb {

// Colours in the form red in the low byte, blue in the high byte.
inline constexpr uint32_t kColorBlack = 0x000000;
inline constexpr uint32_t kColorRed = 0x0000FF;
inline constexpr uint32_t kColorBlue = 0xFF0000;
inline constexpr uint32_t kColorGrayText = 0x80000011;  // the system's gray text

class TreeNode {
public:
    virtual ~TreeNode() = default;
    virtual TreeNode* Child() = 0;  // first child, or nullptr
    virtual TreeNode* Next() = 0;   // next sibling, or nullptr
    virtual const std::string& Text() const = 0;
    virtual void SetText(const std::string& text) = 0;
    virtual const std::string& Tag() const = 0;
    virtual void SetTag(const std::string& tag) = 0;
    virtual void SetExpanded(bool expanded) = 0;
    virtual void SetForeColor(uint32_t color) = 0;
    virtual void SetChecked(bool checked) = 0;
    virtual void SetBold(bool bold) = 0;
};

class OptionTree {
public:
    virtual ~OptionTree() = default;
    virtual void Clear() = 0;
    // The node of that key, or nullptr when there is none.
    virtual TreeNode* Find(const std::string& key) = 0;
    // Adds a node as last child of relative; with no relative, a root.
    virtual TreeNode* Add(TreeNode* relative, const std::string& key, const std::string& text) = 0;
};

}  // namespace sb

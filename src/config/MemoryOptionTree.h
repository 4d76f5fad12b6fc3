#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "config/OptionTree.h"

namespace sb {

// A node of the in-memory option tree. Beside what the builder writes it
// tells what a reader needs: key, parent, children, and each property only
// as far as it was set.
class MemoryTreeNode final : public TreeNode {
public:
    TreeNode* Child() override;
    TreeNode* Next() override;
    const std::string& Text() const override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }
    const std::string& Tag() const override { return tag_; }
    void SetTag(const std::string& tag) override { tag_ = tag; }
    void SetExpanded(bool expanded) override { expanded_ = expanded; }
    void SetForeColor(uint32_t color) override { foreColor_ = color; }
    void SetChecked(bool checked) override { checked_ = checked; }
    void SetBold(bool bold) override { bold_ = bold; }

    const std::string& Key() const { return key_; }
    MemoryTreeNode* Parent() const { return parent_; }
    const std::vector<MemoryTreeNode*>& Children() const { return children_; }
    std::optional<bool> Expanded() const { return expanded_; }
    std::optional<uint32_t> ForeColor() const { return foreColor_; }
    std::optional<bool> Checked() const { return checked_; }
    std::optional<bool> Bold() const { return bold_; }

private:
    friend class MemoryOptionTree;

    std::string key_;
    std::string text_;
    std::string tag_;
    MemoryTreeNode* parent_ = nullptr;
    const std::vector<MemoryTreeNode*>* siblings_ = nullptr;  // the parent's children, or the roots
    size_t position_ = 0;                                      // among the siblings
    std::vector<MemoryTreeNode*> children_;
    std::optional<bool> expanded_;
    std::optional<uint32_t> foreColor_;
    std::optional<bool> checked_;
    std::optional<bool> bold_;
};

// The option tree without a screen, for tests, the command-line tool and
// the benchmarks. A lookup by key goes through a hash map; keys are unique,
// and an Add with a key that is taken fails (nullptr), as the control's does.
class MemoryOptionTree final : public OptionTree {
public:
    MemoryOptionTree() = default;
    MemoryOptionTree(const MemoryOptionTree&) = delete;
    MemoryOptionTree& operator=(const MemoryOptionTree&) = delete;

    void Clear() override;
    TreeNode* Find(const std::string& key) override { return Node(key); }
    TreeNode* Add(TreeNode* relative, const std::string& key, const std::string& text) override;

    MemoryTreeNode* Node(const std::string& key) const;
    const std::vector<MemoryTreeNode*>& Roots() const { return roots_; }
    size_t Size() const { return nodes_.size(); }

private:
    std::vector<std::unique_ptr<MemoryTreeNode>> nodes_;
    std::unordered_map<std::string, MemoryTreeNode*> byKey_;
    std::vector<MemoryTreeNode*> roots_;
};

}  // namespace sb

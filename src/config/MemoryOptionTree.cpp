#include "config/MemoryOptionTree.h"

namespace sb {

TreeNode* MemoryTreeNode::Child() { return children_.empty() ? nullptr : children_.front(); }

TreeNode* MemoryTreeNode::Next() {
    return position_ + 1 < siblings_->size() ? (*siblings_)[position_ + 1] : nullptr;
}

void MemoryOptionTree::Clear() {
    roots_.clear();
    byKey_.clear();
    nodes_.clear();
}

TreeNode* MemoryOptionTree::Add(TreeNode* relative, const std::string& key, const std::string& text) {
    auto* parent = dynamic_cast<MemoryTreeNode*>(relative);
    if (relative && !parent) return nullptr;
    MemoryTreeNode** slot = nullptr;
    if (!key.empty()) {
        const auto [entry, inserted] = byKey_.try_emplace(key, nullptr);
        if (!inserted) return nullptr;
        slot = &entry->second;
    }

    auto node = std::make_unique<MemoryTreeNode>();
    node->key_ = key;
    node->text_ = text;
    node->parent_ = parent;
    std::vector<MemoryTreeNode*>& siblings = parent ? parent->children_ : roots_;
    node->siblings_ = &siblings;
    node->position_ = siblings.size();
    siblings.push_back(node.get());
    if (slot) *slot = node.get();
    nodes_.push_back(std::move(node));
    return nodes_.back().get();
}

MemoryTreeNode* MemoryOptionTree::Node(const std::string& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second;
}

}  // namespace sb

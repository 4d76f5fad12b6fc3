#pragma once
#include <string>

#include "config/OptionTree.h"

namespace sb {

// What the tree's events need of the tree control beyond what the builder
// needs: the selection, and reading a node's key, parent, number of direct
// children and check box. The Qt tree of the main screen implements it.
class EditTree : public OptionTree {
public:
    // The selected node, or nullptr.
    virtual TreeNode* SelectedItem() = 0;
    // nullptr leaves no node selected.
    virtual void SetSelectedItem(TreeNode* node) = 0;
    virtual std::string KeyOf(TreeNode& node) = 0;
    virtual TreeNode* ParentOf(TreeNode& node) = 0;
    virtual int ChildrenOf(TreeNode& node) = 0;
    virtual bool CheckedOf(TreeNode& node) = 0;
};

}  // namespace sb

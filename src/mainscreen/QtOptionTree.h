#pragma once
#include <QTreeWidget>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "editing/EditTree.h"

namespace sb::ui {

// The option tree on a QTreeWidget: every node has a check box; a node's key
// and tag are kept in item data roles; a lookup by key goes through a hash
// map, and a node knows its first child and next sibling, so neither walks
// the tree. Writes that change nothing leave the item alone, so a rebuild in
// place touches only what changed.
//
// A check box that the user clicks is told through onNodeCheck; the tree's
// own writes (the builder's, the events') never are.
class QtOptionTree final : public EditTree {
public:
    static constexpr int kKeyRole = Qt::UserRole;      // QString
    static constexpr int kTagRole = Qt::UserRole + 1;  // QByteArray, one byte a character

    explicit QtOptionTree(QTreeWidget& view);
    ~QtOptionTree() override;

    std::function<void(TreeNode& node)> onNodeCheck;

    void Clear() override;
    TreeNode* Find(const std::string& key) override;
    TreeNode* Add(TreeNode* relative, const std::string& key, const std::string& text) override;

    TreeNode* SelectedItem() override;
    void SetSelectedItem(TreeNode* node) override;
    std::string KeyOf(TreeNode& node) override;
    TreeNode* ParentOf(TreeNode& node) override;
    int ChildrenOf(TreeNode& node) override;
    bool CheckedOf(TreeNode& node) override;

    // A picture beside the node's text (none for a null icon), which the
    // tree's events never see as a click.
    void SetDecoration(TreeNode& node, const QIcon& icon);
    bool HasDecoration(TreeNode& node);

    // The node of an item of the view, or nullptr.
    TreeNode* NodeOf(QTreeWidgetItem* item);
    QTreeWidgetItem* ItemOf(TreeNode& node);

private:
    class Node;
    friend class Node;
    struct Writing;

    QTreeWidget& view_;
    QMetaObject::Connection itemChanged_;
    std::unordered_map<std::string, std::unique_ptr<Node>> byKey_;
    std::unordered_map<const QTreeWidgetItem*, Node*> byItem_;
    int writing_ = 0;
};

}  // namespace sb::ui

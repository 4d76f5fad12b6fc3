#include "mainscreen/QtOptionTree.h"

#include <QBrush>
#include <QFont>
#include <QPalette>
#include <optional>

#include "ui/Guarded.h"
#include "ui/Latin1.h"

namespace sb::ui {
namespace {

constexpr uint32_t kSystemColor = 0x80000000;
constexpr uint32_t kSystemGrayText = 0x11;

// Colour numbers hold red in the low byte and blue in the high byte; a
// number with the top bit set names a colour of the system.
QColor ColorOf(uint32_t value, const QPalette& palette) {
    if (value & kSystemColor) {
        if ((value & 0xFF) == kSystemGrayText) return palette.color(QPalette::Disabled, QPalette::Text);
        return palette.color(QPalette::Active, QPalette::Text);
    }
    return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                  static_cast<int>((value >> 16) & 0xFF));
}

}  // namespace

// The tree's own writes: itemChanged during them is no click.
struct QtOptionTree::Writing {
    explicit Writing(QtOptionTree& tree) : tree_(tree) { ++tree_.writing_; }
    ~Writing() { --tree_.writing_; }
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;

private:
    QtOptionTree& tree_;
};

class QtOptionTree::Node final : public TreeNode {
public:
    Node(QtOptionTree& tree, QTreeWidgetItem* item, Node* parent, std::string key, std::string text)
        : tree_(tree), item_(item), parent_(parent), key_(std::move(key)), text_(std::move(text)) {}

    TreeNode* Child() override { return firstChild_; }
    TreeNode* Next() override { return next_; }

    const std::string& Text() const override { return text_; }
    void SetText(const std::string& text) override {
        if (text_ == text) return;
        text_ = text;
        Writing writing(tree_);
        item_->setText(0, Latin1(text));
    }

    // Text, tag, colour, check box and bold live in the item; a copy of
    // each here spares the item's lookups and conversions on the many reads
    // of a rebuild.
    const std::string& Tag() const override { return tag_; }
    void SetTag(const std::string& tag) override {
        if (hasTag_ && tag_ == tag) return;
        tag_ = tag;
        hasTag_ = true;
        Writing writing(tree_);
        item_->setData(0, kTagRole, QByteArray(tag.data(), static_cast<qsizetype>(tag.size())));
    }

    void SetExpanded(bool expanded) override {
        Writing writing(tree_);
        item_->setExpanded(expanded);
    }

    void SetForeColor(uint32_t color) override {
        if (color_ == color) return;
        color_ = color;
        Writing writing(tree_);
        item_->setForeground(0, QBrush(ColorOf(color, tree_.view_.palette())));
    }

    void SetChecked(bool checked) override {
        if (checked_ == checked) return;
        checked_ = checked;
        Writing writing(tree_);
        item_->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
    }

    // A box that the user turned.
    void TakeCheckState() { checked_ = item_->checkState(0) == Qt::Checked; }

    void SetBold(bool bold) override {
        if (bold_ == bold) return;
        bold_ = bold;
        QFont font = item_->font(0);
        font.setBold(bold);
        Writing writing(tree_);
        item_->setFont(0, font);
    }

    void Append(Node* child) {
        if (lastChild_)
            lastChild_->next_ = child;
        else
            firstChild_ = child;
        lastChild_ = child;
        ++children_;
    }

    QtOptionTree& tree_;
    QTreeWidgetItem* item_;
    Node* parent_;
    std::string key_;
    std::string text_;
    Node* firstChild_ = nullptr;
    Node* lastChild_ = nullptr;
    Node* next_ = nullptr;
    int children_ = 0;
    std::string tag_;
    bool hasTag_ = false;
    std::optional<uint32_t> color_;
    bool bold_ = false;
    bool checked_ = false;
};

QtOptionTree::QtOptionTree(QTreeWidget& view) : view_(view) {
    itemChanged_ = QObject::connect(&view_, &QTreeWidget::itemChanged, &view_, Guarded([this](QTreeWidgetItem* item, int) {
        if (writing_ > 0) return;
        const auto found = byItem_.find(item);
        if (found == byItem_.end()) return;
        found->second->TakeCheckState();
        if (onNodeCheck) onNodeCheck(*found->second);
    }));
}

QtOptionTree::~QtOptionTree() { QObject::disconnect(itemChanged_); }

void QtOptionTree::Clear() {
    Writing writing(*this);
    view_.clear();
    byItem_.clear();
    byKey_.clear();
}

TreeNode* QtOptionTree::Find(const std::string& key) {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second.get();
}

TreeNode* QtOptionTree::Add(TreeNode* relative, const std::string& key, const std::string& text) {
    // A key stands for one node: a second node of the same key is refused.
    if (byKey_.count(key)) return nullptr;
    Node* parent = relative ? static_cast<Node*>(relative) : nullptr;

    auto* item = new QTreeWidgetItem;
    item->setText(0, Latin1(text));
    item->setData(0, kKeyRole, Latin1(key));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(0, Qt::Unchecked);

    auto node = std::make_unique<Node>(*this, item, parent, key, text);
    Node* added = node.get();
    {
        Writing writing(*this);
        if (parent) {
            parent->item_->addChild(item);
            parent->Append(added);
        } else {
            view_.addTopLevelItem(item);
        }
    }
    byItem_[item] = added;
    byKey_[key] = std::move(node);
    return added;
}

TreeNode* QtOptionTree::SelectedItem() {
    QTreeWidgetItem* current = view_.currentItem();
    return current && current->isSelected() ? NodeOf(current) : nullptr;
}

void QtOptionTree::SetSelectedItem(TreeNode* node) {
    if (!node) {
        view_.clearSelection();
        view_.setCurrentItem(nullptr);
        return;
    }
    view_.setCurrentItem(static_cast<Node*>(node)->item_);
}

std::string QtOptionTree::KeyOf(TreeNode& node) { return static_cast<Node&>(node).key_; }
TreeNode* QtOptionTree::ParentOf(TreeNode& node) { return static_cast<Node&>(node).parent_; }
int QtOptionTree::ChildrenOf(TreeNode& node) { return static_cast<Node&>(node).children_; }
bool QtOptionTree::CheckedOf(TreeNode& node) { return static_cast<Node&>(node).item_->checkState(0) == Qt::Checked; }

TreeNode* QtOptionTree::NodeOf(QTreeWidgetItem* item) {
    const auto found = byItem_.find(item);
    return found == byItem_.end() ? nullptr : found->second;
}

QTreeWidgetItem* QtOptionTree::ItemOf(TreeNode& node) { return static_cast<Node&>(node).item_; }

void QtOptionTree::SetDecoration(TreeNode& node, const QIcon& icon) {
    Writing writing(*this);
    ItemOf(node)->setData(0, Qt::DecorationRole, icon.isNull() ? QVariant() : QVariant(icon));
}

bool QtOptionTree::HasDecoration(TreeNode& node) { return ItemOf(node)->data(0, Qt::DecorationRole).isValid(); }

}  // namespace sb::ui

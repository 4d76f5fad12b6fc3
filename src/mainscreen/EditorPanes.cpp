// The editor's panes around the option tree: the search field above it
// (Ctrl+F), "Show only changed", the mark of each option whose value differs
// from the read one, the details of the option last selected, and the list
// of pending changes. The decisions are the core's (editing/OptionFilter,
// PendingChanges, OptionDetails); here they are only shown. None of this
// touches the tree's texts, colours, boxes or events: an option is hidden
// or marked with a decoration, nothing else.
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMenuBar>
#include <QPainter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_set>

#include "editing/NodeKeys.h"
#include "editing/OptionDetails.h"
#include "editing/OptionFilter.h"
#include "editing/PendingChanges.h"
#include "helpers/HexText.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Guarded.h"
#include "ui/Latin1.h"
#include "ui/ModalDialog.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"

namespace sb::ui {
namespace {

constexpr int kMarkSize = 10;

// A small amber dot: a colour that the tree itself never uses.
QIcon ChangedMark() {
    QPixmap pixmap(kMarkSize, kMarkSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xE0, 0x80, 0x00));
    painter.drawEllipse(1, 1, kMarkSize - 2, kMarkSize - 2);
    return QIcon(pixmap);
}

// The option index of an item's node, of its option for a list entry; -1
// for the root or no item.
int32_t OptionOfItem(QtOptionTree& tree, QTreeWidgetItem* item) {
    TreeNode* node = item ? tree.NodeOf(item) : nullptr;
    if (!node) return -1;
    const std::string key = tree.KeyOf(*node);
    return KindOfKey(key) == NodeKind::Root ? -1 : OptionIndexOfKey(key);
}

// Calls visit(item, option index) for each option node of the tree, along
// the nodes, which know their keys without asking the items.
template <class Visit>
void ForEachOption(QtOptionTree& tree, QTreeWidget& view, Visit visit) {
    QTreeWidgetItem* rootItem = view.topLevelItem(0);
    TreeNode* root = rootItem ? tree.NodeOf(rootItem) : nullptr;
    if (!root) return;
    for (TreeNode* node = root->Child(); node; node = node->Next())
        visit(tree.ItemOf(*node), OptionIndexOfKey(tree.KeyOf(*node)));
}

bool Flag(const std::vector<bool>& flags, int32_t index) {
    return index >= 0 && static_cast<size_t>(index) < flags.size() && flags[static_cast<size_t>(index)];
}

}  // namespace

void frmDeviceCofigurator::BuildEditorPanes() {
    QWidget* center = centralWidget();
    txtSearch = Named(new QLineEdit(center), "txtSearch");
    txtSearch->setPlaceholderText(QStringLiteral("Find option (Ctrl+F)"));
    txtSearch->setClearButtonEnabled(true);
    txtSearch->installEventFilter(this);
    tvOptions->installEventFilter(this);
    chkOnlyChanged = Named(new QCheckBox(QStringLiteral("Show only changed"), center), "chkOnlyChanged");
    // Until a tree stands there is nothing to find.
    txtSearch->setEnabled(false);
    chkOnlyChanged->setEnabled(false);
    txtOptionDetails = ShowOnlyLines(center, "txtOptionDetails", 4);
    txtOptionDetails->setMaximumHeight(txtOptionDetails->fontMetrics().lineSpacing() * 10 + 10);

    connect(txtSearch, &QLineEdit::textEdited, this, Guarded([this] { SearchEdited(); }));
    connect(txtSearch, &QLineEdit::returnPressed, this, Guarded([this] { SearchReturned(); }));
    connect(chkOnlyChanged, &QCheckBox::toggled, this, Guarded([this] { SearchEdited(); }));
    connect(tvOptions, &QTreeWidget::currentItemChanged, this,
            Guarded([this](QTreeWidgetItem* item, QTreeWidgetItem*) { ShowDetailsOf(item); }));
}

void frmDeviceCofigurator::AddEditorMenus() {
    mnuEdit->addSeparator();
    mnuFind = Named(mnuEdit->addAction(QStringLiteral("Find option")), "mnuFind");
    mnuFind->setShortcut(QKeySequence::Find);
    mnuPendingChanges = Named(mnuEdit->addAction(QStringLiteral("Pending changes…")), "mnuPendingChanges");
    connect(mnuFind, &QAction::triggered, this, Guarded([this] {
                txtSearch->setFocus(Qt::ShortcutFocusReason);
                txtSearch->selectAll();
            }));
    connect(mnuPendingChanges, &QAction::triggered, this, Guarded([this] { ShowPendingChanges(); }));
    // The details name the value in the configuration chosen in the list.
    connect(cmbConfigList, &QComboBox::activated, this, Guarded([this] { ShowDetails(); }));
}

// After every build of the tree: the marks, the filter and the details
// follow the image.
void frmDeviceCofigurator::RefreshEditorPanes() {
    const bool tree = tvOptions->topLevelItemCount() > 0;
    txtSearch->setEnabled(tree);
    chkOnlyChanged->setEnabled(tree);
    ShowChangedMarks();
    if (filtering_ || chkOnlyChanged->isChecked()) ApplyTreeFilter();
    ShowDetails();
}

// Only the options that are or were marked are looked at: a rebuilt tree
// has new items without marks, and the others never had one.
void frmDeviceCofigurator::ShowChangedMarks() {
    const std::vector<bool> before = std::exchange(changedOptions_, ChangedOptions(device_));
    static const QIcon mark = ChangedMark();  // drawn once: every change comes here
    for (size_t i = 0; i < std::max(before.size(), changedOptions_.size()); ++i) {
        const auto option = static_cast<int32_t>(i);
        const bool changed = Flag(changedOptions_, option);
        if (!changed && !Flag(before, option)) continue;
        TreeNode* node = tree_->Find("OPTION" + Uint32ToHex(option));
        if (node && tree_->HasDecoration(*node) != changed) tree_->SetDecoration(*node, changed ? mark : QIcon());
    }
}

void frmDeviceCofigurator::ApplyTreeFilter() {
    const std::vector<bool> passing =
        FilterOptions(device_, device_.CfgImage, SearchWords(Bytes(txtSearch->text())));
    const bool onlyChanged = chkOnlyChanged->isChecked();
    ForEachOption(*tree_, *tvOptions, [&](QTreeWidgetItem* item, int32_t option) {
        const bool hide = !Flag(passing, option) || (onlyChanged && !Flag(changedOptions_, option));
        if (item->isHidden() != hide) item->setHidden(hide);
    });
}

void frmDeviceCofigurator::SearchEdited() {
    // The tree as the search found it: Escape puts it back.
    if (!filtering_) {
        filtering_ = true;
        expandedBeforeSearch_.clear();
        ForEachOption(*tree_, *tvOptions, [&](QTreeWidgetItem* item, int32_t) {
            if (item->isExpanded()) expandedBeforeSearch_.push_back(tree_->KeyOf(*tree_->NodeOf(item)));
        });
        TreeNode* selected = tree_->SelectedItem();
        selectedBeforeSearch_ = selected ? tree_->KeyOf(*selected) : std::string();
    }
    ApplyTreeFilter();
}

void frmDeviceCofigurator::SearchEscaped() {
    txtSearch->clear();
    chkOnlyChanged->setChecked(false);  // its toggle filters once more, with no words
    ApplyTreeFilter();
    if (!filtering_) return;
    filtering_ = false;
    const std::unordered_set<std::string> expanded(expandedBeforeSearch_.begin(), expandedBeforeSearch_.end());
    ForEachOption(*tree_, *tvOptions, [&](QTreeWidgetItem* item, int32_t) {
        item->setExpanded(expanded.count(tree_->KeyOf(*tree_->NodeOf(item))) > 0);
    });
    tree_->SetSelectedItem(tree_->Find(selectedBeforeSearch_));
    if (QTreeWidgetItem* current = tvOptions->currentItem()) tvOptions->scrollToItem(current);
}

void frmDeviceCofigurator::SearchReturned() {
    QTreeWidgetItem* first = nullptr;
    ForEachOption(*tree_, *tvOptions, [&](QTreeWidgetItem* item, int32_t) {
        if (!first && !item->isHidden()) first = item;
    });
    if (!first) return;
    tvOptions->setCurrentItem(first);
    tvOptions->scrollToItem(first);
    tvOptions->setFocus(Qt::OtherFocusReason);
}

// A cleared selection (every edit ends with one) keeps the last option.
void frmDeviceCofigurator::ShowDetailsOf(QTreeWidgetItem* item) {
    if (!item) return;
    detailsOption_ = OptionOfItem(*tree_, item);
    ShowDetails();
}

// Every change comes here: a text that stays is not laid out again.
void frmDeviceCofigurator::ShowDetails() {
    const QString text = Latin1(OptionDetails(device_, detailsOption_, cmbConfigList->currentIndex()));
    if (text != txtOptionDetails->toPlainText()) txtOptionDetails->setPlainText(text);
}

void frmDeviceCofigurator::ShowPendingChanges() {
    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("frmPendingChanges"));
    dialog.setWindowTitle(QStringLiteral("Pending changes"));
    auto* table = Named(new QTableWidget(0, 3, &dialog), "tblPending");
    table->setHorizontalHeaderLabels({QStringLiteral("Option"), QStringLiteral("Read"), QStringLiteral("New")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (const OptionComparison& option : PendingChanges(device_).Options) {
        const int row = table->rowCount();
        table->insertRow(row);
        table->setItem(row, 0, new QTableWidgetItem(Latin1(option.Name)));
        table->setItem(row, 1, new QTableWidgetItem(Latin1(option.A.Shown)));
        table->setItem(row, 2, new QTableWidgetItem(Latin1(option.B.Shown)));
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, &dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(table);
    layout->addWidget(buttons);
    dialog.resize(640, 400);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::hide);
    ShowModal(dialog);
}

}  // namespace sb::ui

// The editor from the keyboard: Open, Save and closing on their usual keys,
// and the option tree's own keys.
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Guarded.h"
#include "ui/Named.h"

namespace sb::ui {

void frmDeviceCofigurator::AddEditorKeys() {
    mnuOpenConfig->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    mnuSaveConfig->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    mnuFile->addSeparator();
    mnuExit = Named(mnuFile->addAction(QStringLiteral("Quit")), "mnuExit");
    mnuExit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    // The close box's road: a running action winds down first.
    connect(mnuExit, &QAction::triggered, this, Guarded([this] { close(); }));
    // A key reaches an action only while it is enabled, not only when the
    // menu has been opened.
    connect(txtCfgEdited, &QPlainTextEdit::textChanged, this, Guarded([this] { UpdateConfigFileMenu(); }));

    lblSavedTo = Named(new QLabel(StatusBar), "lblSavedTo");
    StatusBar->addPermanentWidget(lblSavedTo);

    tvOptions->onKey = [this](TreeKey key, const std::string& text, int64_t atMs) {
        try {
            return tvOptions_KeyDown(key, text, atMs);
        } catch (...) {
            return true;  // tree events end silently
        }
    };
}

bool frmDeviceCofigurator::tvOptions_KeyDown(TreeKey key, const std::string& text, int64_t atMs) {
    TreeNode* before = tree_->NodeOf(tvOptions->currentItem());
    const std::string place = before ? tree_->KeyOf(*before) : std::string();
    const bool taken = events_->KeyPress(key, text, atMs);
    // An edit ends with no node selected; the keyboard's cursor stays on the
    // row (the tree may have been built anew, so it is found by its key).
    if (place.empty() || tvOptions->currentItem()) return taken;
    if (TreeNode* again = tree_->Find(place))
        tvOptions->setCurrentItem(tree_->ItemOf(*again), 0, QItemSelectionModel::NoUpdate);
    return taken;
}

}  // namespace sb::ui

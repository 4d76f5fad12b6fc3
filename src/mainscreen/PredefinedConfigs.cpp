// The list of whole configurations, "Select", and txtCfgEdited: the view of
// the working image that every edit ends in.
#include "config/ConfigTool.h"
#include "editing/ConfigList.h"
#include "helpers/HexText.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"

namespace sb::ui {
namespace {

constexpr const char* kSomethingWrong = "Something wrong";
constexpr size_t kDigitsPerRow = 64;

// The box shows the hex text in rows of 32 bytes: easier to read, and a box
// of many short lines lays out only what is in view, where one line of
// 32,000 digits would be laid out whole after every click in the tree.
QString InRows(const std::string& hex) {
    std::string rows;
    rows.reserve(hex.size() + hex.size() / kDigitsPerRow + 1);
    for (size_t at = 0; at < hex.size(); at += kDigitsPerRow) {
        if (at > 0) rows += '\n';
        rows.append(hex, at, kDigitsPerRow);
    }
    return Latin1(rows);
}

}  // namespace

void frmDeviceCofigurator::cmbConfigList_Click() {
    // Only the description changes; the image waits for "Select".
    const ConfigInfoView view = InfoOfEntry(device_, cmbConfigList->currentIndex(), cmbConfigList->count());
    txtConfigInfo->setPlainText(Latin1(view.Info));
    lblShortInfoCfgName->setText(Latin1(view.Caption));
}

void frmDeviceCofigurator::cmbConfigList_Validate() {
    const int index = cmbConfigList->currentIndex();
    if (index < 0 || index >= cmbConfigList->count() || index >= device_.PredefCfgs.Count()) return;
    txtConfigInfo->setPlainText(Latin1(device_.PredefCfgs.Items[index].Info));
}

void frmDeviceCofigurator::cmdSelPredefCfg_Click() {
    // Typing in the list's edit field keeps its selection, so there is
    // always an entry to apply once the button is enabled.
    const int index = cmbConfigList->currentIndex();
    if (index < 0 || index >= device_.PredefCfgs.Count()) return;
    // The whole image at once; earlier edits are not merged in.
    device_.CfgImage = device_.PredefCfgs.Items[index].Data;
    SetCfgEdited(BytesToHex(device_.CfgImage));
}

void frmDeviceCofigurator::SetCfgEdited(const std::string& text) {
    if (text != cfgEditedText_) {
        cfgEditedText_ = text;
        txtCfgEdited->setPlainText(InRows(text));
        txtCfgEdited_Change();
    }
    NoteImageStep();
}

void frmDeviceCofigurator::txtCfgEdited_Change() {
    txtCfgEditedDataChanged_ = true;
    BuildTreeOrSay();
}

void frmDeviceCofigurator::BuildTreeOrSay() {
    // The tree always shows the image, never the box's text.
    const bool built = BuildOptionTree(device_.CfgImage, device_, *tree_);
    RefreshEditorPanes();
    if (!built) ShowMessage(kSomethingWrong);
}

}  // namespace sb::ui

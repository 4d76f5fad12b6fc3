// The offline run: the work of a read without a module. Placeholder texts
// stand for the module, and catalog and configuration come from
// ConfigOptions.xml, whose C with the attribute I "0" plays the module's
// configuration. No port is opened and nothing is sent.
#include "config/CatalogFile.h"
#include "editing/ConfigList.h"
#include "helpers/HexText.h"
#include "mainscreen/frmDeviceCofigurator.h"

namespace sb::ui {
namespace {

DeviceInfo Placeholders() {
    DeviceInfo info;
    info.SN = "XXXXXXXX";
    info.PVer = "X.XX.XX";
    info.PName = "Dummy Module";
    info.PDate = "XX.XX.XXXX";
    info.VIN = "XXXXXXXXXXXXXXXXX";
    info.FWName = "Dummy Firmware";
    info.FWVer = "X.XX.XX";
    info.HWVer = "Dummy Hardware";
    return info;
}

}  // namespace

void frmDeviceCofigurator::Command1_Click() {
    StartNewHistory();
    ClearForOfflineRecord();
    DeviceInfo local = Placeholders();
    const CatalogFile file = LoadCatalogFile(configOptionsPath_);
    if (!file.Loaded) {
        SayCatalogRefused(file.Reason);
        return;
    }
    local.AppConfig = file.AppConfig;
    local.InfoFile = file.Xml;
    TakeOfflineRecord(local);
}

void frmDeviceCofigurator::ClearForOfflineRecord() {
    ClearPreviousRead();
    tree_->Clear();
    // Emptied as part of the reset, without the box's change logic: the
    // screen stays cleared when the file fails, and the assignment at the end
    // always changes the text, so it builds the tree.
    cfgEditedText_.clear();
    txtCfgEdited->clear();
}

void frmDeviceCofigurator::TakeOfflineRecord(DeviceInfo& local, const std::string& file) {
    ShowModuleTexts(local, !file.empty(), file);
    if (!LoadCatalogOrSay(local)) return;
    TakeCatalogIn(local);
    if (device_.CfgImage.empty()) return;
    SetCfgEdited(BytesToHex(device_.CfgImage));
    cmdWriteConfig->setEnabled(true);
}

}  // namespace sb::ui

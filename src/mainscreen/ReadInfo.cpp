// "Read info": the run of a press of cmdRdDevInfo and the configuration that
// follows from the module's answers.
#include "config/Catalog.h"
#include "editing/ConfigList.h"
#include "helpers/HexText.h"
#include "helpers/QuietStep.h"
#include "helpers/Waiting.h"
#include "link/PortErrorText.h"
#include "link/PortLists.h"
#include "link/ReadModule.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"

namespace sb::ui {
namespace {

constexpr const char* kCommPortError = "CommPort Error";
constexpr const char* kNoInfoFile = "Module do not support info file feature";
constexpr const char* kWrongConfiguration = "Module has wrong configuration";
constexpr double kAfterOpeningMs = 500;

void Show(QLineEdit& box, const std::string& text) {
    box.setText(Latin1(text));
    box.setCursorPosition(0);  // a long text shows its start
}
void Show(QPlainTextEdit& box, const std::string& text) { box.setPlainText(Latin1(text)); }

}  // namespace

void frmDeviceCofigurator::cmdRdDevInfo_Click() {
    BusyAction busy(*this);
    cmdRdDevInfo->setEnabled(false);
    cmdFWUpdate->setEnabled(false);
    // Cancel and "Not Found" end the run without a word.
    if (OpenChosenPort(kCommPortError, nullptr)) QuietStep([this] { ReadOpenModule(); });
    ClosePortQuietly();
    cmdRdDevInfo->setEnabled(true);
    cmdFWUpdate->setEnabled(true);
}

bool frmDeviceCofigurator::OpenChosenPort(const char* errorCaption, const char* noPortMessage) {
    status_->SetText(kScanning);
    try {
        const std::string selPort = portControl_->ChooseBootPort();
        if (!NamesPort(selPort)) {
            if (noPortMessage) ShowMessage(noPortMessage);
            return false;
        }
        OpenPort(*MSComm1, selPort, kSettings300);
        WaitMs(kAfterOpeningMs);
        return !closeRequested_;
    } catch (const PortError& failure) {
        ShowMessage(PortErrorText(errorCaption, failure));
    } catch (const std::exception&) {
        ShowMessage(errorCaption);
    }
    return false;
}

void frmDeviceCofigurator::ReadOpenModule() {
    ClearPreviousRead();
    // A local record, so that the screen's record keeps the previous read
    // until the catalog of this one has been taken in.
    DeviceInfo local;
    ReadModuleInfo(*MSComm1, *status_, local);
    if (closeRequested_) return;
    StartNewHistory();
    tree_->Clear();
    ShowModuleTexts(local, true);
    KeepReadInHistory(local);
    ConfigurationAfterRead(local);
}

void frmDeviceCofigurator::ClearPreviousRead() {
    {
        const QSignalBlocker quiet(cmbConfigList);
        cmbConfigList->clear();
    }
    txtConfigInfo->clear();
    lblShortInfoCfgName->setText(QLatin1String(kShortInfo));
    cmbConfigList->setEnabled(false);
    cmdFWUpdate->setEnabled(false);
    cmdWriteConfig->setEnabled(false);
    cmdSelPredefCfg->setEnabled(false);
}

void frmDeviceCofigurator::ShowModuleTexts(const DeviceInfo& info, bool withAppInfo, const std::string& file) {
    ShowTitleFor(file);
    shownFile_ = file;
    shownWithAppInfo_ = withAppInfo;
    // txtAppConfig shows the configuration as the module sent it.
    Show(*txtAppConfig, info.AppConfig);
    Show(*txtHWVer, info.HWVer);
    Show(*txtFWName, info.FWName);
    Show(*txtFWVer, info.FWVer);
    Show(*txtPName, info.PName);
    Show(*txtPDate, info.PDate);
    Show(*txtSN, info.SN);
    Show(*txtVIN, info.VIN);
    Show(*txtPVer, info.PVer);
    if (withAppInfo) Show(*txtAppInfo, info.AppInfo);
}

void frmDeviceCofigurator::ConfigurationAfterRead(DeviceInfo& local) {
    if (!LoadCatalogOrSay(local)) return;
    TakeCatalogIn(local);
    // The handshake with the box's change logic: a read builds the tree
    // exactly once, whether or not the text of the box changes.
    txtCfgEditedDataChanged_ = false;
    SetCfgEdited(BytesToHex(device_.CfgImage));
    if (!txtCfgEditedDataChanged_) BuildTreeOrSay();
    if (!device_.CfgImage.empty()) cmdWriteConfig->setEnabled(true);
}

bool frmDeviceCofigurator::LoadCatalogOrSay(DeviceInfo& local) {
    std::string reason;
    bool notWellFormed = false;
    if (LoadCatalog(local, reason, &notWellFormed)) return true;
    SayCatalogRefused(notWellFormed ? reason : std::string());
    return false;
}

void frmDeviceCofigurator::SayCatalogRefused(const std::string& reason) {
    if (!reason.empty()) ShowMessage(reason);
    ShowMessage(kNoInfoFile);
}

void frmDeviceCofigurator::TakeCatalogIn(DeviceInfo& local) {
    if (AppendReadedConfig(local) == ReadedConfig::WrongLength) ShowMessage(kWrongConfiguration);
    ShowCatalog(local);
}

// The list of a record whose catalog is taken in; the working image is the
// entry that stands last.
void frmDeviceCofigurator::ShowCatalog(const DeviceInfo& local) {
    FillConfigList(local);
    device_ = local;
    const int count = cmbConfigList->count();
    if (count > 0) {
        cmbConfigList->setEnabled(true);
        // The configuration just read stands last: select it.
        {
            const QSignalBlocker quiet(cmbConfigList);
            cmbConfigList->setCurrentIndex(count - 1);
        }
        cmbConfigList_Click();
        cmdWriteConfig->setEnabled(true);
        cmdSelPredefCfg->setEnabled(true);
        if (count - 1 < device_.PredefCfgs.Count()) device_.CfgImage = device_.PredefCfgs.Items[count - 1].Data;
    }
}

void frmDeviceCofigurator::FillConfigList(const DeviceInfo& info) {
    const QSignalBlocker quiet(cmbConfigList);
    for (const PredefCfg& entry : info.PredefCfgs.Items) cmbConfigList->addItem(Latin1(entry.Name));
}

}  // namespace sb::ui

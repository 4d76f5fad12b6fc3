#include "app/DemoScreenshots.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "helpers/HexText.h"
#include "helpers/Waiting.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"
#include "update/SnifferIni.h"
#include "update/frmFileCtrl.h"
#include "update/frmTarnlift.h"

namespace sb::ui {
namespace {

constexpr double kSettleMs = 300;

class Camera {
public:
    explicit Camera(const QString& folder) : folder_(folder) { QDir().mkpath(folder_); }

    void Take(QWidget& widget, const QString& name) {
        WaitMs(kSettleMs);  // laid out and painted
        const QString path = QDir(folder_).filePath(name + QStringLiteral(".png"));
        if (!widget.grab().save(path)) failed_ = true;
    }
    bool Failed() const { return failed_; }

private:
    QString folder_;
    bool failed_ = false;
};

// A modal form as the technician sees it; then the button that ends it.
void Photograph(Camera& camera, QDialog& dialog) {
    dialog.show();
    camera.Take(dialog, dialog.objectName());
    const char* end = dialog.objectName() == QLatin1String("frmPortControl") ? "cmdSelect" : "cmdCancel";
    if (auto* button = dialog.findChild<QPushButton*>(QLatin1String(end))) button->click();
    dialog.hide();
}

// Opens the value edit form of the first visible option of this type that
// has no list, through a double click on its node; false when there is none.
bool EditFirstOfType(frmDeviceCofigurator& form, const std::string& type) {
    const DeviceInfo& device = form.Device();
    for (int32_t i = 0; i < device.Options.Count(); ++i) {
        const OptionRec& option = device.Options.Items[static_cast<size_t>(i)];
        if (option.Type != type || option.Values.Count() > 0) continue;
        TreeNode* node = form.Tree().Find("OPTION" + Uint32ToHex(i));
        if (!node) continue;
        form.Tree().SetSelectedItem(node);
        emit form.tvOptions->dblClick();
        return true;
    }
    return false;
}

// Each value edit form once, from the tree at hand.
void EditEachType(frmDeviceCofigurator& form, std::vector<std::string>& left) {
    std::erase_if(left, [&](const std::string& type) { return EditFirstOfType(form, type); });
}

// A firmware update of a made-up file: the chooser at the file, the update
// screen behind the download. The chooser's place goes into a sniffer.ini
// of its own, not into the program's.
void DownloadDemoFirmware(Camera& camera, frmDeviceCofigurator& form) {
    QTemporaryDir folder;
    QFile firmware(folder.filePath(QStringLiteral("demo-firmware.cod")));
    if (!firmware.open(QIODevice::WriteOnly) || firmware.write(QByteArray(48 * 1024 + 300, '\x5A')) < 0) return;
    firmware.close();
    OverrideSnifferIniPath(folder.filePath(QStringLiteral("sniffer.ini")).toStdString());
    SetModalHandler([&](QDialog& dialog) {
        if (auto* chooser = qobject_cast<frmFileCtrl*>(&dialog)) {
            chooser->show();
            chooser->Dir1->SetPath(folder.path().toStdString());
            chooser->File1->setCurrentRow(0);
            camera.Take(*chooser, chooser->objectName());
            chooser->cmdOpen->click();
        } else if (auto* tarnlift = qobject_cast<frmTarnlift*>(&dialog)) {
            tarnlift->show();
            tarnlift->cmdSelectBinary->click();
            tarnlift->cmdUpdate->click();
            camera.Take(*tarnlift, tarnlift->objectName());
            tarnlift->hide();
        } else {
            Photograph(camera, dialog);
        }
    });
    form.cmdFWUpdate->click();
    SetModalHandler([&](QDialog& dialog) { Photograph(camera, dialog); });
    OverrideSnifferIniPath({});
}

// The working image set to the catalog's first configuration, then compared
// with the one read from the module.
void CompareDemoConfiguration(frmDeviceCofigurator& form) {
    if (form.cmbConfigList->count() < 2) return;
    form.cmbConfigList->setCurrentIndex(0);
    form.cmbConfigList_Click();
    form.cmdSelPredefCfg->click();
    emit form.mnuFile->aboutToShow();
    form.mnuCompareReaded->trigger();
}

// The options that the chosen configuration changed, alone and marked,
// with the details of the first of them; then the whole tree again.
void ShowDemoChanges(Camera& camera, frmDeviceCofigurator& form) {
    form.chkOnlyChanged->setChecked(true);
    emit form.txtSearch->returnPressed();
    camera.Take(form, QStringLiteral("main-changed"));
    form.chkOnlyChanged->setChecked(false);
}

}  // namespace

int TakeDemoScreenshots(frmDeviceCofigurator& form, const QString& folder) {
    Camera camera(folder);
    int messages = 0;
    SetMessageHandler([&](const std::string& text, MessageButtons) {
        QMessageBox box(QMessageBox::NoIcon, QApplication::applicationDisplayName(), Latin1(text));
        box.show();
        camera.Take(box, QStringLiteral("message-%1").arg(++messages));
        return MessageAnswer::Ok;
    });
    SetModalHandler([&](QDialog& dialog) { Photograph(camera, dialog); });

    camera.Take(form, QStringLiteral("main-start"));
    form.cmdRdDevInfo->click();
    // Lists and bit fields open, so that entries and their states show.
    form.tvOptions->expandAll();
    camera.Take(form, QStringLiteral("main"));
    std::vector<std::string> types = {"INT", "BIN", "STR"};
    EditEachType(form, types);
    form.cmdWriteConfig->click();
    DownloadDemoFirmware(camera, form);
    CompareDemoConfiguration(form);
    ShowDemoChanges(camera, form);
    form.mnuOfflineRead->trigger();
    form.tvOptions->expandAll();
    camera.Take(form, QStringLiteral("main-offline"));
    EditEachType(form, types);

    SetModalHandler({});
    SetMessageHandler({});
    form.close();
    return camera.Failed() ? 1 : 0;
}

}  // namespace sb::ui

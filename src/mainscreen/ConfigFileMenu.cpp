// The File menu: configuration files opened, saved, compared and restored
// from the history that every read keeps; and the check of a write by
// reading the configuration back.
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFileDialog>
#include <QMenuBar>
#include <QSettings>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <optional>

#include "configfiles/ConfigFile.h"
#include "configfiles/ConfigHistory.h"
#include "configfiles/HistoryReads.h"
#include "configfiles/WriteChecks.h"
#include "helpers/HexText.h"
#include "helpers/TrimBlanks.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"
#include "mainscreen/CompareDialog.h"
#include "mainscreen/ConfigFileChooser.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Guarded.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"
#include "ui/Named.h"
#include "ui/TitleWidth.h"

namespace sb::ui {
namespace {

constexpr const char* kReadedConfig = "READED CONFIG";
constexpr const char* kVerifySetting = "write/verify";

ConfigFileChooser& Chooser() {
    static ConfigFileChooser chooser;
    return chooser;
}

QSettings UserSettings() { return QSettings(QStringLiteral("servicebay"), QStringLiteral("servicebay")); }

// A message box wants its lines ended by CR LF.
std::string MessageLines(const std::string& text) {
    std::string out;
    for (const char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
}

// The kept files, grouped by serial number, newest first; the path of the
// one chosen, empty when none was.
std::string ChooseFromHistory(QWidget* parent, const std::vector<HistoryGroup>& groups) {
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("frmConfigHistory"));
    dialog.setWindowTitle(QStringLiteral("Restore from history"));
    auto* list = Named(new QTreeWidget(&dialog), "tvHistory");
    list->setHeaderLabels({QStringLiteral("Serial number / read at (UTC)"), QStringLiteral("Configuration"),
                           QStringLiteral("Options changed since the read before")});
    for (const HistoryGroup& group : groups) {
        auto* sn = new QTreeWidgetItem(list, {Latin1(group.SN)});
        for (const HistoryRead& read : DescribeHistory(group)) {
            const QString differing = read.Differing < 0 ? QString() : QString::number(read.Differing);
            auto* item = new QTreeWidgetItem(sn, {Latin1(read.File.Stamp), Latin1(read.Name), differing});
            item->setData(0, Qt::UserRole, QString::fromStdString(read.File.Path));
        }
        sn->setExpanded(true);
    }
    list->resizeColumnToContents(0);
    list->resizeColumnToContents(1);
    dialog.resize(720, 420);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, &dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(list);
    layout->addWidget(buttons);
    KeepTitleWhole(dialog);
    std::string chosen;
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        if (list->currentItem()) chosen = list->currentItem()->data(0, Qt::UserRole).toString().toStdString();
        dialog.hide();
    });
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::hide);
    ShowModal(dialog);
    return chosen;
}

// The file as the reader takes it; nothing when it cannot be taken, and a
// message says why, whatever failed.
std::optional<LoadedConfig> ReadOrSayWhy(const std::string& path) {
    try {
        return ReadConfigFile(path);
    } catch (const ConfigFileError& e) {
        ShowMessage(e.what());
    } catch (const std::exception& e) {
        ShowMessage(path + ": " + e.what());
    }
    return std::nullopt;
}

}  // namespace

std::string ChooseConfigFile(QWidget* parent, ConfigFileChoice choice) {
    if (Chooser()) return Chooser()(choice);
    const QString filter = QStringLiteral("Configuration files (*") + QLatin1String(kConfigExtension) + ")";
    if (choice != ConfigFileChoice::Save)
        return QFileDialog::getOpenFileName(parent, QString(), QString(), filter).toStdString();
    QFileDialog dialog(parent, QString(), QString(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QLatin1String(kConfigExtension + 1));
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0).toStdString() : std::string();
}

void SetConfigFileChooser(ConfigFileChooser chooser) { Chooser() = std::move(chooser); }

void frmDeviceCofigurator::AddConfigFileMenus() {
    mnuFile = Named(new QMenu(QStringLiteral("File"), this), "mnuFile");
    menuBar()->insertMenu(mnuTools->menuAction(), mnuFile);
    mnuOpenConfig = Named(mnuFile->addAction(QStringLiteral("Open configuration…")), "mnuOpenConfig");
    mnuSaveConfig = Named(mnuFile->addAction(QStringLiteral("Save configuration…")), "mnuSaveConfig");
    mnuCompareConfig = Named(mnuFile->addMenu(QStringLiteral("Compare with…")), "mnuCompareConfig");
    mnuCompareReaded = Named(mnuCompareConfig->addAction(QLatin1String(kReadedConfig)), "mnuCompareReaded");
    mnuCompareFile = Named(mnuCompareConfig->addAction(QStringLiteral("File…")), "mnuCompareFile");
    mnuFile->addSeparator();
    mnuRestoreHistory = Named(mnuFile->addAction(QStringLiteral("Restore from history…")), "mnuRestoreHistory");
    mnuTools->addSeparator();
    mnuVerifyWrite = Named(mnuTools->addAction(QStringLiteral("Verify after write")), "mnuVerifyWrite");
    mnuVerifyWrite->setCheckable(true);
    mnuVerifyWrite->setChecked(UserSettings().value(QLatin1String(kVerifySetting), false).toBool());
    UpdateConfigFileMenu();

    connect(mnuFile, &QMenu::aboutToShow, this, Guarded([this] { UpdateConfigFileMenu(); }));
    connect(mnuOpenConfig, &QAction::triggered, this, Guarded([this] { mnuOpenConfig_Click(); }));
    connect(mnuSaveConfig, &QAction::triggered, this, Guarded([this] { mnuSaveConfig_Click(); }));
    connect(mnuCompareReaded, &QAction::triggered, this, Guarded([this] { mnuCompareReaded_Click(); }));
    connect(mnuCompareFile, &QAction::triggered, this, Guarded([this] { mnuCompareFile_Click(); }));
    connect(mnuRestoreHistory, &QAction::triggered, this, Guarded([this] { mnuRestoreHistory_Click(); }));
    connect(mnuVerifyWrite, &QAction::toggled, this,
            Guarded([](bool on) { UserSettings().setValue(QLatin1String(kVerifySetting), on); }));
}

// Save and compare need a working image; compare with the read one needs a
// read that gave one.
void frmDeviceCofigurator::UpdateConfigFileMenu() {
    const bool working = !device_.CfgImage.empty();
    mnuSaveConfig->setEnabled(working);
    mnuCompareConfig->setEnabled(working);
    const int count = device_.PredefCfgs.Count();
    mnuCompareReaded->setEnabled(count > 0 && device_.PredefCfgs.Items[count - 1].Name == kReadedConfig);
}

void frmDeviceCofigurator::mnuOpenConfig_Click() {
    const std::string path = ChooseConfigFile(this, ConfigFileChoice::Open);
    if (!path.empty()) OpenConfigFile(path);
}

// A file that cannot be taken leaves the screen as it was.
void frmDeviceCofigurator::OpenConfigFile(const std::string& path) {
    const std::optional<LoadedConfig> config = ReadOrSayWhy(path);
    if (!config) return;
    DeviceInfo local;
    ApplyIdentity(config->Document.Module, local);
    local.AppConfig = config->Document.Image;
    local.InfoFile = config->Document.InfoFile;
    NoteRecordReplaced();
    ClearForOfflineRecord();
    TakeOfflineRecord(local, path);
    EndRecordReplaced();
}

void frmDeviceCofigurator::mnuSaveConfig_Click() {
    if (device_.CfgImage.empty()) return;
    const std::string path = ChooseConfigFile(this, ConfigFileChoice::Save);
    if (path.empty()) return;
    try {
        WriteConfigFile(path, MakeConfigDocument(device_, device_.CfgImage));
        // Beside the status text of the exchanges, which stays.
        const QString saved = QFileInfo(QString::fromStdString(path)).absoluteFilePath();
        lblSavedTo->setText(QStringLiteral("Saved to ") + QDir::toNativeSeparators(saved));
    } catch (const ConfigFileError& e) {
        ShowMessage(e.what());
    }
}

void frmDeviceCofigurator::CompareWith(const DeviceInfo& other, const std::string& otherImage,
                                       const std::string& otherName) {
    frmCompareConfig dialog(device_, device_.CfgImage, other, otherImage, Latin1(otherName), this);
    ShowModal(dialog);
}

void frmDeviceCofigurator::mnuCompareReaded_Click() {
    const int count = device_.PredefCfgs.Count();
    if (count == 0 || device_.PredefCfgs.Items[count - 1].Name != kReadedConfig) return;
    const DeviceInfo read = device_;  // the dialog must not see the working image change under it
    CompareWith(read, read.PredefCfgs.Items[count - 1].Data, kReadedConfig);
}

void frmDeviceCofigurator::mnuCompareFile_Click() {
    const std::string path = ChooseConfigFile(this, ConfigFileChoice::Compare);
    if (path.empty()) return;
    if (const std::optional<LoadedConfig> other = ReadOrSayWhy(path))
        CompareWith(other->Device, other->Device.CfgImage, path);
}

void frmDeviceCofigurator::mnuRestoreHistory_Click() {
    std::vector<HistoryGroup> groups;
    try {
        groups = ListHistory(HistoryRoot());
    } catch (const ConfigFileError& e) {
        ShowMessage(e.what());
        return;
    }
    const std::string path = ChooseFromHistory(this, groups);
    if (!path.empty()) OpenConfigFile(path);
}

void frmDeviceCofigurator::KeepReadInHistory(const DeviceInfo& read) {
    ConfigDocument document;
    try {
        document = LoadModuleConfig(read, "the module").Document;
    } catch (const ConfigFileError&) {
        return;  // no configuration to keep; the read says why
    }
    try {
        KeepInHistory(document, HistoryRoot());
    } catch (const ConfigFileError& e) {
        status_->SetText(std::string("Not kept in the history: ") + e.what());
    }
}

std::string frmDeviceCofigurator::WriteNotVerified(const std::string& sentHex) {
    std::string answer;
    SkipOnPortError([&] { answer = TrimBlanks(TerminalExecute(std::string(cmd::GETAPPCFG), *MSComm1, *status_)); });
    return MessageLines(VerifyMessage(VerifyWrite(device_, HexToBytes(sentHex), answer)));
}

}  // namespace sb::ui

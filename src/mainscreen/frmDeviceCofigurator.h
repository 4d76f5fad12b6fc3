#pragma once
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QUndoStack>
#include <memory>
#include <string>

#include "config/Types.h"
#include "editing/TreeEvents.h"
#include "editing/ValueEditForms.h"
#include "link/SerialPort.h"
#include "link/frmPortControl.h"
#include "mainscreen/OptionTreeView.h"
#include "mainscreen/QtOptionTree.h"
#include "ui/StatusBarText.h"

namespace sb::ui {

// "Device Info": the screen with which the program starts and ends. "Read
// info" lets the technician pick a module in boot mode, reads what it says
// about itself and takes its catalog and configuration in; the option tree
// and the list of configurations edit the working image CfgImage, and
// "Write" sends it back. The offline run fills the screen from
// ConfigOptions.xml without a module.
//
// Every action on a module opens the port only for its own length and, on
// every road, closes it again and enables its controls. The waits of an
// action run the event loop, so the window stays movable and closable: a
// close during a read lets it wind down quickly (the port is closed under
// it) and unloads the program's forms when it has ended; a close during a
// write waits for the write's end.
class frmDeviceCofigurator final : public QMainWindow {
    Q_OBJECT
public:
    // configOptionsPath: the catalog file of the offline run; empty for the
    // program's own place of ConfigOptions.xml.
    explicit frmDeviceCofigurator(std::string configOptionsPath = {}, QWidget* parent = nullptr);
    ~frmDeviceCofigurator() override;

    // The record of the module last read, with its catalog and CfgImage.
    const DeviceInfo& Device() const { return device_; }
    frmPortControl& PortControl() { return *portControl_; }
    ValueEditForms& EditForms() { return editForms_; }
    QtOptionTree& Tree() { return *tree_; }
    SerialPort& ComPort() { return *MSComm1; }

    // Top level of the form.
    QPushButton* cmdRdDevInfo;
    QPushButton* Command1;  // the offline run; hidden, reached through the Tools menu
    QPushButton* cmdFWUpdate;
    QPushButton* cmdWriteConfig;
    QComboBox* cmbConfigList;
    OptionTreeView* tvOptions;
    QLabel* Label3;
    QPlainTextEdit* txtCfgEdited;
    QStatusBar* StatusBar;
    std::unique_ptr<SerialPort> MSComm1;
    QMenu* mnuTools;
    QAction* mnuEditor;
    QAction* mnuOfflineRead;
    // File: configuration files (ConfigFileMenu.cpp).
    QMenu* mnuFile = nullptr;
    QAction* mnuOpenConfig = nullptr;
    QAction* mnuSaveConfig = nullptr;
    QMenu* mnuCompareConfig = nullptr;
    QAction* mnuCompareReaded = nullptr;
    QAction* mnuCompareFile = nullptr;
    QAction* mnuRestoreHistory = nullptr;
    QAction* mnuVerifyWrite = nullptr;  // in Tools; remembered in the user's settings
    // Edit: undo and redo of the working image (EditHistory.cpp).
    QMenu* mnuEdit = nullptr;
    QAction* mnuUndo = nullptr;
    QAction* mnuRedo = nullptr;
    // The editor's panes around the tree (EditorPanes.cpp): the search
    // above it, the details of the option under it, and the changes that a
    // write would make.
    QLineEdit* txtSearch = nullptr;
    QCheckBox* chkOnlyChanged = nullptr;
    QPlainTextEdit* txtOptionDetails = nullptr;
    QAction* mnuFind = nullptr;
    QAction* mnuPendingChanges = nullptr;

    // "Module info".
    QGroupBox* Frame6;
    QLabel* Label4;
    QLineEdit* txtSN;
    QLabel* Label5;
    QLineEdit* txtPDate;
    QLabel* Label6;
    QLineEdit* txtPVer;
    QLabel* Label7;
    QLineEdit* txtPName;
    QLabel* Label8;
    QLineEdit* txtVIN;

    // "Firmware info".
    QGroupBox* Frame7;
    QLabel* Label9;
    QLineEdit* txtFWName;
    QLabel* Label10;
    QLineEdit* txtFWVer;
    QLabel* Label11;
    QLineEdit* txtHWVer;
    QLabel* Label12;
    QPlainTextEdit* txtAppInfo;

    // "Module configuration".
    QGroupBox* Frame5;
    QLabel* Label2;
    QPushButton* cmdSelPredefCfg;
    QLabel* lblShortInfoCfgName;
    QPlainTextEdit* txtConfigInfo;
    QLabel* Label1;
    QPlainTextEdit* txtAppConfig;

    void cmdRdDevInfo_Click();
    void cmdWriteConfig_Click();
    void Command1_Click();
    void cmdFWUpdate_Click();
    void cmdSelPredefCfg_Click();
    void cmbConfigList_Click();
    void cmbConfigList_Validate();
    void mnuOpenConfig_Click();
    void mnuSaveConfig_Click();
    void mnuCompareReaded_Click();
    void mnuCompareFile_Click();
    void mnuRestoreHistory_Click();

    // File → Open's road, also for the file given at the program's start: a
    // file that cannot be taken says why and leaves the screen as it was.
    void OpenConfigFile(const std::string& path);

    // Keys of the editor (EditorKeys.cpp): Ctrl+O, Ctrl+S, Ctrl+Q, and the
    // tree's keys; the bar's part that names where the last save went.
    QAction* mnuExit = nullptr;
    QLabel* lblSavedTo = nullptr;

    // The text of txtCfgEdited as the program set it; the box shows it in
    // rows of 32 bytes.
    const std::string& CfgEditedText() const { return cfgEditedText_; }

signals:
    // The main screen and the program's other forms are unloaded: the
    // program ends.
    void unloaded();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Marks an action on a module for its length. A close of the window
    // during it closes the port, so that the action winds down at once, and
    // leaves the unload to the action's end.
    class BusyAction {
    public:
        explicit BusyAction(frmDeviceCofigurator& form);
        ~BusyAction();
        BusyAction(const BusyAction&) = delete;
        BusyAction& operator=(const BusyAction&) = delete;

    private:
        frmDeviceCofigurator& form_;
    };

    void BuildControls();
    void LayOutControls();
    void ConnectEvents();

    // An action's steps up to and including the opening of the port: false
    // when no port was opened (with errorCaption, and the system's reason,
    // for a failing port; with noPortMessage, if any, when none was chosen).
    bool OpenChosenPort(const char* errorCaption, const char* noPortMessage);
    void ClosePortQuietly();

    void ReadOpenModule();
    void ClearPreviousRead();
    // The module's fields, "Full Info" too with withAppInfo. While they show
    // the module of a configuration file, the title names that file.
    void ShowModuleTexts(const DeviceInfo& info, bool withAppInfo, const std::string& file = {});
    void ShowTitleFor(const std::string& file);
    void ConfigurationAfterRead(DeviceInfo& local);
    bool LoadCatalogOrSay(DeviceInfo& local);
    // Why the catalog is refused, if it is known, then "Module do not
    // support info file feature".
    void SayCatalogRefused(const std::string& reason);
    void TakeCatalogIn(DeviceInfo& local);
    void FillConfigList(const DeviceInfo& info);
    void WriteToOpenModule();

    // The only way to change txtCfgEdited: the box's change logic runs when
    // the text really changes.
    void SetCfgEdited(const std::string& text);
    void txtCfgEdited_Change();
    // BuildOptionTree on CfgImage, with "Something wrong" when no
    // configuration has the image's Id.
    void BuildTreeOrSay();

    void Unload();

    // The offline run's screen, cleared and then filled from a record that
    // holds an identity, AppConfig and InfoFile (OfflineRun.cpp): the
    // placeholders of the run, which leave "Full Info" alone, or the module
    // of a configuration file, which has none.
    void ClearForOfflineRecord();
    void TakeOfflineRecord(DeviceInfo& local, const std::string& file = {});

    // Configuration files (ConfigFileMenu.cpp).
    void AddConfigFileMenus();
    void UpdateConfigFileMenu();
    void AddEditorKeys();
    // A key in the tree; the keyboard keeps its place where the event clears
    // the selection.
    bool tvOptions_KeyDown(TreeKey key, const std::string& text, int64_t atMs);
    void CompareWith(const DeviceInfo& other, const std::string& otherImage, const std::string& otherName);
    // A read whose answers make a configuration keeps it in the history; a
    // history that cannot be written only says so in the status bar.
    void KeepReadInHistory(const DeviceInfo& read);
    // Behind an "OK" to SETAPPCFG, with verify on: why the module does not
    // hold what was sent, read back on the open port; empty when it does.
    std::string WriteNotVerified(const std::string& sentHex);

    // Undo and redo (EditHistory.cpp). Every change of CfgImage passes
    // through SetCfgEdited, which notes it as one step; a step that also
    // replaced the record (an opened file, a restore) holds the record too.
    struct ShownRecord;
    class ImageStep;
    enum class RecordChange { None, NewHistory, Replaced };
    void AddEditMenu();
    void StartNewHistory();
    void NoteRecordReplaced();
    void EndRecordReplaced();
    void NoteImageStep();
    std::shared_ptr<const ShownRecord> CurrentRecord() const;
    void ApplyStep(const std::shared_ptr<const std::string>& image, const std::shared_ptr<const ShownRecord>& record);
    void ShowRecord(const ShownRecord& record);
    void ShowCatalog(const DeviceInfo& local);

    void BuildEditorPanes();
    void AddEditorMenus();
    void RefreshEditorPanes();
    void ShowChangedMarks();
    void ApplyTreeFilter();
    void SearchEdited();
    void SearchEscaped();
    void SearchReturned();
    void ShowDetailsOf(QTreeWidgetItem* item);
    void ShowDetails();
    void ShowPendingChanges();

    std::vector<bool> changedOptions_;
    bool filtering_ = false;  // the tree as it was before the search is kept below
    std::vector<std::string> expandedBeforeSearch_;
    std::string selectedBeforeSearch_;
    int32_t detailsOption_ = -1;

    QUndoStack* undoStack_ = nullptr;
    RecordChange recordChange_ = RecordChange::None;
    std::shared_ptr<const ShownRecord> stepRecord_;  // the record as of the last step
    // The image as of the last step, shared with the steps that hold it.
    std::shared_ptr<const std::string> stepImage_ = std::make_shared<const std::string>();
    bool applyingStep_ = false;
    std::string shownFile_;
    bool shownWithAppInfo_ = false;

    std::string configOptionsPath_;
    DeviceInfo device_;
    std::unique_ptr<StatusBarText> status_;
    std::unique_ptr<frmPortControl> portControl_;
    ValueEditForms editForms_;
    std::unique_ptr<QtOptionTree> tree_;
    std::unique_ptr<TreeEvents> events_;
    std::string cfgEditedText_;
    bool txtCfgEditedDataChanged_ = false;
    int busy_ = 0;
    bool closeRequested_ = false;   // during a read: the port was closed under it
    bool closeAfterWrite_ = false;  // during a write: refused until its end
    bool unloaded_ = false;
};

}  // namespace sb::ui

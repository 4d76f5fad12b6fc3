#pragma once
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <memory>
#include <string>
#include <vector>

#include "link/DeviceWatcher.h"
#include "link/PortInventory.h"
#include "link/PortLists.h"
#include "link/SerialPort.h"
#include "ui/StatusBarText.h"

namespace sb {

// "USB Device selection": the technician picks a module in boot mode, and
// can switch a module between its two modes on the way.
//
// How the actions use it: ChooseBootPort calls UpdatePortList, shows the
// dialog modally and reads txtSelPort at once; NamesPort(text) tells
// whether it names a port. Select and Cancel only hide the dialog, so lists and
// selection are kept for the next time; Cancel and the close box empty
// txtSelPort. The dialog's own port MSComm1 serves the two mode switches
// only and is never handed out.
class frmPortControl final : public QDialog {
    Q_OBJECT
public:
    // The system's ports and virtual modules, and a real serial port.
    explicit frmPortControl(QWidget* parent = nullptr);
    frmPortControl(std::unique_ptr<PortInventory> inventory, std::unique_ptr<SerialPort> port,
                   QWidget* parent = nullptr);
    ~frmPortControl() override;

    // Scans again: both lists, the sticky selection, txtSelPort from the boot
    // list, cmdSelect enabled. An unreachable inventory is reported in a
    // message box; nothing fails towards the caller.
    void UpdatePortList();

    // What every action does with the dialog: UpdatePortList, the modal
    // show, and the text of txtSelPort as it was left.
    std::string ChooseBootPort();

    QLabel* Label2;
    QComboBox* cmbUSBDevList;
    QPushButton* cmdSwitchToBoot;
    QLabel* Label1;
    QComboBox* cmbUSBBootList;
    QPushButton* cmdSwitchToDev;
    QLineEdit* txtSelPort;
    QPushButton* cmdSelect;
    QPushButton* cmdCancel;
    QPushButton* cmdScan;
    // The USB serial of the module of each list's selected port, beside it:
    // which of several modules a port is.
    QLabel* lblDevSerial;
    QLabel* lblBootSerial;
    QStatusBar* StatusBar;
    std::unique_ptr<SerialPort> MSComm1;

    // The tool tips of the lists' items, index for index.
    std::vector<std::string> DevPortInfo;
    std::vector<std::string> BootPortInfo;

    void reject() override;  // Cancel, Escape and the close box

private:
    void BuildControls();
    void ConnectEvents();
    void ShowLists();
    void cmbUSBBootList_Click();
    void cmbUSBBootList_Change();
    void cmbUSBDevList_Change();
    void cmdSwitchToBoot_Click();
    void cmdSwitchToDev_Click();
    // Buttons are locked while a switch waits, so that no second switch,
    // scan or end of the dialog runs inside it.
    void RunSwitch(const std::function<void()>& steps);

    std::unique_ptr<PortInventory> inventory_;
    PortListState lists_;
    std::unique_ptr<ui::StatusBarText> status_;
    bool switching_ = false;
    // While the dialog is shown, each change of the ports scans again.
    DeviceWatcher* watcher_;
};

}  // namespace sb

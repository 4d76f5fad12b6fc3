#include "link/frmPortControl.h"

#include <QHBoxLayout>
#include <exception>
#include <QVBoxLayout>

#include "link/ModeSwitch.h"
#include "link/QtSerialPort.h"
#include "link/SystemInventory.h"
#include "ui/Latin1.h"
#include "ui/ModalDialog.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"
#include "ui/TitleWidth.h"

namespace sb {
namespace {

using ui::Bytes;
using ui::Latin1;
using ui::Named;

QString TipAt(const std::vector<std::string>& info, int index) {
    return index >= 0 && index < static_cast<int>(info.size()) ? Latin1(info[index]) : QString();
}

void Fill(QComboBox& box, const PortList& list, std::vector<std::string>& info) {
    box.clear();
    info.clear();
    for (const auto& item : list.Items) {
        box.addItem(Latin1(item.Text), Latin1(item.Port));
        info.push_back(item.Info);
    }
    box.setCurrentIndex(list.Selected);
    box.setToolTip(TipAt(info, list.Selected));
}

void ShowSerial(QLabel& label, const PortList& list) {
    const bool known = list.Selected >= 0 && list.Selected < static_cast<int>(list.Items.size());
    const std::string serial = known ? UsbSerialOf(list.Items[static_cast<size_t>(list.Selected)].PNPDeviceID) : "";
    label.setText(serial.empty() ? QString() : QStringLiteral("USB serial ") + Latin1(serial));
}

std::string SelectedPort(const QComboBox& box) { return Bytes(box.currentData().toString()); }

}  // namespace

frmPortControl::frmPortControl(QWidget* parent)
    : frmPortControl(MakePortInventory(), std::make_unique<QtSerialPort>(), parent) {}

frmPortControl::frmPortControl(std::unique_ptr<PortInventory> inventory, std::unique_ptr<SerialPort> port,
                               QWidget* parent)
    : QDialog(parent), MSComm1(std::move(port)), inventory_(std::move(inventory)), watcher_(new DeviceWatcher(this)) {
    BuildControls();
    ConnectEvents();
    // The load of the screen.
    UpdatePortList();
}

frmPortControl::~frmPortControl() = default;

void frmPortControl::BuildControls() {
    setObjectName(QStringLiteral("frmPortControl"));
    setWindowTitle(QStringLiteral("USB Device selection"));

    Label2 = Named(new QLabel(QStringLiteral("Running Devices"), this), "Label2");
    cmbUSBDevList = Named(new QComboBox(this), "cmbUSBDevList");
    cmdSwitchToBoot = Named(new QPushButton(QStringLiteral("Enter Boot"), this), "cmdSwitchToBoot");
    Label1 = Named(new QLabel(QStringLiteral("Devices in Boot"), this), "Label1");
    cmbUSBBootList = Named(new QComboBox(this), "cmbUSBBootList");
    cmdSwitchToDev = Named(new QPushButton(QStringLiteral("Leave Boot"), this), "cmdSwitchToDev");
    txtSelPort = ui::ShowOnlyBox(this, "txtSelPort");
    cmdSelect = Named(new QPushButton(QStringLiteral("Select"), this), "cmdSelect");
    cmdSelect->setEnabled(false);
    cmdSelect->setDefault(true);
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdScan = Named(new QPushButton(QStringLiteral("Scan"), this), "cmdScan");
    for (QLabel** serial : {&lblDevSerial, &lblBootSerial}) {
        *serial = new QLabel(this);
        (*serial)->setTextFormat(Qt::PlainText);  // a module's bytes, never markup
        (*serial)->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("USB serial 0123456789AB")));
    }
    Named(lblDevSerial, "lblDevSerial");
    Named(lblBootSerial, "lblBootSerial");
    StatusBar = Named(new QStatusBar(this), "StatusBar");
    StatusBar->setSizeGripEnabled(false);
    status_ = std::make_unique<ui::StatusBarText>(*StatusBar);
    cmbUSBDevList->setMinimumContentsLength(24);
    cmbUSBBootList->setMinimumContentsLength(24);

    auto* layout = new QVBoxLayout(this);
    const auto row = [layout](std::initializer_list<QWidget*> widgets) {
        auto* line = new QHBoxLayout;
        for (QWidget* widget : widgets) line->addWidget(widget);
        layout->addLayout(line);
    };
    layout->addWidget(Label2);
    row({cmbUSBDevList, lblDevSerial, cmdSwitchToBoot});
    layout->addWidget(Label1);
    row({cmbUSBBootList, lblBootSerial, cmdSwitchToDev});
    layout->addWidget(txtSelPort);
    row({cmdSelect, cmdCancel, cmdScan});
    layout->addWidget(StatusBar);
    ui::KeepTitleWhole(*this);
}

void frmPortControl::ConnectEvents() {
    connect(cmbUSBBootList, &QComboBox::activated, this, [this] { cmbUSBBootList_Click(); });
    connect(cmbUSBBootList, &QComboBox::currentIndexChanged, this, [this] { cmbUSBBootList_Change(); });
    connect(cmbUSBDevList, &QComboBox::currentIndexChanged, this, [this] { cmbUSBDevList_Change(); });
    connect(cmdSwitchToBoot, &QPushButton::clicked, this, [this] { cmdSwitchToBoot_Click(); });
    connect(cmdSwitchToDev, &QPushButton::clicked, this, [this] { cmdSwitchToDev_Click(); });
    connect(cmdScan, &QPushButton::clicked, this, [this] { UpdatePortList(); });
    // The lists follow the plugging; a switch scans at its own end.
    connect(watcher_, &DeviceWatcher::portsChanged, this, [this] {
        if (isVisible() && !switching_) UpdatePortList();
    });
    connect(cmdSelect, &QPushButton::clicked, this, [this] {
        if (!switching_) accept();
    });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
}

void frmPortControl::UpdatePortList() {
    lists_ = ScanPortLists(lists_, *inventory_, [](const std::string& text) { ui::ShowMessage(text); });
    ShowLists();
    cmdSelect->setEnabled(true);
}

void frmPortControl::ShowLists() {
    const QSignalBlocker quietDev(cmbUSBDevList);
    const QSignalBlocker quietBoot(cmbUSBBootList);
    Fill(*cmbUSBDevList, lists_.DevList, DevPortInfo);
    Fill(*cmbUSBBootList, lists_.BootList, BootPortInfo);
    ShowSerial(*lblDevSerial, lists_.DevList);
    ShowSerial(*lblBootSerial, lists_.BootList);
    txtSelPort->setText(Latin1(lists_.SelPort));
}

void frmPortControl::cmbUSBBootList_Click() {
    txtSelPort->setText(cmbUSBBootList->currentText());
    cmbUSBBootList_Change();
    cmdSelect->setEnabled(true);
}

void frmPortControl::cmbUSBBootList_Change() {
    lists_.BootList.Selected = cmbUSBBootList->currentIndex();
    ShowSerial(*lblBootSerial, lists_.BootList);
    cmbUSBBootList->setToolTip(TipAt(BootPortInfo, cmbUSBBootList->currentIndex()));
}

void frmPortControl::cmbUSBDevList_Change() {
    lists_.DevList.Selected = cmbUSBDevList->currentIndex();
    ShowSerial(*lblDevSerial, lists_.DevList);
    cmbUSBDevList->setToolTip(TipAt(DevPortInfo, cmbUSBDevList->currentIndex()));
}

void frmPortControl::cmdSwitchToBoot_Click() {
    RunSwitch([this] {
        if (cmbUSBDevList->currentText() != QLatin1String(kNotFound))
            SwitchToBoot(*MSComm1, SelectedPort(*cmbUSBDevList));
    });
}

void frmPortControl::cmdSwitchToDev_Click() {
    RunSwitch([this] {
        if (cmbUSBBootList->currentText() != QLatin1String(kNotFound))
            SwitchToRunning(*MSComm1, SelectedPort(*cmbUSBBootList), *status_,
                            [](const std::string& answer) { ui::ShowMessage(answer); });
    });
}

void frmPortControl::RunSwitch(const std::function<void()>& steps) {
    if (switching_) return;
    QPushButton* const locked[] = {cmdSwitchToBoot, cmdSwitchToDev, cmdScan, cmdSelect, cmdCancel};
    std::vector<bool> wasEnabled;
    for (QPushButton* button : locked) {
        wasEnabled.push_back(button->isEnabled());
        button->setEnabled(false);
    }
    switching_ = true;
    try {
        steps();
    } catch (const std::exception&) {
        // A step that fails in another way than on the port is skipped as a
        // port failure is: the switch ends with its scan all the same.
    }
    switching_ = false;
    for (std::size_t i = 0; i < std::size(locked); ++i) locked[i]->setEnabled(wasEnabled[i]);
    UpdatePortList();
}

void frmPortControl::reject() {
    if (switching_) return;
    txtSelPort->clear();
    QDialog::reject();
}

std::string frmPortControl::ChooseBootPort() {
    UpdatePortList();
    ui::ShowModal(*this);
    return Bytes(txtSelPort->text());
}

}  // namespace sb

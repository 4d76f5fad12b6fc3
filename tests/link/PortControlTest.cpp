#include <gtest/gtest.h>

#include <QTimer>

#include "ListedInventory.h"
#include "MessageRecorder.h"
#include "QtApp.h"
#include "ScriptedModule.h"
#include "link/frmPortControl.h"

namespace sb {
namespace {

using test::kBootA;
using test::kBootB;
using test::kOther;
using test::kRunningA;
using test::kRunningB;

std::string Latin1(const QString& text) { return text.toLatin1().toStdString(); }

std::vector<std::string> Items(const QComboBox& box) {
    std::vector<std::string> items;
    for (int i = 0; i < box.count(); ++i) items.push_back(Latin1(box.itemText(i)));
    return items;
}

class PortControl : public ::testing::Test {
protected:
    void SetUp() override { test::QtApp(); }

    // The dialog on a listed inventory and a fake port; made as the main
    // screen makes it, so its load has run the first scan.
    frmPortControl& Make(std::vector<InventoryPort> ports) {
        auto inventory = std::make_unique<test::ListedInventory>(std::move(ports));
        auto port = std::make_unique<test::FakeSerialPort>();
        inventory_ = inventory.get();
        port_ = port.get();
        form_ = std::make_unique<frmPortControl>(std::move(inventory), std::move(port));
        return *form_;
    }

    // A modal show that the test ends with a click, as the technician would.
    void ShowAndClick(QPushButton* button) {
        QTimer::singleShot(0, button, [button] { button->click(); });
        form_->exec();
        EXPECT_FALSE(form_->isVisible());
    }

    // No message box of a test ever waits for a person.
    test::MessageRecorder messages_;
    test::ListedInventory* inventory_ = nullptr;
    test::FakeSerialPort* port_ = nullptr;
    std::unique_ptr<frmPortControl> form_;
};

TEST_F(PortControl, ShowsItsControlsWithTheirCaptionsAndStartStates) {
    auto& form = Make({});
    EXPECT_EQ(form.objectName(), "frmPortControl");
    EXPECT_EQ(form.windowTitle(), "USB Device selection");
    const struct {
        const char* name;
        const char* caption;
        bool enabled;
    } controls[] = {
        {"Label2", "Running Devices", true},
        {"Label1", "Devices in Boot", true},
        {"cmdSwitchToBoot", "Enter Boot", true},
        {"cmdSwitchToDev", "Leave Boot", true},
        // The load's scan has enabled Select already.
        {"cmdSelect", "Select", true},
        {"cmdCancel", "Cancel", true},
        {"cmdScan", "Scan", true},
    };
    for (const auto& c : controls) {
        auto* widget = form.findChild<QWidget*>(c.name);
        ASSERT_NE(widget, nullptr) << c.name;
        const QVariant caption = widget->property("text");
        EXPECT_EQ(caption.toString(), c.caption) << c.name;
        EXPECT_EQ(widget->isEnabled(), c.enabled) << c.name;
    }
    for (const char* name : {"cmbUSBDevList", "cmbUSBBootList", "txtSelPort", "StatusBar"})
        EXPECT_NE(form.findChild<QWidget*>(name), nullptr) << name;
    EXPECT_FALSE(form.txtSelPort->isEnabled());
}

TEST_F(PortControl, FillsBothListsAndHandsOutTheBootPortOnSelect) {
    auto& form = Make({kRunningA, kOther, kBootA, kBootB});
    EXPECT_EQ(Items(*form.cmbUSBDevList), std::vector<std::string>{"ttyACM0"});
    EXPECT_EQ(Items(*form.cmbUSBBootList), (std::vector<std::string>{"ttyACM2", "/dev/pts/7"}));
    EXPECT_EQ(form.BootPortInfo, (std::vector<std::string>{"Boot A", "Boot B"}));
    EXPECT_EQ(form.cmbUSBBootList->toolTip(), "Boot A");
    EXPECT_EQ(form.cmbUSBBootList->itemData(1).toString(), "/dev/pts/7");

    // The technician picks the second module in boot mode; a scan keeps it.
    form.cmbUSBBootList->setCurrentIndex(1);
    emit form.cmbUSBBootList->activated(1);
    EXPECT_EQ(form.txtSelPort->text(), "/dev/pts/7");
    EXPECT_EQ(form.cmbUSBBootList->toolTip(), "Boot B");
    form.UpdatePortList();
    EXPECT_EQ(form.cmbUSBBootList->currentText(), "/dev/pts/7");

    ShowAndClick(form.cmdSelect);
    EXPECT_EQ(form.txtSelPort->text(), "/dev/pts/7");
    EXPECT_TRUE(NamesPort(Latin1(form.txtSelPort->text())));
}

TEST_F(PortControl, ASelectionInTheRunningListLeavesTheResultAlone) {
    auto& form = Make({kRunningA, kRunningB, kBootA});
    form.cmbUSBDevList->setCurrentIndex(1);
    emit form.cmbUSBDevList->activated(1);
    EXPECT_EQ(form.cmbUSBDevList->toolTip(), "Module B");
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");
}

TEST_F(PortControl, OffersNotFoundWithoutModulesAndStillLetsSelectEnd) {
    auto& form = Make({kOther});
    EXPECT_EQ(Items(*form.cmbUSBDevList), std::vector<std::string>{"Not Found"});
    EXPECT_EQ(Items(*form.cmbUSBBootList), std::vector<std::string>{"Not Found"});
    EXPECT_EQ(form.txtSelPort->text(), "Not Found");
    EXPECT_TRUE(form.cmdSelect->isEnabled());
    ShowAndClick(form.cmdSelect);
    EXPECT_FALSE(NamesPort(Latin1(form.txtSelPort->text())));
}

TEST_F(PortControl, CancelAndTheCloseBoxEmptyTheResultAndTheNextScanFillsItAgain) {
    auto& form = Make({kBootA});
    ShowAndClick(form.cmdCancel);
    EXPECT_EQ(form.txtSelPort->text(), "");

    form.UpdatePortList();
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");
    QTimer::singleShot(0, &form, [&form] { form.close(); });
    form.exec();
    EXPECT_EQ(form.txtSelPort->text(), "");
}

TEST_F(PortControl, ReportsAnUnreachableInventoryInAMessageBox) {
    auto& form = Make({kBootA});
    inventory_->refuse = true;
    form.cmdScan->click();
    EXPECT_EQ(messages_.texts,
              std::vector<std::string>{
                  "Error occured during device searching\r\nError Number: 13\r\nDescription: Permission denied"});
    EXPECT_EQ(form.txtSelPort->text(), "Not Found");
}

TEST_F(PortControl, EnterBootSwitchesTheRunningModuleAndTheScanShowsItInBoot) {
    test::VirtualClock clock;
    auto& form = Make({kRunningA, kRunningB});
    form.cmbUSBDevList->setCurrentIndex(1);
    // The module re-enumerates under a new name while the port is held.
    clock.After(100, [this] { inventory_->ports = {kRunningA, InventoryPort{kBootA.PNPDeviceID, "ttyACM4", "Boot"}}; });
    bool lockedWhileWaiting = false;
    clock.After(200, [&] { lockedWhileWaiting = !form.cmdSelect->isEnabled() && !form.cmdSwitchToBoot->isEnabled(); });

    form.cmdSwitchToBoot->click();
    EXPECT_EQ(port_->CommPort(), "ttyACM1");
    EXPECT_EQ(port_->settings, "300, N, 8, 1");
    EXPECT_FALSE(port_->PortOpen());
    EXPECT_TRUE(lockedWhileWaiting);
    EXPECT_TRUE(form.cmdSwitchToBoot->isEnabled());
    EXPECT_EQ(Items(*form.cmbUSBBootList), std::vector<std::string>{"ttyACM4"});
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM4");
}

TEST_F(PortControl, EitherSwitchOnNotFoundOnlyScans) {
    test::VirtualClock clock;
    auto& form = Make({});
    inventory_->ports = {kBootA};
    form.cmdSwitchToBoot->click();
    EXPECT_TRUE(port_->calls.empty());
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");

    inventory_->ports = {};
    form.UpdatePortList();
    inventory_->ports = {kRunningA};
    form.cmdSwitchToDev->click();
    EXPECT_TRUE(port_->calls.empty());
    EXPECT_EQ(Items(*form.cmbUSBDevList), std::vector<std::string>{"ttyACM0"});
    EXPECT_TRUE(messages_.texts.empty());
}

TEST_F(PortControl, LeaveBootShowsWhatTheModuleSaidToRun) {
    test::VirtualClock clock;
    auto& form = Make({kBootA});
    test::ScriptedModule module(*port_, clock, [](const std::string& line) -> test::Reply {
        if (line == "GETSN\r") return test::Answers("GETSN", "0001");
        return {{10, "RUN\r\nApplication started\r\n"}};
    });
    form.cmdSwitchToDev->click();
    EXPECT_EQ(port_->written, (std::vector<std::string>{"GETSN\r", "RUN\r\n"}));
    EXPECT_EQ(port_->settings, "115200, N, 8, 1");
    EXPECT_EQ(messages_.texts, std::vector<std::string>{"RUN\r\nApplication started\r\n"});
    EXPECT_EQ(form.StatusBar->currentMessage(), "Answer received");
    EXPECT_FALSE(port_->PortOpen());
}

}  // namespace
}  // namespace sb

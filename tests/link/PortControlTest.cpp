#include <gtest/gtest.h>

#include <QTimer>

#include "ListedInventory.h"
#include "MessageRecorder.h"
#include "QtApp.h"
#include "ScriptedModule.h"
#include "link/frmPortControl.h"

// The dialog on the scan's decisions: what it shows, what it hands out, and
// the two mode switches on its own port.
namespace sb::test {
namespace {

struct PortControl : ::testing::Test {
    // Made as the main screen makes it, so its load has run the first scan.
    frmPortControl& Make(std::vector<InventoryPort> ports) {
        QtApp();
        auto inventory = std::make_unique<ListedInventory>(std::move(ports));
        auto port = std::make_unique<FakeSerialPort>();
        inventory_ = inventory.get();
        port_ = port.get();
        form_ = std::make_unique<frmPortControl>(std::move(inventory), std::move(port));
        return *form_;
    }

    // The main screen's choice of a port, ended as the function ends it.
    std::string Choose(const std::function<void()>& end) {
        QTimer::singleShot(0, form_.get(), end);
        return form_->ChooseBootPort();
    }

    VirtualClock clock_;
    MessageRecorder messages_;  // no message box ever waits for a person
    ListedInventory* inventory_ = nullptr;
    FakeSerialPort* port_ = nullptr;
    std::unique_ptr<frmPortControl> form_;
};

TEST_F(PortControl, ShowsTheScanAndItsFailureAndHandsOutThePickedBootPort) {
    auto& form = Make({kRunningA, kRunningB, kOther, kBootA, kBootB});
    EXPECT_EQ(form.cmbUSBBootList->itemText(1), "/dev/pts/7");
    EXPECT_EQ(form.cmbUSBBootList->toolTip(), "Boot A");
    EXPECT_TRUE(form.cmdSelect->isEnabled());

    // A pick in the running list leaves the result alone; one in the boot
    // list is the result, and a scan keeps it.
    form.cmbUSBDevList->setCurrentIndex(1);
    emit form.cmbUSBDevList->activated(1);
    EXPECT_EQ(form.cmbUSBDevList->toolTip(), "Module B");
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");
    form.cmbUSBBootList->setCurrentIndex(1);
    emit form.cmbUSBBootList->activated(1);
    EXPECT_EQ(form.cmbUSBBootList->toolTip() + " " + form.txtSelPort->text(), "Boot B /dev/pts/7");
    // Each list's module by its USB serial, beside the port.
    EXPECT_TRUE(form.lblDevSerial->text().endsWith(" B1") && form.lblBootSerial->text().endsWith(" B2"));
    EXPECT_EQ(Choose([&form] {
                  form.cmdScan->click();
                  form.cmdSelect->click();
              }), "/dev/pts/7");
    // A scan that cannot reach the inventory says so in a message box.
    inventory_->refuse = true;
    form.cmdScan->click();
    EXPECT_EQ(messages_.texts.size(), 1u);
}

TEST_F(PortControl, CancelAndTheCloseBoxEmptyTheResultAndTheNextScanFillsItAgain) {
    auto& form = Make({kBootA});
    EXPECT_EQ(Choose([&form] { form.cmdCancel->click(); }), "");
    EXPECT_EQ(Choose([&form] { form.close(); }), "");
    EXPECT_EQ(Choose([&form] { form.cmdSelect->click(); }), "ttyACM2");
}

TEST_F(PortControl, EnterBootOnNotFoundOnlyScansElseLocksTheDialogWhileItHoldsThePortThenScans) {
    auto& form = Make({});
    inventory_->ports = {kRunningA, kRunningB};
    form.cmdSwitchToBoot->click();
    EXPECT_TRUE(port_->calls.empty());
    form.cmbUSBDevList->setCurrentIndex(1);
    // The module re-enumerates under a new name while the port is held.
    clock_.After(100, [this] { inventory_->ports = {kRunningA, InventoryPort{kBootA.PNPDeviceID, "ttyACM4", "Boot"}}; });
    bool lockedWhileWaiting = false;
    clock_.After(200, [&] { lockedWhileWaiting = !form.cmdSelect->isEnabled() && !form.cmdSwitchToBoot->isEnabled(); });

    form.cmdSwitchToBoot->click();
    EXPECT_EQ(port_->CommPort(), "ttyACM1");
    EXPECT_EQ(port_->settings, "300, N, 8, 1");  // the switch to the boot loader, not the other
    EXPECT_TRUE(lockedWhileWaiting);
    EXPECT_TRUE(form.cmdSwitchToBoot->isEnabled());
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM4");
}

TEST_F(PortControl, LeaveBootOnNotFoundOnlyScansElseShowsWhatTheModuleSaidAndScansAlsoAfterAFault) {
    auto& form = Make({});
    inventory_->ports = {kBootA};
    form.cmdSwitchToDev->click();
    EXPECT_TRUE(port_->calls.empty());
    ScriptedModule module(*port_, clock_, [](const std::string& line) -> Reply {
        if (line == "GETSN\r") return {{0, "GETSN\r\n0001\r\n> "}};
        return {{10, "RUN\r\nApplication started\r\n"}};
    });
    form.cmdSwitchToDev->click();
    EXPECT_EQ(messages_.texts, std::vector<std::string>{"RUN\r\nApplication started\r\n"});
    EXPECT_EQ(form.StatusBar->currentMessage(), "Answer received");

    // A step that fails in another way than on the port ends the switch, which
    // closes the port and scans all the same.
    port_->onOutput = [](const std::string&) { throw std::runtime_error("driver fault"); };
    inventory_->ports = {kBootB};
    EXPECT_NO_THROW(form.cmdSwitchToDev->click());
    EXPECT_FALSE(port_->PortOpen());
    EXPECT_TRUE(form.cmdSwitchToDev->isEnabled());
    EXPECT_EQ(form.txtSelPort->text(), "/dev/pts/7");
}

}  // namespace
}  // namespace sb::test

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

std::vector<std::string> Items(const QComboBox& box) {
    std::vector<std::string> items;
    for (int i = 0; i < box.count(); ++i) items.push_back(box.itemText(i).toStdString());
    return items;
}

class PortControl : public ::testing::Test {
protected:
    void SetUp() override { QtApp(); }

    // Made as the main screen makes it, so its load has run the first scan.
    frmPortControl& Make(std::vector<InventoryPort> ports) {
        auto inventory = std::make_unique<ListedInventory>(std::move(ports));
        auto port = std::make_unique<FakeSerialPort>();
        inventory_ = inventory.get();
        port_ = port.get();
        form_ = std::make_unique<frmPortControl>(std::move(inventory), std::move(port));
        return *form_;
    }

    // A modal show that ends as the function ends it; the text handed out.
    std::string Show(const std::function<void()>& end) {
        QTimer::singleShot(0, form_.get(), end);
        form_->exec();
        EXPECT_FALSE(form_->isVisible());
        return form_->txtSelPort->text().toStdString();
    }

    MessageRecorder messages_;  // no message box ever waits for a person
    ListedInventory* inventory_ = nullptr;
    FakeSerialPort* port_ = nullptr;
    std::unique_ptr<frmPortControl> form_;
};

TEST_F(PortControl, ShowsTheScanAndHandsOutThePickedBootPort) {
    auto& form = Make({kRunningA, kRunningB, kOther, kBootA, kBootB});
    EXPECT_EQ(Items(*form.cmbUSBDevList), (std::vector<std::string>{"ttyACM0", "ttyACM1"}));
    EXPECT_EQ(Items(*form.cmbUSBBootList), (std::vector<std::string>{"ttyACM2", "/dev/pts/7"}));
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
    EXPECT_EQ(form.cmbUSBBootList->toolTip(), "Boot B");
    EXPECT_EQ(Show([&form] {
                  form.cmdScan->click();
                  form.cmdSelect->click();
              }), "/dev/pts/7");
}

TEST_F(PortControl, CancelAndTheCloseBoxEmptyTheResultAndTheNextScanFillsItAgain) {
    auto& form = Make({kBootA});
    EXPECT_EQ(Show([&form] { form.cmdCancel->click(); }), "");
    form.UpdatePortList();
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");
    EXPECT_EQ(Show([&form] { form.close(); }), "");
}

TEST_F(PortControl, ReportsAnUnreachableInventoryInAMessageBox) {
    auto& form = Make({kBootA});
    inventory_->refuse = true;
    form.cmdScan->click();
    ASSERT_EQ(messages_.texts.size(), 1u);
    EXPECT_EQ(messages_.texts[0].substr(0, 37), "Error occured during device searching");
    EXPECT_EQ(form.txtSelPort->text(), "Not Found");
}

TEST_F(PortControl, EnterBootLocksTheDialogWhileItHoldsThePortThenScans) {
    VirtualClock clock;
    auto& form = Make({kRunningA, kRunningB});
    form.cmbUSBDevList->setCurrentIndex(1);
    // The module re-enumerates under a new name while the port is held.
    clock.After(100, [this] { inventory_->ports = {kRunningA, InventoryPort{kBootA.PNPDeviceID, "ttyACM4", "Boot"}}; });
    bool lockedWhileWaiting = false;
    clock.After(200, [&] { lockedWhileWaiting = !form.cmdSelect->isEnabled() && !form.cmdSwitchToBoot->isEnabled(); });

    form.cmdSwitchToBoot->click();
    EXPECT_EQ(port_->CommPort(), "ttyACM1");
    EXPECT_EQ(port_->settings, "300, N, 8, 1");  // the switch to the boot loader, not the other
    EXPECT_TRUE(lockedWhileWaiting);
    EXPECT_TRUE(form.cmdSwitchToBoot->isEnabled());
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM4");
}

TEST_F(PortControl, LeaveBootShowsWhatTheModuleSaidToRun) {
    VirtualClock clock;
    auto& form = Make({kBootA});
    ScriptedModule module(*port_, clock, [](const std::string& line) -> Reply {
        if (line == "GETSN\r") return Answers("GETSN", "0001");
        return {{10, "RUN\r\nApplication started\r\n"}};
    });
    form.cmdSwitchToDev->click();
    EXPECT_EQ(messages_.texts, std::vector<std::string>{"RUN\r\nApplication started\r\n"});
    EXPECT_EQ(form.StatusBar->currentMessage(), "Answer received");
}

TEST_F(PortControl, EitherSwitchOnNotFoundOnlyScans) {
    VirtualClock clock;
    auto& form = Make({});
    EXPECT_TRUE(form.cmdSelect->isEnabled());
    inventory_->ports = {kBootA};
    form.cmdSwitchToBoot->click();
    EXPECT_EQ(form.txtSelPort->text(), "ttyACM2");
    inventory_->ports = {};
    form.UpdatePortList();
    inventory_->ports = {kRunningA};
    form.cmdSwitchToDev->click();
    EXPECT_EQ(Items(*form.cmbUSBDevList), std::vector<std::string>{"ttyACM0"});
    EXPECT_TRUE(port_->calls.empty());
    EXPECT_TRUE(messages_.texts.empty());
}

TEST_F(PortControl, ASwitchThatFailsInAnotherWayThanOnThePortEndsWithTheScan) {
    VirtualClock clock;
    auto& form = Make({kBootA});
    port_->onOutput = [](const std::string&) { throw std::runtime_error("driver fault"); };
    inventory_->ports = {kBootB};
    EXPECT_NO_THROW(form.cmdSwitchToDev->click());
    EXPECT_FALSE(port_->PortOpen());
    EXPECT_TRUE(form.cmdSwitchToDev->isEnabled());
    EXPECT_EQ(form.txtSelPort->text(), "/dev/pts/7");
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include <QTest>

#include "../link/QtApp.h"
#include "../tools/ModuleProcess.h"
#include "link/frmPortControl.h"

// The selection dialog on the system's inventory, offscreen, while virtual
// modules come and go: its lists follow without a press of "Scan".
namespace sb::test {
namespace {

bool Lists(const QComboBox* box, const std::string& device) {
    return box->findData(QString::fromStdString(device)) >= 0;
}

class PortControlPlugging : public ModuleTest {};

// A hidden dialog waits for its next showing, which scans anyway. Made
// first, its watcher hears the plugging first, so by the time the shown one
// has scanned, a hidden one that scans would have done so too.
TEST_F(PortControlPlugging, AModulePluggedInWhileTheDialogIsShownAppearsInItsListAndLeavesIt) {
    QtApp();
    frmPortControl hidden;
    frmPortControl dialog;
    dialog.show();
    ModuleProcess module(folder, {"--boot"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return Lists(dialog.cmbUSBBootList, module.Device()); }, 10000));
    EXPECT_FALSE(Lists(hidden.cmbUSBBootList, module.Device()));
    EXPECT_EQ(dialog.txtSelPort->text().toStdString(), module.Device());
    module.Stop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Lists(dialog.cmbUSBBootList, module.Device()); }, 10000));
}

}  // namespace
}  // namespace sb::test

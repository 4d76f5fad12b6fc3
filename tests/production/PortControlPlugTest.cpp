#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "../tools/ModuleProcess.h"
#include "link/frmPortControl.h"

// The selection dialog on the system's inventory, offscreen, while virtual
// modules come and go: its lists follow without a press of "Scan".
namespace sb::test {
namespace {

QApplication& App() {
    static int argc = 1;
    static char name[] = "servicebay-test";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
    return app;
}

bool Lists(const QComboBox* box, const std::string& device) {
    return box->findData(QString::fromStdString(device)) >= 0;
}

class PortControlPlugging : public ModuleTest {};

TEST_F(PortControlPlugging, AModulePluggedInWhileTheDialogIsShownAppearsInItsListAndLeavesIt) {
    App();
    frmPortControl dialog;
    dialog.show();
    ModuleProcess module(folder, {"--boot"});
    QTRY_VERIFY_WITH_TIMEOUT(Lists(dialog.cmbUSBBootList, module.Device()), 10000);
    EXPECT_EQ(dialog.txtSelPort->text().toStdString(), module.Device());
    module.Stop();
    QTRY_VERIFY_WITH_TIMEOUT(!Lists(dialog.cmbUSBBootList, module.Device()), 10000);
    // Hidden, it no longer scans by itself.
    dialog.hide();
    ModuleProcess later(folder, "later", {"--boot"});
    QTest::qWait(1500);
    EXPECT_FALSE(Lists(dialog.cmbUSBBootList, later.Device()));
}

}  // namespace
}  // namespace sb::test

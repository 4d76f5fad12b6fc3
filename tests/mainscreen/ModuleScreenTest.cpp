// "Read info" and "Write" against the virtual module on a pseudo-terminal,
// with the history that a read feeds and the check of a write.
#include <QMenuBar>
#include <QSignalSpy>
#include <QTimer>

#include "ScreenTesting.h"
#include "VirtualModule.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/ConfigHistory.h"
#include "mainscreen/ConfigFileChooser.h"

namespace sb::test {
namespace {

struct ModuleScreen : ScreenTest {
    // Picks the port, and closes the window in the wait that follows.
    void CloseDuringTheAction() {
        modal.Then([&](QDialog& dialog) {
            QTimer::singleShot(0, &form, [&] {
                form.close();
                portOpenAfterClose = form.ComPort().PortOpen();
            });
            Click(dialog, "cmdSelect");
        });
    }
    // Points the selection dialog at a port that does not exist.
    void ChooseMissingPort() {
        modal.Then([](QDialog& dialog) {
            dialog.findChild<QLineEdit*>("txtSelPort")->setText("/dev/servicebay-no-such-port");
            Click(dialog, "cmdSelect");
        });
    }

    QSignalSpy unloaded{&form, &ui::frmDeviceCofigurator::unloaded};
    bool portOpenAfterClose = false;
};

TEST_F(ModuleScreen, ReadFillsTheScreenAndWriteSendsTheEditedImage) {
    VirtualModule module;
    form.setWindowTitle("opened.sbconf");  // as a file left it
    form.cmdRdDevInfo->click();
    EXPECT_FALSE(form.windowTitle().contains("opened.sbconf"));
    const std::pair<const QLineEdit*, const char*> boxes[] = {
        {form.txtSN, "SN0042"},        {form.txtPVer, "1.2.3"},           {form.txtPName, "Test module"},
        {form.txtPDate, "01.02.2024"}, {form.txtVIN, "VIN0000000000042"}, {form.txtFWName, "TESTAPP"},
        {form.txtFWVer, "4.5.6"},      {form.txtHWVer, "HW 7"},
    };
    for (const auto& [box, text] : boxes) EXPECT_EQ(box->text(), text) << box->objectName().toStdString();
    EXPECT_EQ(form.txtAppInfo->toPlainText(), "  first line\nsecond line");  // as it came
    EXPECT_EQ(form.txtAppConfig->toPlainText(), kModuleImage);
    // The last status text stays, also when the Tools menu opens.
    form.menuBar()->setActiveAction(form.mnuTools->menuAction());
    form.mnuTools->setActiveAction(form.mnuEditor);
    form.mnuTools->hide();
    EXPECT_EQ(form.StatusBar->currentMessage(), "Answer received");

    // The same module again: the box's text stays, the tree is built anew.
    screen.ClickBox("OPTION00000002_VALUE00000000");
    form.cmdRdDevInfo->click();
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000001"));

    // A close during the write waits until the module has answered.
    screen.ClickBox("OPTION00000002_VALUE00000002");
    CloseDuringTheAction();
    form.cmdWriteConfig->click();
    EXPECT_TRUE(portOpenAfterClose);
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Config written successfully!"});
    // The module notes its state after its answer.
    EXPECT_TRUE(module.process.WaitForState("AppConfig", "000000000F22415A"));
    EXPECT_EQ(form.txtAppConfig->toPlainText(), kModuleImage);  // nothing is read back
    EXPECT_EQ(unloaded.count(), 1);
}

TEST_F(ModuleScreen, EachRoadOfAFailingReadOrWrite) {
    VirtualModule module({"--lowercase-ok"});
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    form.cmdRdDevInfo->click();  // ends without a word
    EXPECT_TRUE(form.cmdFWUpdate->isEnabled());  // after the first read, whatever its road
    EXPECT_EQ(form.StatusBar->currentMessage(), "Scan for connected devices");
    ChooseMissingPort();
    form.cmdRdDevInfo->click();

    form.cmdRdDevInfo->click();
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    form.cmdWriteConfig->click();
    ChooseMissingPort();
    form.cmdWriteConfig->click();
    form.cmdWriteConfig->click();  // the module answers "ok"
    // The system's reason follows on a second line.
    EXPECT_THAT(messages.texts,
                ::testing::ElementsAre(::testing::StartsWith("CommPort Error\r\n"), "Cant find device in boot mode",
                                       ::testing::StartsWith("COMPort Error\r\n"), "Error! Config was not set !"));
    EXPECT_TRUE(form.isEnabled() && form.cmdWriteConfig->isEnabled() && form.cmdRdDevInfo->isEnabled());

    // A close during a read closes the port under it, and the program ends.
    CloseDuringTheAction();
    form.cmdRdDevInfo->click();
    EXPECT_FALSE(portOpenAfterClose);
    EXPECT_EQ(unloaded.count(), 1);
    EXPECT_EQ(messages.texts.size(), 4u);
}

TEST_F(ModuleScreen, AReadIsKeptAndVerifyNamesWhatTheModuleDidNotTake) {
    VirtualModule module({"--ignore-config-writes"});
    form.cmdRdDevInfo->click();
    EXPECT_EQ(ListHistory(HistoryRoot()).at(0).SN, "SN0042");

    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    form.mnuVerifyWrite->setChecked(true);
    form.cmdWriteConfig->click();
    form.mnuVerifyWrite->setChecked(false);
    EXPECT_EQ(messages.texts, std::vector<std::string>{
                                  "The module holds another configuration than the one written:\r\n Mode:Off -> On"});
    EXPECT_FALSE(form.ComPort().PortOpen());

    // A file opened over the read, and taken back: the module read is there
    // to be updated again.
    const std::string file = folder.File("other.sbconf");
    WriteConfigFile(file, MakeConfigDocument(form.Device(), form.Device().CfgImage));
    ui::SetConfigFileChooser([&](ui::ConfigFileChoice) { return file; });
    form.mnuOpenConfig->trigger();
    ui::SetConfigFileChooser({});
    EXPECT_FALSE(form.cmdFWUpdate->isEnabled());
    form.mnuUndo->trigger();
    EXPECT_TRUE(form.cmdFWUpdate->isEnabled());
}

}  // namespace
}  // namespace sb::test

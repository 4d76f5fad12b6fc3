// "Read info" and "Write" against the virtual module on a pseudo-terminal.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>

#include "ScreenTesting.h"
#include "TestCatalog.h"
#include "VirtualModule.h"

namespace sb::test {
namespace {

std::string Box(const QLineEdit* box) { return box->text().toStdString(); }
std::string Box(const QPlainTextEdit* box) { return box->toPlainText().toStdString(); }

// Points the selection dialog at a port that does not exist.
void ChooseMissingPort(QDialog& dialog) {
    dialog.findChild<QLineEdit*>("txtSelPort")->setText("/dev/servicebay-no-such-port");
    Click(dialog, "cmdSelect");
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find("\r\n")); }

struct ReadInfo : ::testing::Test {
    ModalScript modal;
    MessageRecorder messages;
};

TEST_F(ReadInfo, FillsTheScreenWithTheModulesData) {
    VirtualModule module;
    Screen screen;
    ui::frmDeviceCofigurator& form = screen.form;
    form.cmdRdDevInfo->click();

    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(modal.shown, std::vector<std::string>{"frmPortControl"});
    const std::pair<const QLineEdit*, const char*> boxes[] = {
        {form.txtSN, "SN0042"},          {form.txtPVer, "1.2.3"},  {form.txtPName, "Test module"},
        {form.txtPDate, "01.02.2024"},   {form.txtVIN, "VIN0000000000042"}, {form.txtFWName, "TESTAPP"},
        {form.txtFWVer, "4.5.6"},        {form.txtHWVer, "HW 7"},
    };
    for (const auto& [box, text] : boxes) EXPECT_EQ(Box(box), text) << box->objectName().toStdString();
    // The application info stands as it came, blanks and line ends included.
    EXPECT_EQ(Box(form.txtAppInfo), "  first line\nsecond line");
    EXPECT_EQ(Box(form.txtAppConfig), kModuleImage);
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_EQ(form.cmbConfigList->count(), 4);
    EXPECT_EQ(form.cmbConfigList->currentText(), "READED CONFIG");
    EXPECT_EQ(screen.Text("CONFIGURATION00000000"), "Module");
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000001"));
    for (QWidget* button : std::initializer_list<QWidget*>{form.cmdRdDevInfo, form.cmdFWUpdate, form.cmdWriteConfig,
                                                           form.cmdSelPredefCfg, form.cmbConfigList})
        EXPECT_TRUE(button->isEnabled()) << button->objectName().toStdString();
    EXPECT_FALSE(form.ComPort().PortOpen());
    EXPECT_EQ(form.StatusBar->currentMessage(), "Answer received");

    // A second read of the same module: the box's text stays, and the tree is
    // built once more all the same.
    screen.ClickBox("OPTION00000002_VALUE00000000");
    form.cmdRdDevInfo->click();
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000001"));
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(ReadInfo, ModuleWithoutAUsableConfiguration) {
    // A catalog that is no XML document brings the parser's reason first.
    const struct {
        const char* fault;
        size_t messageCount;
        const char* lastMessage;
        int entries;
    } cases[] = {
        {"--catalog-missing", 2, "Module do not support info file feature", 0},
        {"--catalog-broken", 2, "Module do not support info file feature", 0},
        {"--config-length=7", 1, "Module has wrong configuration", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        VirtualModule module({c.fault});
        Screen screen;
        messages.texts.clear();
        screen.form.cmdRdDevInfo->click();
        ASSERT_EQ(messages.texts.size(), c.messageCount);
        EXPECT_EQ(messages.texts.back(), c.lastMessage);
        EXPECT_EQ(Box(screen.form.txtSN), "SN0042");
        EXPECT_EQ(screen.form.cmbConfigList->count(), c.entries);
        EXPECT_EQ(screen.form.cmdWriteConfig->isEnabled(), c.entries > 0);
        EXPECT_TRUE(screen.form.cmdFWUpdate->isEnabled());
        if (c.entries == 0) {
            EXPECT_EQ(screen.form.tvOptions->topLevelItemCount(), 0);
        } else {
            // The last catalog entry became the working image.
            EXPECT_EQ(screen.CfgEdited(), kCarImage);
            EXPECT_EQ(screen.Text("CONFIGURATION00000002"), "Car");
        }
    }
}

TEST_F(ReadInfo, SilentModuleLeavesNoAnswerInEveryBox) {
    VirtualModule module({"--silent"});
    Screen screen;
    screen.form.cmdRdDevInfo->click();
    for (const QLineEdit* box : {screen.form.txtSN, screen.form.txtVIN, screen.form.txtHWVer})
        EXPECT_EQ(Box(box), "No answer");
    EXPECT_EQ(Box(screen.form.txtAppInfo), "No answer");
    ASSERT_FALSE(messages.texts.empty());
    EXPECT_EQ(messages.texts.back(), "Module do not support info file feature");
    EXPECT_EQ(screen.form.StatusBar->currentMessage(), "No answer");
    EXPECT_FALSE(screen.form.ComPort().PortOpen());
}

TEST_F(ReadInfo, CancelOrAPortThatFailsChangesNothing) {
    VirtualModule module;
    Screen screen;
    ui::frmDeviceCofigurator& form = screen.form;
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    form.cmdRdDevInfo->click();
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(Box(form.txtSN), "");
    // Update is enabled at the end of the first read, whatever its road.
    EXPECT_TRUE(form.cmdFWUpdate->isEnabled());
    EXPECT_EQ(form.StatusBar->currentMessage(), "Scan for connected devices");

    modal.Then(ChooseMissingPort);
    form.cmdRdDevInfo->click();
    ASSERT_EQ(messages.texts.size(), 1u);
    EXPECT_EQ(FirstLine(messages.texts[0]), "CommPort Error");
    // The system's reason follows on a second line.
    EXPECT_GT(messages.texts[0].size(), std::string("CommPort Error\r\n").size());
    EXPECT_EQ(Box(form.txtSN), "");
    EXPECT_TRUE(form.cmdRdDevInfo->isEnabled());
    EXPECT_FALSE(form.cmdWriteConfig->isEnabled());
}

TEST_F(ReadInfo, WindowClosedDuringTheReadEndsTheProgramQuietly) {
    VirtualModule module({"--silent"});
    Screen screen;
    QSignalSpy unloaded(&screen.form, &ui::frmDeviceCofigurator::unloaded);
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(1500, &screen.form, [&] { screen.form.close(); });
    screen.form.cmdRdDevInfo->click();
    // Eleven silent exchanges would take about 22 s; the closed port ends them.
    EXPECT_LT(clock.elapsed(), 15000);
    EXPECT_EQ(unloaded.count(), 1);
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_FALSE(screen.form.isVisible());
}

struct WriteConfig : ReadInfo {};

TEST_F(WriteConfig, SendsTheEditedImageAndSaysWhatTheModuleAnswered) {
    VirtualModule module;
    Screen screen;
    ui::frmDeviceCofigurator& form = screen.form;
    form.cmdRdDevInfo->click();
    screen.ClickBox("OPTION00000002_VALUE00000002");
    ASSERT_EQ(screen.CfgEdited(), "000000000F22415A");
    form.cmdWriteConfig->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Config written successfully!"});
    EXPECT_EQ(module.State("AppConfig"), "000000000F22415A");
    EXPECT_TRUE(form.isEnabled());
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
    EXPECT_FALSE(form.ComPort().PortOpen());
    // Nothing is read back: the read configuration stays as it was.
    EXPECT_EQ(Box(form.txtAppConfig), kModuleImage);
}

TEST_F(WriteConfig, EachRoadOfFailureHasItsMessage) {
    VirtualModule module({"--lowercase-ok"});
    Screen screen;
    ui::frmDeviceCofigurator& form = screen.form;
    form.cmdRdDevInfo->click();
    messages.texts.clear();

    form.cmdWriteConfig->click();  // the module answers "ok"
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    form.cmdWriteConfig->click();
    modal.Then(ChooseMissingPort);
    form.cmdWriteConfig->click();
    ASSERT_EQ(messages.texts.size(), 3u);
    EXPECT_EQ(messages.texts[0], "Error! Config was not set !");
    EXPECT_EQ(messages.texts[1], "Cant find device in boot mode");
    EXPECT_EQ(FirstLine(messages.texts[2]), "COMPort Error");
    EXPECT_TRUE(form.isEnabled());
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
    EXPECT_EQ(module.State("AppConfig"), kModuleImage);
}

}  // namespace
}  // namespace sb::test

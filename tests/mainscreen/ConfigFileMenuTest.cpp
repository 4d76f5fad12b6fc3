// The File menu and the check of a write, on the offscreen platform.
#include <gtest/gtest.h>

#include "ScreenTesting.h"
#include "VirtualModule.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/ConfigHistory.h"
#include "helpers/HexText.h"
#include "mainscreen/CompareDialog.h"
#include "mainscreen/ConfigFileChooser.h"

namespace sb::test {
namespace {

struct FileMenu : ScreenTest {
    FileMenu() { ui::SetConfigFileChooser([this](ui::ConfigFileChoice) { return chosen; }); }
    ~FileMenu() override { ui::SetConfigFileChooser({}); }

    std::string chosen;
};

TEST_F(FileMenu, OpenFillsTheScreenAndCompareListsTheChangedOption) {
    DeviceInfo module;
    module.InfoFile = TestCatalog();
    module.SN = "SN7";
    emit form.mnuFile->aboutToShow();
    EXPECT_FALSE(form.mnuSaveConfig->isEnabled());  // no working image yet
    chosen = folder.File("module.sbconf");
    WriteConfigFile(chosen, MakeConfigDocument(module, HexToBytes(kModuleImage)));
    form.mnuOpenConfig->trigger();
    EXPECT_EQ(form.txtSN->text(), "SN7");
    EXPECT_EQ(form.cmbConfigList->currentText(), "READED CONFIG");
    EXPECT_EQ(screen.Text("OPTION00000002"), "Mode:On");

    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    std::vector<std::vector<QString>> rows;
    int allRows = 0;
    modal.Then([&](QDialog& dialog) {
        auto& compare = static_cast<ui::frmCompareConfig&>(dialog);
        for (int row = 0; row < compare.tblOptions->rowCount(); ++row)
            rows.push_back({compare.tblOptions->item(row, 0)->text(), compare.tblOptions->item(row, 1)->text(),
                            compare.tblOptions->item(row, 2)->text()});
        compare.chkAllOptions->setChecked(true);
        allRows = compare.tblOptions->rowCount();
    });
    emit form.mnuFile->aboutToShow();  // the menu opens
    form.mnuCompareReaded->trigger();
    EXPECT_EQ(rows, (std::vector<std::vector<QString>>{{"Mode", "Off", "On"}}));
    EXPECT_EQ(allRows, 7);

    // A file that is no configuration changes nothing on the screen.
    chosen = folder.File("other.sbconf");
    TempFolder::Write(chosen, "<CFG/>");
    form.mnuOpenConfig->trigger();
    ASSERT_EQ(messages.texts.size(), 1u);
    EXPECT_EQ(messages.texts[0].rfind(chosen + ": ", 0), 0u) << messages.texts[0];
    EXPECT_EQ(form.txtSN->text(), "SN7");
}

TEST_F(FileMenu, AReadIsKeptAndVerifyNamesWhatTheModuleDidNotTake) {
    VirtualModule module({"--ignore-config-writes"});
    form.cmdRdDevInfo->click();
    const auto history = ListHistory(HistoryRoot());
    ASSERT_FALSE(history.empty());
    EXPECT_EQ(history.front().SN, "SN0042");

    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    form.mnuVerifyWrite->setChecked(true);
    form.cmdWriteConfig->click();
    form.mnuVerifyWrite->setChecked(false);
    EXPECT_EQ(messages.texts, std::vector<std::string>{
                                  "The module holds another configuration than the one written:\r\n Mode:Off -> On"});
    EXPECT_FALSE(form.ComPort().PortOpen());
}

}  // namespace
}  // namespace sb::test

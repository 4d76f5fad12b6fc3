// The main screen without a module, on the offscreen platform: its start,
// the offline run from a catalog file, the option tree, the list of
// configurations and the value edit forms as mouse, keyboard and a scripted
// technician work them, the File menu, and the screen's end.
#include <filesystem>

#include "ScreenTesting.h"
#include "configfiles/ConfigFile.h"
#include "helpers/HexText.h"
#include "mainscreen/CompareDialog.h"
#include "mainscreen/ConfigFileChooser.h"
#include "mainscreen/UpdateScreens.h"

namespace sb::test {
namespace {

using MainScreen = ScreenTest;
using OptionEditing = ScreenTest;
using ValueForms = ScreenTest;

// The value box of a form, whichever it has.
std::string Box(QDialog& dialog) {
    if (auto* line = dialog.findChild<QLineEdit*>("txtOptValue")) return ui::Bytes(line->text());
    return ui::Bytes(dialog.findChild<QPlainTextEdit*>("txtValue")->toPlainText());
}

// Step: puts the text into the value box of a form and clicks OK.
ModalScript::Step EnterValue(const std::string& text) {
    return [=](QDialog& dialog) {
        if (auto* line = dialog.findChild<QLineEdit*>("txtOptValue"))
            line->setText(ui::Latin1(text));
        else
            dialog.findChild<QPlainTextEdit*>("txtValue")->setPlainText(ui::Latin1(text));
        Click(dialog, "cmdOK");
    };
}

void Set(QDialog& dialog, const char* button) { dialog.findChild<QRadioButton*>(button)->setChecked(true); }

TEST_F(MainScreen, StartsWithOnlyReadInfoAndBoxesThatOnlyShow) {
    for (QPushButton* button : form.findChildren<QPushButton*>())
        EXPECT_EQ(button->isEnabled(), button == form.cmdRdDevInfo || button == form.Command1) << button->text().toStdString();
    for (QWidget* box : form.findChildren<QPlainTextEdit*>()) EXPECT_FALSE(box->isEnabled());
    for (QWidget* box : form.findChildren<QLineEdit*>()) EXPECT_FALSE(box->isEnabled());
    EXPECT_TRUE(form.Command1->isHidden());
    EXPECT_TRUE(form.PortControl().isHidden());  // loaded at the start
}

TEST_F(MainScreen, OfflineRunFillsTheScreenLikeAReadOrSaysWhyAndClearsIt) {
    form.txtAppInfo->setPlainText("from before");
    form.mnuOfflineRead->trigger();
    EXPECT_EQ(form.txtPName->text(), "Dummy Module");
    EXPECT_EQ(form.txtAppInfo->toPlainText(), "from before");
    EXPECT_EQ(form.txtAppConfig->toPlainText(), "00000000 0F 21 41 5A");  // as the file writes it
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
    EXPECT_FALSE(form.cmdFWUpdate->isEnabled());

    // Without the module's configuration the last entry stands in.
    const std::string& text = TestCatalog();
    TempFolder::Write(ConfigOptions(), std::string(text).replace(text.find("I=\"0\""), 5, "I=\"7\""));
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->count(), 3);
    EXPECT_EQ(screen.CfgEdited(), kCarImage);

    // No file, then a catalog the program can't take: the screen is cleared
    // first and says why.
    std::filesystem::remove(ConfigOptions());
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->count(), 0);
    EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
    EXPECT_EQ(screen.CfgEdited(), "");
    EXPECT_FALSE(form.cmdWriteConfig->isEnabled());
    TempFolder::Write(ConfigOptions(), std::string(text).replace(text.find("L=\"8\""), 5, "L=\"4\""));
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->count(), 0);
    const char* refused = "Module do not support info file feature";
    EXPECT_EQ(messages.texts, (std::vector<std::string>{"Module has wrong configuration",
                                                        "File was not found: " + ConfigOptions(), refused, refused}));
}

TEST_F(OptionEditing, ClicksOnBoxesApplyEntriesInPlaceOnceAndClicksOnTextsNothing) {
    form.Command1->click();
    QTreeWidgetItem* const optionItem = screen.Item("OPTION00000002");
    EXPECT_TRUE(screen.Item("CONFIGURATION00000000")->isExpanded());
    screen.ClickText("OPTION00000002_VALUE00000000");
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    screen.ClickBox("OPTION00000002_VALUE00000002");
    EXPECT_EQ(screen.Text("OPTION00000002"), "Mode:Auto");
    EXPECT_FALSE(screen.On("OPTION00000002_VALUE00000001"));
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    EXPECT_EQ(screen.Item("OPTION00000002"), optionItem);
    screen.DoubleClickBox("OPTION00000003_VALUE00000000");  // Low on: 02 -> 03
    EXPECT_TRUE(screen.On("OPTION00000003_VALUE00000000"));
    EXPECT_EQ(screen.CfgEdited(), "000000000F32415A");
}

TEST_F(OptionEditing, DoubleClickOpensTheFormAfreshEachTimeAndWritesAGoodValueBack) {
    form.Command1->click();
    modal.Then([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Limit");
        EnterValue("21")(dialog);  // above the range
        EXPECT_EQ(Box(dialog), "0000000F");
        Set(dialog, "optDecHex_1");
        Click(dialog, "cmdCancel");
    });
    modal.Then(EnterValue("1A"));  // in "Hex" again
    screen.DoubleClick("OPTION00000001");
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    screen.DoubleClick("OPTION00000001");
    EXPECT_EQ(modal.shown, std::vector<std::string>(2, "frmIntValEdit"));
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Wrong value entered"});
    EXPECT_EQ(screen.CfgEdited(), "000000001A21415A");
    EXPECT_EQ(screen.Text("OPTION00000001"), "Limit:0000001A km/h");
    EXPECT_EQ(form.tvOptions->currentItem(), nullptr);
}

TEST_F(OptionEditing, ListShowsTheChoiceAndSelectAppliesIt) {
    form.Command1->click();
    screen.ClickBox("OPTION00000002_VALUE00000000");  // an edit, taken back below
    form.cmbConfigList->setCurrentIndex(2);
    emit form.cmbConfigList->activated(2);
    EXPECT_EQ(form.lblShortInfoCfgName->text(), "Short info for configuration: Car");
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "for cars");
    EXPECT_EQ(screen.CfgEdited(), "000000000F20415A");  // a choice alone changes nothing
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(screen.Text("CONFIGURATION00000002"), "Car");
    const std::pair<const char*, QColor> colours[] = {  // "Car" locks Mode
        {"OPTION00000002", Qt::red},
        {"OPTION00000000_VALUE00000001", Qt::blue},
        {"OPTION00000002_VALUE00000000", form.tvOptions->palette().color(QPalette::Disabled, QPalette::Text)}};
    for (const auto& [key, colour] : colours) EXPECT_TRUE(screen.Item(key)->foreground(0).color() == colour) << key;

    form.cmbConfigList->setCurrentIndex(1);  // its data carry an Id that no entry has
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Something wrong"});
    EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
    EXPECT_EQ(screen.CfgEdited(), "0500000000000000");
}

TEST_F(OptionEditing, TypingAnEntrysNameInTheListChangesNothing) {
    form.Command1->click();
    QLineEdit* field = form.cmbConfigList->lineEdit();
    field->clear();
    QTest::keyClicks(field, "Car");
    QTest::keyClick(field, Qt::Key_Return);
    QFocusEvent left(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(field, &left);
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "as the module left the factory");
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
}

TEST_F(ValueForms, OverlongEntriesAreRefusedAndEveryByteOfAStringSurvives) {
    ui::ValueEditForms& forms = form.EditForms();
    modal.Then([](QDialog& dialog) {
        EnterValue(std::string(40000, '0'))(dialog);
        EXPECT_EQ(Box(dialog), "41");
    });
    EXPECT_EQ(forms.EditBin("Key", 1, "41"), "41");
    modal.Then([](QDialog& dialog) {
        dialog.findChild<QPlainTextEdit*>("txtValue")->setPlainText(QString(40000, QLatin1Char('A')));
        Set(dialog, "optHexASCII_0");
        EXPECT_EQ(Box(dialog), "5A");
    });
    EXPECT_EQ(forms.EditStr("Tag", 1, "Z"), "Z");
    EXPECT_EQ(messages.texts, std::vector<std::string>(2, "Wrong value entered"));

    std::string bytes = "\r\n\r";
    for (int b = 1; b <= 0xFF; ++b) bytes += static_cast<char>(b);
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    modal.Then([](QDialog& dialog) { Click(dialog, "cmdOK"); });
    modal.Then([](QDialog& dialog) {
        Set(dialog, "optHexASCII_0");
        Set(dialog, "optHexASCII_1");
        Click(dialog, "cmdOK");
    });
    for (int use = 0; use < 3; ++use) EXPECT_EQ(forms.EditStr("Tag", int(bytes.size()), bytes), bytes) << use;
    EXPECT_EQ(messages.texts.size(), 2u);
}

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
    std::vector<std::string> rows;  // option, this, that; then the number of rows with all options
    modal.Then([&](QDialog& dialog) {
        auto& compare = static_cast<ui::frmCompareConfig&>(dialog);
        QTableWidget& table = *compare.tblOptions;
        for (int row = 0; row < table.rowCount(); ++row) {
            const QStringList cells = {table.item(row, 0)->text(), table.item(row, 1)->text(), table.item(row, 2)->text()};
            rows.push_back(ui::Bytes(cells.join(' ')));
        }
        compare.chkAllOptions->setChecked(true);
        rows.push_back(std::to_string(table.rowCount()));
    });
    emit form.mnuFile->aboutToShow();  // the menu opens
    form.mnuCompareReaded->trigger();
    EXPECT_EQ(rows, (std::vector<std::string>{"Mode Off On", "7"}));

    // A file that is no configuration changes nothing on the screen.
    chosen = folder.File("other.sbconf");
    TempFolder::Write(chosen, "<CFG/>");
    form.mnuOpenConfig->trigger();
    EXPECT_THAT(messages.texts, ::testing::ElementsAre(::testing::StartsWith(chosen + ": ")));
    EXPECT_EQ(form.txtSN->text(), "SN7");
}

TEST_F(MainScreen, ClosingUnloadsTheOtherFormsInTheirOrder) {
    std::vector<std::string> unloaded;
    ui::SetUpdateScreens({nullptr, [&] { unloaded.push_back("frmFileCtrl"); }, [&] { unloaded.push_back("frmTarnlift"); }});
    ui::ValueEditForms& forms = form.EditForms();  // each form ends as with Cancel
    forms.EditInt("", "", "", "");
    forms.EditBin("", 0, "");
    forms.EditStr("", 0, "");
    for (QObject* each : std::initializer_list<QObject*>{forms.IntForm(), forms.BinForm(), forms.StrForm(), &form.PortControl()})
        QObject::connect(each, &QObject::destroyed, [&, name = each->objectName().toStdString()] { unloaded.push_back(name); });
    QSignalSpy ended(&form, &ui::frmDeviceCofigurator::unloaded);
    EXPECT_TRUE(form.close());
    ui::SetUpdateScreens({});
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(unloaded, (std::vector<std::string>{"frmFileCtrl", "frmTarnlift", "frmIntValEdit", "frmBinValEdit",
                                                  "frmStrValEdit", "frmPortControl"}));
}

}  // namespace
}  // namespace sb::test

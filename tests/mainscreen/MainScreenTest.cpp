// The main screen without a module, on the offscreen platform: its start,
// the offline run from a catalog file, the option tree, the list of
// configurations and the value edit forms as mouse, keyboard and a scripted
// technician work them, the File menu, and the screen's end.
#include <QFileDialog>
#include <QRadioButton>
#include <QTableWidget>
#include <filesystem>

#include "ScreenTesting.h"
#include "configfiles/ConfigFile.h"
#include "helpers/HexText.h"
#include "mainscreen/CompareDialog.h"
#include "mainscreen/ConfigFileChooser.h"
#include "mainscreen/UpdateScreens.h"
#include "mainscreen/WindowTrace.h"
#include "support/DoctorReport.h"

namespace sb::test {
namespace {

using MainScreen = ScreenTest;
struct OptionEditing : ScreenTest {
    OptionEditing() { form.Command1->click(); }
};

// The value box of frmIntValEdit, of the other two forms.
QLineEdit* IntBox(QDialog& dialog) { return dialog.findChild<QLineEdit*>("txtOptValue"); }
QPlainTextEdit* ValueBox(QDialog& dialog) { return dialog.findChild<QPlainTextEdit*>("txtValue"); }

// Step: puts the text into the value box of frmIntValEdit and clicks OK.
ModalScript::Step EnterValue(const char* text) {
    return [=](QDialog& dialog) {
        IntBox(dialog)->setText(QLatin1String(text));
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
}

// Help's diagnosis shows the doctor's findings of this machine.
TEST_F(MainScreen, DiagnosisShowsTheDoctorsFindings) {
    std::string shown;
    modal.Then([&shown](QDialog& dialog) {
        shown = dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtFindings"))->toPlainText().toStdString();
    });
    form.findChild<QAction*>(QStringLiteral("mnuDiagnose"))->trigger();
    const support::DoctorRequest everything{"", "", ModuleMode::None, support::ProgramFiles()};
    EXPECT_EQ(shown, support::FindingsText(support::RunDoctor(support::LocalSystem(), everything)));
}

// Help's support bundle carries the window's wire traffic to where the user chose.
TEST_F(MainScreen, SupportBundleHoldsTheWindowsTrace) {
    ui::WindowWireTrace().Take({0, support::WireDirection::Out, "GETSN\r"});
    const std::string bundle = folder.File("b.tar.gz");
    modal.Then([&bundle](QDialog& dialog) {
        static_cast<QFileDialog&>(dialog).selectFile(QString::fromStdString(bundle));
        dialog.accept();
    });
    form.findChild<QAction*>(QStringLiteral("mnuSupportBundle"))->trigger();
    ASSERT_EQ(messages.texts.size(), 2u);
    ASSERT_EQ(messages.texts[1], "Support bundle written to " + bundle);
    ASSERT_EQ(std::system(("tar -xzf " + bundle + " -C " + folder.File("")).c_str()), 0);
    EXPECT_NE(TempFolder::Read(folder.File("servicebay-support/wire-trace.txt")).find("|GETSN\\r|"), std::string::npos);
}

TEST_F(MainScreen, OfflineRunFillsTheScreenLikeAReadOrSaysWhyAndClearsIt) {
    form.txtAppInfo->setPlainText("from before");
    form.mnuOfflineRead->trigger();
    EXPECT_EQ(form.txtPName->text(), "Dummy Module");
    EXPECT_EQ(form.txtAppInfo->toPlainText(), "from before");

    // Without the module's configuration: the last entry stands in, with a word.
    const std::string& text = TestCatalog();
    TempFolder::Write(ConfigOptions(), std::string(text).replace(text.find("I=\"0\""), 5, "I=\"7\""));
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->currentText(), "Car");

    // No file, then a catalog the program can't take: the screen is cleared
    // first and says why.
    std::filesystem::remove(ConfigOptions());
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->count(), 0);
    EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
    EXPECT_EQ(form.CfgEditedText(), "");
    EXPECT_FALSE(form.cmdWriteConfig->isEnabled());
    TempFolder::Write(ConfigOptions(), std::string(text).replace(text.find("L=\"8\""), 5, "L=\"4\""));
    form.Command1->click();
    EXPECT_EQ(form.cmbConfigList->count(), 0);
    const char* refused = "Module do not support info file feature";
    EXPECT_EQ(messages.texts, (std::vector<std::string>{"Module has wrong configuration",
                                                        "File was not found: " + ConfigOptions(), refused, refused}));
}

TEST_F(OptionEditing, ClicksOnBoxesApplyEntriesInPlaceOnceAndClicksOnTextsNothing) {
    QTreeWidgetItem* const optionItem = screen.Item("OPTION00000002");
    EXPECT_TRUE(screen.Item("CONFIGURATION00000000")->isExpanded());
    screen.ClickText("OPTION00000002_VALUE00000000");
    EXPECT_EQ(form.CfgEditedText(), kModuleImage);
    screen.ClickBox("OPTION00000002_VALUE00000002");
    EXPECT_EQ(screen.Item("OPTION00000002")->text(0), "Mode:Auto");
    EXPECT_FALSE(screen.On("OPTION00000002_VALUE00000001"));
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    EXPECT_EQ(screen.Item("OPTION00000002"), optionItem);
    screen.ClickBox("OPTION00000003_VALUE00000000", true);  // twice, Low on once: 02 -> 03
    EXPECT_TRUE(screen.On("OPTION00000003_VALUE00000000"));
    EXPECT_EQ(form.CfgEditedText(), "000000000F32415A");
}

TEST_F(OptionEditing, DoubleClickOpensTheFormAfreshEachTimeAndWritesAGoodValueBack) {
    modal.Then([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Limit");
        EnterValue("21")(dialog);  // above the range
        EXPECT_EQ(IntBox(dialog)->text(), "0000000F");
        Set(dialog, "optDecHex_1");
        Click(dialog, "cmdCancel");
    });
    modal.Then(EnterValue("1A"));  // in "Hex" again
    screen.ClickText("OPTION00000001", true);  // a double click
    EXPECT_EQ(form.CfgEditedText(), kModuleImage);
    screen.ClickText("OPTION00000001", true);
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Wrong value entered"});
    EXPECT_EQ(form.CfgEditedText(), "000000001A21415A");
    EXPECT_EQ(screen.Item("OPTION00000001")->text(0), "Limit:0000001A km/h");
    EXPECT_EQ(form.tvOptions->currentItem(), nullptr);
}

TEST_F(OptionEditing, ListShowsTheChoiceAndSelectAppliesItTypingANameNothing) {
    QLineEdit* field = form.cmbConfigList->lineEdit();
    field->clear();
    QTest::keyClicks(field, "Car");
    QTest::keyClick(field, Qt::Key_Return);
    QFocusEvent left(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(field, &left);
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "as the module left the factory");
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(form.CfgEditedText(), kModuleImage);

    screen.ClickBox("OPTION00000002_VALUE00000000");  // an edit, taken back below
    form.cmbConfigList->setCurrentIndex(2);
    emit form.cmbConfigList->activated(2);
    EXPECT_EQ(form.lblShortInfoCfgName->text(), "Short info for configuration: Car");
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "for cars");
    EXPECT_EQ(form.CfgEditedText(), "000000000F20415A");  // a choice alone changes nothing
    form.cmdSelPredefCfg->click();
    // "Car" locks Mode: a colour of its own and one of the system.
    EXPECT_TRUE(screen.Item("OPTION00000002")->foreground(0).color() == Qt::red);
    const QColor grey = form.tvOptions->palette().color(QPalette::Disabled, QPalette::Text);
    EXPECT_TRUE(screen.Item("OPTION00000002_VALUE00000000")->foreground(0).color() == grey);

    form.cmbConfigList->setCurrentIndex(1);  // its data carry an Id that no entry has
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Something wrong"});
    EXPECT_EQ(form.CfgEditedText(), "0500000000000000");
}

TEST_F(OptionEditing, UndoTakesBackEachChangeOfTheImageAndAReadStartsAfresh) {
    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    const QString edited = form.CfgEditedText().c_str();
    form.cmbConfigList->setCurrentIndex(2);
    form.cmdSelPredefCfg->click();
    std::string chosen = folder.File("module.sbconf");
    ui::SetConfigFileChooser([&](ui::ConfigFileChoice) { return chosen; });
    DeviceInfo module;
    module.InfoFile = TestCatalog();
    module.SN = "SN7";
    WriteConfigFile(chosen, MakeConfigDocument(module, HexToBytes("000000000F22415A")));
    form.mnuOpenConfig->trigger();
    ui::SetConfigFileChooser({});

    form.mnuUndo->trigger();  // the file: the offline run's module is back
    EXPECT_EQ(form.txtSN->text(), "XXXXXXXX");
    form.mnuUndo->trigger();  // "Select"
    EXPECT_EQ(form.CfgEditedText().c_str(), edited);
    EXPECT_FALSE(screen.On("OPTION00000002_VALUE00000001"));
    form.mnuUndo->trigger();  // the box
    EXPECT_EQ(form.CfgEditedText(), kModuleImage);
    EXPECT_EQ(screen.Item("OPTION00000002")->text(0), "Mode:On");
    EXPECT_FALSE(form.mnuUndo->isEnabled());
    form.mnuRedo->trigger();
    EXPECT_EQ(form.CfgEditedText().c_str(), edited);
    form.Command1->click();
    EXPECT_FALSE(form.mnuRedo->isEnabled());
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(OptionEditing, SearchHidesOtherOptionsAndEscapePutsTheTreeBack) {
    screen.Item("OPTION00000002")->setExpanded(true);
    form.tvOptions->setCurrentItem(screen.Item("OPTION00000004"));
    QTest::keyClicks(form.txtSearch, "lamps");
    EXPECT_TRUE(screen.Item("OPTION00000002")->isHidden());
    EXPECT_FALSE(screen.Item("OPTION00000003_VALUE00000001")->isHidden());
    QTest::keyClick(form.txtSearch, Qt::Key_Return);
    EXPECT_EQ(form.tvOptions->currentItem(), screen.Item("OPTION00000003"));
    screen.Item("OPTION00000003")->setExpanded(true);
    QTest::keyClick(form.txtSearch, Qt::Key_Escape);
    EXPECT_FALSE(screen.Item("OPTION00000002")->isHidden());
    EXPECT_TRUE(screen.Item("OPTION00000002")->isExpanded());
    EXPECT_FALSE(screen.Item("OPTION00000003")->isExpanded());
    EXPECT_EQ(form.tvOptions->currentItem(), screen.Item("OPTION00000004"));
    EXPECT_TRUE(form.txtSearch->text().isEmpty());
}

TEST_F(OptionEditing, ChangedOptionsAreMarkedListedAndShownAlone) {
    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    EXPECT_EQ(form.tvOptions->currentItem(), screen.Item("OPTION00000002_VALUE00000000"));  // the mark is no click
    for (const char* key : {"OPTION00000001", "OPTION00000002"})
        EXPECT_EQ(screen.Item(key)->icon(0).isNull(), key[13] == '1') << key;
    EXPECT_THAT(form.txtOptionDetails->toPlainText().toStdString(), ::testing::StartsWith("Name: Mode"));
    form.chkOnlyChanged->setChecked(true);
    EXPECT_TRUE(screen.Item("OPTION00000001")->isHidden());
    EXPECT_FALSE(screen.Item("OPTION00000002")->isHidden());
    int rows = 0;
    modal.Then([&](QDialog& dialog) { rows = dialog.findChild<QTableWidget*>("tblPending")->rowCount(); });
    form.mnuPendingChanges->trigger();
    EXPECT_EQ(rows, 1);
}

TEST_F(MainScreen, OverlongEntriesAreRefusedAndEveryByteOfAStringSurvives) {
    ui::ValueEditForms& forms = form.EditForms();
    modal.Then([](QDialog& dialog) {
        ValueBox(dialog)->setPlainText(QString(40000, QLatin1Char('0')));
        Click(dialog, "cmdOK");
        EXPECT_EQ(ValueBox(dialog)->toPlainText(), "41");
    });
    EXPECT_EQ(forms.EditBin("Key", 1, "41"), "41");
    modal.Then([](QDialog& dialog) {
        ValueBox(dialog)->setPlainText(QString(40000, QLatin1Char('A')));
        Set(dialog, "optHexASCII_0");
        EXPECT_EQ(ValueBox(dialog)->toPlainText(), "5A");
    });
    EXPECT_EQ(forms.EditStr("Tag", 1, "Z"), "Z");

    std::string bytes = "\r\n\r";
    for (int b = 1; b <= 0xFF; ++b) bytes += static_cast<char>(b);
    modal.Then([](QDialog& dialog) {
        Set(dialog, "optHexASCII_0");
        Set(dialog, "optHexASCII_1");
        Click(dialog, "cmdOK");
    });
    EXPECT_EQ(forms.EditStr("Tag", int(bytes.size()), bytes), bytes);
    EXPECT_EQ(messages.texts, std::vector<std::string>(2, "Wrong value entered"));
}

TEST_F(MainScreen, OpenFillsTheScreenAndCompareListsTheChangedOption) {
    std::string chosen;
    ui::SetConfigFileChooser([&](ui::ConfigFileChoice) { return chosen; });
    DeviceInfo module;
    module.InfoFile = TestCatalog();
    module.SN = "SN7";
    emit form.mnuFile->aboutToShow();
    EXPECT_FALSE(form.mnuSaveConfig->isEnabled());  // no working image yet
    chosen = folder.File("module.sbconf");
    WriteConfigFile(chosen, MakeConfigDocument(module, HexToBytes(kModuleImage)));
    form.txtAppInfo->setPlainText("of the last module read");
    form.mnuOpenConfig->trigger();
    EXPECT_EQ(form.txtSN->text(), "SN7");
    EXPECT_TRUE(form.txtAppInfo->toPlainText().isEmpty());  // a file has none
    EXPECT_TRUE(form.windowTitle().contains("module.sbconf"));

    screen.ClickBox("OPTION00000002_VALUE00000000");  // Off
    std::vector<std::string> seen;  // rows; option, this, that of the first; rows with all options
    modal.Then([&](QDialog& dialog) {
        auto& compare = static_cast<ui::frmCompareConfig&>(dialog);
        seen.push_back(std::to_string(compare.tblOptions->rowCount()));
        for (int column = 0; column < 3; ++column) seen.push_back(compare.tblOptions->item(0, column)->text().toStdString());
        compare.chkAllOptions->setChecked(true);
        seen.push_back(std::to_string(compare.tblOptions->rowCount()));
    });
    emit form.mnuFile->aboutToShow();  // the menu opens
    form.mnuCompareReaded->trigger();
    EXPECT_EQ(seen, (std::vector<std::string>{"1", "Mode", "Off", "On", "7"}));

    // A file that cannot be taken changes nothing on the screen, and says why.
    chosen = folder.File("other.sbconf");
    TempFolder::Write(chosen, "[1e999]");
    form.mnuOpenConfig->trigger();
    EXPECT_THAT(messages.texts, ::testing::ElementsAre(::testing::StartsWith(chosen + ": ")));
    EXPECT_EQ(form.txtSN->text(), "SN7");
    ui::SetConfigFileChooser({});
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
    EXPECT_TRUE(form.close());
    ui::SetUpdateScreens({});
    EXPECT_EQ(unloaded, (std::vector<std::string>{"frmFileCtrl", "frmTarnlift", "frmIntValEdit", "frmBinValEdit",
                                                  "frmStrValEdit", "frmPortControl"}));
}

}  // namespace
}  // namespace sb::test

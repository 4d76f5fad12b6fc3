// The main screen without a module: its start, the offline run from a
// catalog file, and its end.
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "ScreenTesting.h"
#include "TestCatalog.h"
#include "mainscreen/UpdateScreens.h"

namespace sb::test {
namespace {

TEST(MainScreen, StartsWithOnlyReadInfoAndBoxesThatOnlyShow) {
    Screen screen;
    ui::frmDeviceCofigurator& f = screen.form;
    for (QPushButton* button : f.findChildren<QPushButton*>())
        EXPECT_EQ(button->isEnabled(), button == f.cmdRdDevInfo || button == f.Command1) << button->text().toStdString();
    for (QWidget* box : f.findChildren<QPlainTextEdit*>()) EXPECT_FALSE(box->isEnabled());
    for (QWidget* box : f.findChildren<QLineEdit*>()) EXPECT_FALSE(box->isEnabled());
    EXPECT_TRUE(f.Command1->isHidden());
    EXPECT_TRUE(f.PortControl().isHidden());  // loaded at the start
}

TEST(OfflineRun, FillsTheScreenLikeAReadOrSaysWhyAndClearsIt) {
    CatalogFolder folder(kTestCatalog);
    Screen screen(folder.Path());
    ui::frmDeviceCofigurator& form = screen.form;
    form.txtAppInfo->setPlainText("from before");
    form.mnuOfflineRead->trigger();
    EXPECT_EQ(form.txtPName->text(), "Dummy Module");
    EXPECT_EQ(form.txtAppInfo->toPlainText(), "from before");
    EXPECT_EQ(form.txtAppConfig->toPlainText(), "00000000 0F 21 41 5A");  // as the file writes it
    EXPECT_EQ(form.cmbConfigList->currentText(), "READED CONFIG");
    EXPECT_EQ(screen.Text("CONFIGURATION00000000"), "Module");
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
    EXPECT_FALSE(form.cmdFWUpdate->isEnabled());

    std::string text = kTestCatalog;
    const struct {
        std::string catalog;  // empty: no file at all
        std::vector<std::string> messages;
    } failures[] = {
        {"", {"File was not found: " + folder.Path(), "Module do not support info file feature"}},
        {std::string(text).replace(text.find("L=\"8\""), 5, "L=\"4\""), {"Module do not support info file feature"}},
    };
    for (const auto& failure : failures) {
        form.Command1->click();
        folder.Write(failure.catalog);
        MessageRecorder messages;
        form.Command1->click();
        EXPECT_EQ(messages.texts, failure.messages);
        EXPECT_EQ(form.cmbConfigList->count(), 0);
        EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
        EXPECT_EQ(screen.CfgEdited(), "");
        EXPECT_FALSE(form.cmdWriteConfig->isEnabled());
        folder.Write(kTestCatalog);
    }
}

TEST(MainScreen, ClosingUnloadsTheOtherFormsInTheirOrder) {
    std::vector<std::string> unloaded;
    ui::SetUpdateScreens({nullptr, [&] { unloaded.push_back("frmFileCtrl"); }, [&] { unloaded.push_back("frmTarnlift"); }});
    {
        Screen screen;
        ModalScript modal;  // each form ends as with Cancel
        ui::ValueEditForms& forms = screen.form.EditForms();
        forms.EditInt("", "", "", "");
        forms.EditBin("", 0, "");
        forms.EditStr("", 0, "");
        for (QObject* form : std::initializer_list<QObject*>{forms.IntForm(), forms.BinForm(), forms.StrForm(),
                                                             &screen.form.PortControl()})
            QObject::connect(form, &QObject::destroyed, [&, name = form->objectName().toStdString()] { unloaded.push_back(name); });
        QSignalSpy ended(&screen.form, &ui::frmDeviceCofigurator::unloaded);
        EXPECT_TRUE(screen.form.close());
        EXPECT_EQ(ended.count(), 1);
    }
    ui::SetUpdateScreens({});
    EXPECT_EQ(unloaded, (std::vector<std::string>{"frmFileCtrl", "frmTarnlift", "frmIntValEdit", "frmBinValEdit",
                                                  "frmStrValEdit", "frmPortControl"}));
}

}  // namespace
}  // namespace sb::test

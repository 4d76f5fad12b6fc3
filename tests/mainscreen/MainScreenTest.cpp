// The main screen without a module: its start, the offline run from a
// catalog file, and its end.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <filesystem>

#include "ScreenTesting.h"
#include "mainscreen/UpdateScreens.h"

namespace sb::test {
namespace {

using MainScreen = ScreenTest;

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

    const std::string& text = TestCatalog();
    const struct {
        std::string catalog;  // empty: no file at all
        std::vector<std::string> messages;
    } failures[] = {
        {"", {"File was not found: " + ConfigOptions(), "Module do not support info file feature"}},
        {std::string(text).replace(text.find("L=\"8\""), 5, "L=\"4\""), {"Module do not support info file feature"}},
    };
    for (const auto& failure : failures) {
        form.Command1->click();
        std::filesystem::remove(ConfigOptions());
        if (!failure.catalog.empty()) TempFolder::Write(ConfigOptions(), failure.catalog);
        messages.texts.clear();
        form.Command1->click();
        EXPECT_EQ(messages.texts, failure.messages);
        EXPECT_EQ(form.cmbConfigList->count(), 0);
        EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
        EXPECT_EQ(screen.CfgEdited(), "");
        EXPECT_FALSE(form.cmdWriteConfig->isEnabled());
        TempFolder::Write(ConfigOptions(), TestCatalog());
    }
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

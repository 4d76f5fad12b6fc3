// The main screen without a module: its controls, the offline run from a
// catalog file, and its end.
#include <gtest/gtest.h>

#include <QMenuBar>
#include <QSignalSpy>

#include "ScreenTesting.h"
#include "TestCatalog.h"
#include "mainscreen/UpdateScreens.h"

namespace sb::test {
namespace {

std::string Shown(const QLineEdit* box) { return box->text().toStdString(); }
std::string Shown(const QPlainTextEdit* box) { return box->toPlainText().toStdString(); }

TEST(MainScreen, StartsWithOnlyReadInfo) {
    Screen screen;
    ui::frmDeviceCofigurator& form = screen.form;
    EXPECT_EQ(form.objectName(), "frmDeviceCofigurator");
    EXPECT_EQ(form.windowTitle(), "Device Info");

    const struct {
        const char* name;
        const char* caption;
        bool enabled;
    } buttons[] = {
        {"cmdRdDevInfo", "Read info", true}, {"cmdFWUpdate", "Update", false},
        {"cmdWriteConfig", "Write", false},  {"cmdSelPredefCfg", "Select", false},
        {"Command1", "Read info", true},
    };
    for (const auto& b : buttons) {
        auto* button = form.findChild<QPushButton*>(b.name);
        ASSERT_NE(button, nullptr) << b.name;
        EXPECT_EQ(button->text(), b.caption);
        EXPECT_EQ(button->isEnabled(), b.enabled) << b.name;
    }
    EXPECT_TRUE(form.Command1->isHidden());
    EXPECT_FALSE(form.cmbConfigList->isEnabled());

    // The boxes only show: nobody types in them.
    for (const char* box : {"txtSN", "txtPDate", "txtPVer", "txtPName", "txtVIN", "txtFWName", "txtFWVer", "txtHWVer",
                            "txtAppInfo", "txtConfigInfo", "txtAppConfig", "txtCfgEdited"}) {
        auto* widget = form.findChild<QWidget*>(box);
        ASSERT_NE(widget, nullptr) << box;
        EXPECT_FALSE(widget->isEnabled()) << box;
    }
    for (const char* name : {"tvOptions", "StatusBar", "cmbConfigList"}) EXPECT_NE(form.findChild<QWidget*>(name), nullptr);

    // The selection dialog is loaded, hidden, at the start.
    EXPECT_EQ(form.PortControl().objectName(), "frmPortControl");
    EXPECT_TRUE(form.PortControl().isHidden());
}

TEST(OfflineRun, FillsTheScreenLikeARead) {
    CatalogFolder catalog(kTestCatalog);
    Screen screen(catalog.Path());
    MessageRecorder messages;
    ui::frmDeviceCofigurator& form = screen.form;
    form.txtAppInfo->setPlainText("from before");
    form.mnuOfflineRead->trigger();

    EXPECT_TRUE(messages.texts.empty());
    const std::pair<const QLineEdit*, const char*> boxes[] = {
        {form.txtSN, "XXXXXXXX"},         {form.txtPVer, "X.XX.XX"},
        {form.txtPName, "Dummy Module"},  {form.txtPDate, "XX.XX.XXXX"},
        {form.txtVIN, "XXXXXXXXXXXXXXXXX"}, {form.txtFWName, "Dummy Firmware"},
        {form.txtFWVer, "X.XX.XX"},       {form.txtHWVer, "Dummy Hardware"},
    };
    for (const auto& [box, text] : boxes) EXPECT_EQ(Shown(box), text) << box->objectName().toStdString();
    EXPECT_EQ(Shown(form.txtAppInfo), "from before");
    // The configuration as the file writes it, blanks and all.
    EXPECT_EQ(Shown(form.txtAppConfig), "00000000 0F 21 41 5A");
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_EQ(Shown(form.txtCfgEdited), kModuleImage);
    EXPECT_EQ(form.Device().PredefCfgs.Items.back().Name, "READED CONFIG");
    EXPECT_EQ(form.Device().PName, "Dummy Module");
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
    EXPECT_TRUE(form.cmdSelPredefCfg->isEnabled());
    EXPECT_TRUE(form.cmbConfigList->isEnabled());
    EXPECT_FALSE(form.cmdFWUpdate->isEnabled());
    EXPECT_EQ(screen.Text("CONFIGURATION00000000"), "Module");
}

TEST(OfflineRun, EachRoadOfFailureSaysWhyAndClearsTheScreen) {
    const std::string good = kTestCatalog;
    auto replaced = [&](const std::string& from, const std::string& to) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const struct {
        const char* name;
        std::string catalog;  // empty: no file at all
        std::vector<std::string> messages;
        bool placeholders;
        int entries;  // in the list afterwards
    } cases[] = {
        {"no file", "", {"File was not found: PATH", "Module do not support info file feature"}, false, 0},
        {"catalog refused", replaced("L=\"8\"", "L=\"4\""), {"Module do not support info file feature"}, true, 0},
        // The attribute must read "0" exactly; the last entry becomes the
        // working image.
        {"no module configuration", replaced("I=\"0\"", "I=\"00\""), {"Module has wrong configuration"}, true, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CatalogFolder folder(c.catalog.empty() ? good : c.catalog);
        const std::string path = c.catalog.empty() ? folder.Path() + ".missing" : folder.Path();
        CatalogFolder earlier(kTestCatalog);
        Screen screen(earlier.Path());
        screen.form.Command1->click();  // a good run first: the failing one must clear it
        ui::frmDeviceCofigurator failing(path);
        failing.show();
        MessageRecorder messages;
        failing.Command1->click();

        std::vector<std::string> expected = c.messages;
        for (std::string& text : expected)
            if (auto at = text.find("PATH"); at != std::string::npos) text.replace(at, 4, path);
        EXPECT_EQ(messages.texts, expected);
        EXPECT_EQ(failing.cmbConfigList->count(), c.entries);
        EXPECT_EQ(failing.txtSN->text() == "XXXXXXXX", c.placeholders);
        EXPECT_FALSE(failing.cmdFWUpdate->isEnabled());
        if (c.entries == 0) {
            EXPECT_EQ(failing.tvOptions->topLevelItemCount(), 0);
            EXPECT_EQ(failing.CfgEditedText(), "");
            EXPECT_FALSE(failing.cmdWriteConfig->isEnabled());
            EXPECT_FALSE(failing.cmbConfigList->isEnabled());
        } else {
            EXPECT_EQ(failing.cmbConfigList->currentText(), "Car");
            EXPECT_EQ(failing.CfgEditedText(), kCarImage);
            EXPECT_EQ(failing.tvOptions->topLevelItem(0)->text(0), "Car");
        }
    }
}

TEST(MainScreen, ClosingUnloadsTheOtherFormsInTheirOrder) {
    CatalogFolder catalog(kTestCatalog);
    std::vector<std::string> unloaded;
    ui::SetUpdateScreens({nullptr, [&] { unloaded.push_back("frmFileCtrl"); },
                          [&] { unloaded.push_back("frmTarnlift"); }});
    {
        Screen screen(catalog.Path());
        ModalScript modal;
        screen.form.Command1->click();
        for (const char* key : {"OPTION00000001", "OPTION00000004", "OPTION00000005"}) screen.DoubleClick(key);
        ASSERT_EQ(modal.shown.size(), 3u);
        ui::ValueEditForms& forms = screen.form.EditForms();
        for (QObject* form : std::initializer_list<QObject*>{forms.IntForm(), forms.BinForm(), forms.StrForm(),
                                                             &screen.form.PortControl()})
            QObject::connect(form, &QObject::destroyed, [&unloaded, name = form->objectName().toStdString()] {
                unloaded.push_back(name);
            });
        QSignalSpy ended(&screen.form, &ui::frmDeviceCofigurator::unloaded);
        EXPECT_TRUE(screen.form.close());
        EXPECT_EQ(ended.count(), 1);
    }
    ui::SetUpdateScreens({});
    const std::vector<std::string> order = {"frmFileCtrl",   "frmTarnlift",   "frmIntValEdit",
                                            "frmBinValEdit", "frmStrValEdit", "frmPortControl"};
    EXPECT_EQ(unloaded, order);
}

}  // namespace
}  // namespace sb::test

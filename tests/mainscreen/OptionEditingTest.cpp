// The option tree, the list of configurations and the value edit forms on
// the screen, filled by the offline run: mouse and keyboard reach the tree's
// events and the list, a scripted technician works the forms, and the tree
// shows what they did.
#include <gtest/gtest.h>

#include <QRadioButton>
#include <QTest>

#include "ScreenTesting.h"
#include "ui/Latin1.h"

namespace sb::test {
namespace {

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

struct OptionEditing : ScreenTest {
    OptionEditing() { form.Command1->click(); }
};

TEST_F(OptionEditing, ClicksOnBoxesApplyEntriesInPlaceOnceAndClicksOnTextsNothing) {
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

TEST_F(OptionEditing, DoubleClickOpensTheFormAndWritesItsValueBack) {
    modal.Then(EnterValue("1A"));
    screen.DoubleClick("OPTION00000001");
    EXPECT_EQ(modal.shown, std::vector<std::string>{"frmIntValEdit"});
    EXPECT_EQ(screen.CfgEdited(), "000000001A21415A");
    EXPECT_EQ(screen.Text("OPTION00000001"), "Limit:0000001A km/h");
    EXPECT_EQ(form.tvOptions->currentItem(), nullptr);
}

TEST_F(OptionEditing, ListShowsTheChoiceAndSelectAppliesIt) {
    screen.ClickBox("OPTION00000002_VALUE00000000");  // an edit, taken back below
    form.cmbConfigList->setCurrentIndex(2);
    emit form.cmbConfigList->activated(2);
    EXPECT_EQ(form.lblShortInfoCfgName->text(), "Short info for configuration: Car");
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "for cars");
    EXPECT_EQ(screen.CfgEdited(), "000000000F20415A");  // a choice alone changes nothing
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(screen.Text("CONFIGURATION00000002"), "Car");
    const std::pair<const char*, QColor> colours[] = {  // "Car" locks Mode
        {"OPTION00000001", Qt::black},
        {"OPTION00000002", Qt::red},
        {"OPTION00000000_VALUE00000001", Qt::blue},
        {"OPTION00000002_VALUE00000000", form.tvOptions->palette().color(QPalette::Disabled, QPalette::Text)}};
    for (const auto& [key, colour] : colours) EXPECT_TRUE(screen.Item(key)->foreground(0).color() == colour) << key;
    EXPECT_TRUE(messages.texts.empty());

    form.cmbConfigList->setCurrentIndex(1);  // its data carry an Id that no entry has
    form.cmdSelPredefCfg->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Something wrong"});
    EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
    EXPECT_EQ(screen.CfgEdited(), "0500000000000000");
}

TEST_F(OptionEditing, TypingAnEntrysNameInTheListChangesNothing) {
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


void Set(QDialog& dialog, const char* button) { dialog.findChild<QRadioButton*>(button)->setChecked(true); }

TEST_F(OptionEditing, FormRefusalKeepsTheLastGoodValueAndEachUseStartsAfresh) {
    modal.Then([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Limit");
        EnterValue("21")(dialog);  // above the range
        EXPECT_EQ(Box(dialog), "0000000F");
        Set(dialog, "optDecHex_1");
        Click(dialog, "cmdCancel");
    });
    modal.Then(EnterValue("11"));  // in "Hex" again
    ui::ValueEditForms& forms = form.EditForms();
    EXPECT_EQ(forms.EditInt("Limit", "00000010", "00000020", "0000000F"), "0000000F");
    EXPECT_EQ(forms.EditInt("Limit", "00000010", "00000020", "0000000F"), "11");
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Wrong value entered"});
}

TEST_F(OptionEditing, FormsRefuseOverlongEntriesAndKeepEveryByteOfAString) {
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

}  // namespace
}  // namespace sb::test

// The option tree and its edits, on a screen filled by the offline run from
// a catalog file: no module is needed.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTest>

#include "ScreenTesting.h"
#include "TestCatalog.h"

namespace sb::test {
namespace {

class OptionEditing : public ::testing::Test {
protected:
    OptionEditing() : catalog_(kTestCatalog), screen(catalog_.Path()) {
        screen.form.Command1->click();
        messages.texts.clear();
    }

    void Select(int entry) {
        screen.form.cmbConfigList->setCurrentIndex(entry);
        emit screen.form.cmbConfigList->activated(entry);
        screen.form.cmdSelPredefCfg->click();
    }

    CatalogFolder catalog_;
    Screen screen;
    MessageRecorder messages;
    ModalScript modal;
};

TEST_F(OptionEditing, TreeShowsTheImageUnderItsConfigurationsMasks) {
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_TRUE(screen.Item("CONFIGURATION00000000")->isExpanded());
    EXPECT_EQ(screen.Text("CONFIGURATION00000000"), "Module");
    EXPECT_EQ(screen.Tag("CONFIGURATION00000000"), "00000000");
    EXPECT_EQ(screen.Item("CONFIGURATION00000000")->childCount(), 6);  // Hidden has no node
    EXPECT_EQ(screen.form.Tree().Find("OPTION00000006"), nullptr);

    const struct {
        const char* key;
        const char* text;
        const char* tag;
    } options[] = {
        {"OPTION00000001", "Limit:0000000F km/h", "0000000F"},
        {"OPTION00000002", "Mode:On", "00000001"},
        {"OPTION00000003", "Lamps:02", "02"},
        {"OPTION00000005", "Tag:Z", "Z"},
    };
    for (const auto& o : options) {
        EXPECT_EQ(screen.Text(o.key), o.text);
        EXPECT_EQ(screen.Tag(o.key), o.tag);
        EXPECT_EQ(screen.Color(o.key), "black") << o.key;
    }
    const struct {
        const char* key;
        const char* text;
        bool on;
        const char* color;
    } values[] = {
        {"OPTION00000002_VALUE00000000", "Off", false, "black"},
        {"OPTION00000002_VALUE00000001", "On", true, "blue"},
        {"OPTION00000003_VALUE00000001", "High", true, "blue"},
        {"OPTION00000003_VALUE00000002", "Both", false, "black"},
    };
    for (const auto& v : values) {
        EXPECT_EQ(screen.Text(v.key), v.text);
        EXPECT_EQ(screen.On(v.key), v.on) << v.key;
        EXPECT_EQ(screen.Color(v.key), v.color) << v.key;
    }
    // Every node carries a check box.
    EXPECT_EQ(screen.Item("OPTION00000001")->flags() & Qt::ItemIsUserCheckable, Qt::ItemIsUserCheckable);
    // The build's own ticks are no clicks, and a click on a node's text,
    // away from its box, changes nothing.
    screen.ClickText("OPTION00000002_VALUE00000000");
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000001"));
}

TEST_F(OptionEditing, ListEntryReplacesTheTickedOne) {
    QTreeWidgetItem* const optionItem = screen.Item("OPTION00000002");
    screen.ClickBox("OPTION00000002_VALUE00000002");
    EXPECT_EQ(screen.CfgEdited(), "000000000F22415A");
    EXPECT_EQ(screen.Text("OPTION00000002"), "Mode:Auto");
    EXPECT_FALSE(screen.On("OPTION00000002_VALUE00000001"));
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    // Updated in place: the same nodes, colours as the configuration says.
    EXPECT_EQ(screen.Item("OPTION00000002"), optionItem);
    EXPECT_EQ(screen.Color("OPTION00000002_VALUE00000001"), "blue");

    // The ticked entry can't be switched off, only replaced.
    screen.ClickBox("OPTION00000002_VALUE00000002");
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    EXPECT_EQ(screen.CfgEdited(), "000000000F22415A");
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(OptionEditing, MembersSwitchByTheirMasks) {
    screen.ClickBox("OPTION00000003_VALUE00000000");  // Low on: 02 -> 03, so Both is on too
    EXPECT_EQ(screen.Text("OPTION00000003"), "Lamps:03");
    EXPECT_EQ(screen.CfgEdited(), "000000000F31415A");
    for (const char* member : {"OPTION00000003_VALUE00000000", "OPTION00000003_VALUE00000001",
                               "OPTION00000003_VALUE00000002"})
        EXPECT_TRUE(screen.On(member)) << member;

    screen.ClickBox("OPTION00000003_VALUE00000002");  // Both off clears both bits
    EXPECT_EQ(screen.Text("OPTION00000003"), "Lamps:00");
    EXPECT_EQ(screen.CfgEdited(), "000000000F01415A");
    for (const char* member : {"OPTION00000003_VALUE00000000", "OPTION00000003_VALUE00000001",
                               "OPTION00000003_VALUE00000002"})
        EXPECT_FALSE(screen.On(member)) << member;
}

TEST_F(OptionEditing, LockedOptionsKeepTheConfigurationsValue) {
    Select(2);
    ASSERT_EQ(screen.CfgEdited(), kCarImage);
    EXPECT_EQ(screen.Text("CONFIGURATION00000002"), "Car");
    EXPECT_EQ(screen.Color("OPTION00000002"), "red");
    EXPECT_EQ(screen.Color("OPTION00000002_VALUE00000002"), "red");
    EXPECT_EQ(screen.Color("OPTION00000002_VALUE00000000"), "gray");
    EXPECT_EQ(screen.Color("OPTION00000001"), "black");

    // Another entry of a locked list is refused without a word.
    screen.ClickBox("OPTION00000002_VALUE00000000");
    EXPECT_FALSE(screen.On("OPTION00000002_VALUE00000000"));
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    EXPECT_EQ(screen.form.tvOptions->currentItem(), nullptr);
    EXPECT_EQ(screen.CfgEdited(), kCarImage);
    // Its own entry is accepted like any other.
    screen.ClickBox("OPTION00000002_VALUE00000002");
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
    EXPECT_EQ(screen.CfgEdited(), kCarImage);

    // A locked bit field falls back to the configuration's value.
    screen.ClickBox("OPTION00000003_VALUE00000000");
    EXPECT_FALSE(screen.On("OPTION00000003_VALUE00000000"));
    EXPECT_EQ(screen.Text("OPTION00000003"), "Lamps:00");
    EXPECT_EQ(screen.CfgEdited(), kCarImage);

    // No form opens for a locked option.
    screen.DoubleClick("OPTION00000002");
    EXPECT_TRUE(modal.shown.empty());
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(OptionEditing, BoxesOfRootAndOptionsHoldNoState) {
    screen.ClickBox("CONFIGURATION00000000");
    EXPECT_EQ(screen.Item("CONFIGURATION00000000")->checkState(0), Qt::Unchecked);
    EXPECT_EQ(screen.form.tvOptions->currentItem(), nullptr);

    // An integer with a list opens no form; its box is emptied.
    screen.ClickBox("OPTION00000002");
    EXPECT_EQ(screen.Item("OPTION00000002")->checkState(0), Qt::Unchecked);
    EXPECT_TRUE(modal.shown.empty());

    // The box of an integer without a list opens its form, like a double click.
    modal.Then(EnterValue("12"));
    screen.ClickBox("OPTION00000001");
    EXPECT_EQ(modal.shown, std::vector<std::string>{"frmIntValEdit"});
    EXPECT_EQ(screen.Item("OPTION00000001")->checkState(0), Qt::Unchecked);
    EXPECT_EQ(screen.CfgEdited(), "000000001221415A");

    // The box of a BIN option opens nothing.
    screen.ClickBox("OPTION00000004");
    EXPECT_EQ(modal.shown.size(), 1u);
    EXPECT_EQ(screen.CfgEdited(), "000000001221415A");
}

TEST_F(OptionEditing, DoubleClickEditsThroughEachForm) {
    const struct {
        const char* key;
        ModalScript::Step step;
        const char* form;
        const char* image;
        const char* text;
    } cases[] = {
        {"OPTION00000001", EnterValue("1A"), "frmIntValEdit", "000000001A21415A", "Limit:0000001A km/h"},
        {"OPTION00000001", EnterValue("16", "cmdOK", "optDecHex_1"), "frmIntValEdit", "000000001021415A",
         "Limit:00000010 km/h"},
        {"OPTION00000004", EnterValue("0x7e"), "frmBinValEdit", "0000000010217E5A", "Key:7E"},
        {"OPTION00000005", EnterValue("Q"), "frmStrValEdit", "0000000010217E51", "Tag:Q"},
        {"OPTION00000005", EnterValue("52", "cmdOK", "optHexASCII_0"), "frmStrValEdit", "0000000010217E52",
         "Tag:R"},
    };
    for (const auto& c : cases) {
        modal.Then(c.step);
        screen.DoubleClick(c.key);
        EXPECT_EQ(modal.shown.back(), c.form);
        EXPECT_EQ(screen.CfgEdited(), c.image) << c.key;
        EXPECT_EQ(screen.Text(c.key), c.text);
        EXPECT_EQ(screen.form.tvOptions->currentItem(), nullptr);
    }
    EXPECT_EQ(modal.shown.size(), std::size(cases));
    EXPECT_TRUE(messages.texts.empty());
    // The forms live on between uses, and their captions name the option.
    EXPECT_EQ(screen.form.EditForms().IntForm()->windowTitle(), "Limit");
    EXPECT_EQ(screen.form.EditForms().StrForm()->windowTitle(), "Tag");
}

TEST_F(OptionEditing, CancelAndRefusedEntriesLeaveTheImage) {
    modal.Then([](QDialog& form) {
        auto* value = form.findChild<QLineEdit*>("txtOptValue");
        EXPECT_EQ(form.findChild<QLineEdit*>("txtMin")->text(), "00000010");
        EXPECT_EQ(form.findChild<QLineEdit*>("txtMax")->text(), "00000020");
        EXPECT_EQ(value->text(), "0000000F");
        value->setText("21");
        Click(form, "cmdOK");  // above the range: refused, the box shows the last good value
        EXPECT_EQ(value->text(), "0000000F");
        Click(form, "cmdCancel");
    });
    screen.DoubleClick("OPTION00000001");
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Wrong value entered"});
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_EQ(screen.Text("OPTION00000001"), "Limit:0000000F km/h");

    // The next opening is in "Hex" again, even after a use in "Dec".
    modal.Then(EnterValue("", "cmdCancel", "optDecHex_1"));
    screen.DoubleClick("OPTION00000001");
    modal.Then([](QDialog& form) {
        EXPECT_TRUE(form.findChild<QRadioButton*>("optDecHex_0")->isChecked());
        EXPECT_EQ(form.findChild<QLineEdit*>("txtOptValue")->text(), "0000000F");
        Click(form, "cmdCancel");
    });
    screen.DoubleClick("OPTION00000001");

    // A refused BIN entry, then Cancel.
    modal.Then([](QDialog& form) {
        EXPECT_EQ(form.findChild<QLineEdit*>("txtLen")->text(), " 1");
        form.findChild<QPlainTextEdit*>("txtValue")->setPlainText("01 02");
        Click(form, "cmdOK");
        EXPECT_EQ(form.findChild<QPlainTextEdit*>("txtValue")->toPlainText(), "41");
        Click(form, "cmdCancel");
    });
    screen.DoubleClick("OPTION00000004");
    EXPECT_EQ(messages.texts.size(), 2u);
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
}

TEST_F(OptionEditing, DoubleClickOnRootOrValueOpensNothing) {
    screen.DoubleClick("OPTION00000002_VALUE00000000");
    EXPECT_EQ(screen.form.tvOptions->currentItem(), screen.Item("OPTION00000002_VALUE00000000"));
    screen.DoubleClick("CONFIGURATION00000000");
    EXPECT_EQ(screen.form.tvOptions->currentItem(), nullptr);
    screen.DoubleClick("OPTION00000003");  // a bit field
    EXPECT_TRUE(modal.shown.empty());
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
}

TEST_F(OptionEditing, SelectAppliesAWholeConfiguration) {
    ui::frmDeviceCofigurator& form = screen.form;
    ASSERT_EQ(form.cmbConfigList->count(), 4);
    EXPECT_EQ(form.cmbConfigList->itemText(3), "READED CONFIG");
    EXPECT_EQ(form.cmbConfigList->currentIndex(), 3);
    EXPECT_EQ(form.lblShortInfoCfgName->text(), "Short info for configuration: READED CONFIG");
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "as the module left the factory");

    screen.ClickBox("OPTION00000002_VALUE00000000");  // an edit, taken back below
    form.cmbConfigList->setCurrentIndex(2);
    emit form.cmbConfigList->activated(2);
    EXPECT_EQ(form.lblShortInfoCfgName->text(), "Short info for configuration: Car");
    EXPECT_EQ(form.txtConfigInfo->toPlainText(), "for cars");
    EXPECT_EQ(screen.CfgEdited(), "000000000F20415A");  // a choice alone changes nothing

    form.cmdSelPredefCfg->click();
    EXPECT_EQ(screen.CfgEdited(), kCarImage);
    EXPECT_EQ(form.Tree().Find("CONFIGURATION00000000"), nullptr);
    EXPECT_EQ(screen.Text("OPTION00000001"), "Limit:00000014 km/h");

    Select(3);
    EXPECT_EQ(screen.CfgEdited(), kModuleImage);
    EXPECT_EQ(screen.Text("CONFIGURATION00000000"), "Module");
    EXPECT_TRUE(messages.texts.empty());

    // An entry whose data carry an Id that no entry has.
    Select(1);
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Something wrong"});
    EXPECT_EQ(form.tvOptions->topLevelItemCount(), 0);
    EXPECT_EQ(screen.CfgEdited(), "0500000000000000");
    EXPECT_TRUE(form.cmdWriteConfig->isEnabled());
}

TEST_F(OptionEditing, EditOfTheIdMovesTheTreeToThatConfiguration) {
    screen.ClickBox("OPTION00000000_VALUE00000001");  // Type: Car, Id 00000004
    EXPECT_EQ(screen.CfgEdited(), "040000000F21415A");
    EXPECT_EQ(screen.Text("CONFIGURATION00000002"), "Car");
    EXPECT_EQ(screen.Color("OPTION00000002"), "red");
}

}  // namespace
}  // namespace sb::test

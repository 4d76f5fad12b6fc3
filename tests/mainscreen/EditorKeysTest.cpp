// The editor worked from the keyboard, and the width of a form for its
// title: that the keys reach the tree's events and the main screen's actions.
#include <filesystem>

#include "ScreenTesting.h"
#include "mainscreen/ConfigFileChooser.h"

namespace sb::test {
namespace {

struct EditorKeys : ScreenTest {
    EditorKeys() {
        form.Command1->click();
        form.tvOptions->setFocus();
    }
    void Key(const std::string& node, Qt::Key key) {
        form.tvOptions->setCurrentItem(screen.Item(node));
        QTest::keyClick(form.tvOptions, key);
    }
};

TEST_F(EditorKeys, ReturnOpensTheOptionsFormAndTypingFindsAnOptionByName) {
    modal.Then([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Limit");
        dialog.findChild<QLineEdit*>("txtOptValue")->setText("12");
        Click(dialog, "cmdOK");
    });
    Key("OPTION00000001", Qt::Key_Return);
    EXPECT_EQ(form.CfgEditedText(), "000000001221415A");
    QTest::keyClicks(form.tvOptions, "la");
    EXPECT_EQ(form.tvOptions->currentItem(), screen.Item("OPTION00000003"));
}

TEST_F(EditorKeys, SpaceTicksABoxOnceAndLeavesNothingForTheNextClick) {
    Key("OPTION00000002_VALUE00000002", Qt::Key_Space);
    EXPECT_EQ(form.CfgEditedText(), "000000000F22415A");
    screen.ClickText("OPTION00000002_VALUE00000000");
    EXPECT_EQ(form.CfgEditedText(), "000000000F22415A");
    EXPECT_TRUE(screen.On("OPTION00000002_VALUE00000002"));
}

TEST_F(EditorKeys, CtrlSSavesWithoutTheMenuOpenedAndTheBarSaysWhere) {
    const std::string path = folder.File("saved.sbconf");
    ui::SetConfigFileChooser([&](ui::ConfigFileChoice) { return path; });
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    QTest::keyClick(&form, Qt::Key_S, Qt::ControlModifier);
    ui::SetConfigFileChooser({});
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_TRUE(form.lblSavedTo->text().endsWith("saved.sbconf"));
}

TEST_F(EditorKeys, ALongTitleWidensItsForm) {
    const std::string name(40, 'W');
    int wanted = 0, width = 0;
    modal.Then([&](QDialog& dialog) {
        dialog.show();
        QApplication::processEvents();
        QFont bold = dialog.font();
        bold.setBold(true);
        wanted = QFontMetrics(bold).horizontalAdvance(dialog.windowTitle());
        width = dialog.width();
        dialog.hide();
    });
    form.EditForms().EditInt(name, "0", "1", "0");
    EXPECT_GT(width, wanted);
}

}  // namespace
}  // namespace sb::test

// The value edit forms as the tree's events use them: filled, shown, worked
// by a scripted technician, and read back through EditValue.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "ScreenTesting.h"
#include "ui/Latin1.h"

namespace sb::test {
namespace {

struct ValueForms : ::testing::Test {
    ui::ValueEditForms forms = (Application(), ui::ValueEditForms());
    ModalScript modal;
    MessageRecorder messages;
};

std::string Box(QDialog& form) {
    if (auto* line = form.findChild<QLineEdit*>("txtOptValue")) return ui::Bytes(line->text());
    return ui::Bytes(form.findChild<QPlainTextEdit*>("txtValue")->toPlainText());
}

void Set(QDialog& form, const char* button) { form.findChild<QRadioButton*>(button)->setChecked(true); }

TEST_F(ValueForms, RefusalKeepsTheLastGoodValueAndEachUseStartsAfresh) {
    modal.Then([](QDialog& form) {
        EXPECT_EQ(form.windowTitle(), "Limit");
        EnterValue("21")(form);  // above the range
        EXPECT_EQ(Box(form), "0000000F");
        Set(form, "optDecHex_1");
        Click(form, "cmdCancel");
    });
    modal.Then(EnterValue("11"));  // in "Hex" again
    EXPECT_EQ(forms.EditInt("Limit", "00000010", "00000020", "0000000F"), "0000000F");
    EXPECT_EQ(forms.EditInt("Limit", "00000010", "00000020", "0000000F"), "11");
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Wrong value entered"});
}

TEST_F(ValueForms, OverlongEntriesAreRefusedAndEveryByteOfAStringSurvives) {
    modal.Then([](QDialog& form) {
        EnterValue(std::string(40000, '0'))(form);
        EXPECT_EQ(Box(form), "41");
    });
    EXPECT_EQ(forms.EditBin("Key", 1, "41"), "41");
    modal.Then([](QDialog& form) {
        form.findChild<QPlainTextEdit*>("txtValue")->setPlainText(QString(40000, QLatin1Char('A')));
        Set(form, "optHexASCII_0");
        EXPECT_EQ(Box(form), "5A");
    });
    EXPECT_EQ(forms.EditStr("Tag", 1, "Z"), "Z");
    EXPECT_EQ(messages.texts, std::vector<std::string>(2, "Wrong value entered"));

    std::string bytes = "\r\n\r";
    for (int b = 1; b <= 0xFF; ++b) bytes += static_cast<char>(b);
    modal.Then([](QDialog& form) { Click(form, "cmdCancel"); });
    modal.Then([](QDialog& form) { Click(form, "cmdOK"); });
    modal.Then([](QDialog& form) {
        Set(form, "optHexASCII_0");
        Set(form, "optHexASCII_1");
        Click(form, "cmdOK");
    });
    for (int use = 0; use < 3; ++use) EXPECT_EQ(forms.EditStr("Tag", int(bytes.size()), bytes), bytes) << use;
    EXPECT_EQ(messages.texts.size(), 2u);
}

}  // namespace
}  // namespace sb::test

#include "editing/frmStrValEdit.h"

#include <QHBoxLayout>

#include "editing/StrValueEntry.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"

namespace sb::ui {

frmStrValEdit::frmStrValEdit(QWidget* parent) : ValueBoxForm("frmStrValEdit", parent) {
    optHexASCII_0 = Named(new QRadioButton(QStringLiteral("Hex"), this), "optHexASCII_0");
    optHexASCII_1 = Named(new QRadioButton(QStringLiteral("ASCII"), this), "optHexASCII_1");
    auto* modes = new QHBoxLayout;
    modes->addWidget(optHexASCII_0);
    modes->addWidget(optHexASCII_1);
    modes->addStretch();
    LayOut(modes);

    JoinOptionButtons(optHexASCII_0, optHexASCII_1, [this](int index) { optHexASCII_Click(index); });
}

void frmStrValEdit::Fill(const std::string& caption, int length, const std::string& value) {
    SetCaptionAndLength(caption, length);
    // The switch converts what the last use left in the box, which the value
    // replaces right after: an empty box can't be refused.
    SetValue({});
    optHexASCII_1->setChecked(true);
    SetValue(value);
    EditValue = value;
}

void frmStrValEdit::optHexASCII_Click(int index) {
    const QRadioButton* button = index == 0 ? optHexASCII_0 : optHexASCII_1;
    const TextMode to = button->text() == QLatin1String("Hex") ? TextMode::Hex : TextMode::Ascii;
    const ModeSwitch result = SwitchTextMode(Value(), to, EditValue);
    if (result.Refused) ShowMessage(kWrongValueEntered);
    SetValue(result.BoxText);
}

void frmStrValEdit::cmdOK_Click() {
    const TextMode mode = optHexASCII_0->isChecked() ? TextMode::Hex : TextMode::Ascii;
    Conclude(CheckStrEntry(mode, Value(), Length(), EditValue), [this](const std::string& box) { SetValue(box); });
}

}  // namespace sb::ui

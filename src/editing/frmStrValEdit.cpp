#include "editing/frmStrValEdit.h"

#include <QButtonGroup>
#include <QHBoxLayout>

#include "editing/BinValueEntry.h"
#include "editing/StrValueEntry.h"
#include "editing/ValueBoxLayout.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"

namespace sb::ui {

frmStrValEdit::frmStrValEdit(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmStrValEdit"));
    setWindowTitle(QStringLiteral("Value edit"));
    Label1 = Named(new QLabel(QStringLiteral("Length (Bytes)"), this), "Label1");
    txtLen = Named(new QLineEdit(this), "txtLen");
    txtValue = Named(new QPlainTextEdit(this), "txtValue");
    optHexASCII_0 = Named(new QRadioButton(QStringLiteral("Hex"), this), "optHexASCII_0");
    optHexASCII_1 = Named(new QRadioButton(QStringLiteral("ASCII"), this), "optHexASCII_1");
    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    auto* modes = new QHBoxLayout;
    modes->addWidget(optHexASCII_0);
    modes->addWidget(optHexASCII_1);
    modes->addStretch();
    LayOutValueBox(*this, *Label1, *txtLen, *txtValue, modes, *cmdOK, *cmdCancel);

    auto* group = new QButtonGroup(this);
    group->addButton(optHexASCII_0, 0);
    group->addButton(optHexASCII_1, 1);
    connect(group, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (checked) optHexASCII_Click(index);
    });
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { hide(); });

    // Set when the form is created; nothing to convert yet.
    const QSignalBlocker quiet(group);
    optHexASCII_0->setChecked(true);
}

void frmStrValEdit::Fill(const std::string& caption, int length, const std::string& value) {
    setWindowTitle(Latin1(caption));
    txtLen->setText(Latin1(LengthBoxText(length)));
    optHexASCII_1->setChecked(true);
    txtValue->setPlainText(Latin1(value));
    EditValue = Bytes(txtValue->toPlainText());
}

void frmStrValEdit::optHexASCII_Click(int index) {
    const QRadioButton* button = index == 0 ? optHexASCII_0 : optHexASCII_1;
    const TextMode to = button->text() == QLatin1String("Hex") ? TextMode::Hex : TextMode::Ascii;
    txtValue->setPlainText(Latin1(SwitchTextMode(Bytes(txtValue->toPlainText()), to)));
}

void frmStrValEdit::cmdOK_Click() {
    const TextMode mode = optHexASCII_0->isChecked() ? TextMode::Hex : TextMode::Ascii;
    const EntryCheck check =
        CheckStrEntry(mode, Bytes(txtValue->toPlainText()), LengthOfBox(Bytes(txtLen->text())), EditValue);
    if (check.Accepted) {
        EditValue = check.EditValue;
        hide();
        return;
    }
    ShowMessage(kWrongValueEntered);
    txtValue->setPlainText(Latin1(check.BoxText));
}

}  // namespace sb::ui

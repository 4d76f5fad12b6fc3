#include "editing/frmIntValEdit.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "editing/IntValueEntry.h"
#include "ui/Latin1.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"

namespace sb::ui {

frmIntValEdit::frmIntValEdit(QWidget* parent) : ValueEditForm("frmIntValEdit", parent) {
    Label1 = Named(new QLabel(QStringLiteral("Min"), this), "Label1");
    txtMin = ShowOnlyBox(this, "txtMin");
    Label2 = Named(new QLabel(QStringLiteral("Max"), this), "Label2");
    txtMax = ShowOnlyBox(this, "txtMax");
    Label3 = Named(new QLabel(QStringLiteral("Value"), this), "Label3");
    txtOptValue = Named(new QLineEdit(this), "txtOptValue");
    optDecHex_0 = Named(new QRadioButton(QStringLiteral("Hex"), this), "optDecHex_0");
    optDecHex_1 = Named(new QRadioButton(QStringLiteral("Dec"), this), "optDecHex_1");
    cmdOK->setDefault(true);
    const int wide = fontMetrics().horizontalAdvance(QStringLiteral("4294967295__"));
    for (QLineEdit* box : {txtMin, txtMax, txtOptValue}) box->setMinimumWidth(wide);

    auto* boxes = new QGridLayout;
    boxes->addWidget(Label1, 0, 0);
    boxes->addWidget(txtMin, 0, 1);
    boxes->addWidget(Label2, 1, 0);
    boxes->addWidget(txtMax, 1, 1);
    boxes->addWidget(Label3, 2, 0);
    boxes->addWidget(txtOptValue, 2, 1);
    auto* radix = new QHBoxLayout;
    radix->addWidget(optDecHex_0);
    radix->addWidget(optDecHex_1);
    radix->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(boxes);
    layout->addLayout(radix);
    layout->addLayout(ButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);

    JoinOptionButtons(optDecHex_0, optDecHex_1, [this](int index) { optDecHex_Click(index); });
}

void frmIntValEdit::Fill(const std::string& caption, const std::string& min, const std::string& max,
                         const std::string& value) {
    setWindowTitle(Latin1(caption));
    optDecHex_0->setChecked(true);
    txtMax->setText(Latin1(max));
    txtMin->setText(Latin1(min));
    txtOptValue->setText(Latin1(value));
    EditValue = Bytes(txtOptValue->text());
}

void frmIntValEdit::optDecHex_Click(int index) {
    const QRadioButton* button = index == 0 ? optDecHex_0 : optDecHex_1;
    const Radix to = button->text() == QLatin1String("Hex") ? Radix::Hex : Radix::Dec;
    IntBoxes boxes{Bytes(txtMin->text()), Bytes(txtMax->text()), Bytes(txtOptValue->text())};
    SwitchIntRadix(boxes, to);
    txtMax->setText(Latin1(boxes.Max));
    txtMin->setText(Latin1(boxes.Min));
    txtOptValue->setText(Latin1(boxes.Value));
}

void frmIntValEdit::cmdOK_Click() {
    const Radix radix = optDecHex_1->isChecked() ? Radix::Dec : Radix::Hex;
    const IntBoxes boxes{Bytes(txtMin->text()), Bytes(txtMax->text()), Bytes(txtOptValue->text())};
    Conclude(CheckIntEntry(radix, boxes, EditValue), [this](const std::string& box) { txtOptValue->setText(Latin1(box)); });
}

}  // namespace sb::ui

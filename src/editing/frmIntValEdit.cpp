#include "editing/frmIntValEdit.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "editing/IntValueEntry.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"

namespace sb::ui {

frmIntValEdit::frmIntValEdit(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmIntValEdit"));
    setWindowTitle(QStringLiteral("Value edit"));

    Label1 = Named(new QLabel(QStringLiteral("Min"), this), "Label1");
    txtMin = Named(new QLineEdit(this), "txtMin");
    txtMin->setEnabled(false);
    KeepReadable(*txtMin);
    Label2 = Named(new QLabel(QStringLiteral("Max"), this), "Label2");
    txtMax = Named(new QLineEdit(this), "txtMax");
    txtMax->setEnabled(false);
    KeepReadable(*txtMax);
    Label3 = Named(new QLabel(QStringLiteral("Value"), this), "Label3");
    txtOptValue = Named(new QLineEdit(this), "txtOptValue");
    optDecHex_0 = Named(new QRadioButton(QStringLiteral("Hex"), this), "optDecHex_0");
    optDecHex_1 = Named(new QRadioButton(QStringLiteral("Dec"), this), "optDecHex_1");
    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    for (QLineEdit* box : {txtMin, txtMax, txtOptValue}) box->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("4294967295__")));

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
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(boxes);
    layout->addLayout(radix);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    auto* group = new QButtonGroup(this);
    group->addButton(optDecHex_0, 0);
    group->addButton(optDecHex_1, 1);
    // A button that becomes set raises its click, also when the caller sets it.
    connect(group, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (checked) optDecHex_Click(index);
    });
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { hide(); });

    // Set when the form is created; nothing to convert yet.
    const QSignalBlocker quiet(group);
    optDecHex_0->setChecked(true);
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
    const EntryCheck check = CheckIntEntry(radix, boxes, EditValue);
    if (check.Accepted) {
        EditValue = check.EditValue;
        hide();
        return;
    }
    ShowMessage(kWrongValueEntered);
    txtOptValue->setText(Latin1(check.BoxText));
}

}  // namespace sb::ui

#include "editing/ValueFormBase.h"

#include <QButtonGroup>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "editing/BinValueEntry.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"

namespace sb::ui {

ValueEditForm::ValueEditForm(const char* name, QWidget* parent) : QDialog(parent) {
    setObjectName(QLatin1String(name));
    setWindowTitle(QStringLiteral("Value edit"));
    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { hide(); });
}

void ValueEditForm::Conclude(const EntryCheck& check, const std::function<void(const QString&)>& putBack) {
    if (check.Accepted) {
        EditValue = check.EditValue;
        hide();
        return;
    }
    ShowMessage(kWrongValueEntered);
    putBack(Latin1(check.BoxText));
}

void ValueEditForm::JoinOptionButtons(QRadioButton* first, QRadioButton* second, std::function<void(int index)> click) {
    auto* group = new QButtonGroup(this);
    group->addButton(first, 0);
    group->addButton(second, 1);
    connect(group, &QButtonGroup::idToggled, this, [click = std::move(click)](int index, bool checked) {
        if (checked) click(index);
    });
    const QSignalBlocker quiet(group);  // nothing to convert yet
    first->setChecked(true);
}

QLayout* ValueEditForm::ButtonRow() {
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    return buttons;
}

ValueBoxForm::ValueBoxForm(const char* name, QWidget* parent) : ValueEditForm(name, parent) {
    Label1 = Named(new QLabel(QStringLiteral("Length (Bytes)"), this), "Label1");
    txtLen = ShowOnlyBox(this, "txtLen");
    txtLen->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000000")));
    txtValue = Named(new QPlainTextEdit(this), "txtValue");
    // Hex text lines up in a fixed-width font.
    txtValue->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtValue->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtValue->setMinimumSize(fontMetrics().horizontalAdvance(QLatin1Char('0')) * 52, fontMetrics().lineSpacing() * 5);
    // Enter makes a new line in the value box rather than pressing OK.
    cmdOK->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
}

void ValueBoxForm::LayOut(QLayout* modes) {
    auto* top = new QHBoxLayout;
    top->addWidget(Label1);
    top->addWidget(txtLen);
    top->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(txtValue);
    if (modes) layout->addLayout(modes);
    layout->addLayout(ButtonRow());
}

void ValueBoxForm::SetCaptionAndLength(const std::string& caption, int length) {
    setWindowTitle(Latin1(caption));
    txtLen->setText(Latin1(LengthBoxText(length)));
}

int ValueBoxForm::Length() const { return LengthOfBox(Bytes(txtLen->text())); }
std::string ValueBoxForm::Value() const { return Bytes(txtValue->toPlainText()); }
void ValueBoxForm::SetValue(const std::string& value) { txtValue->setPlainText(Latin1(value)); }

}  // namespace sb::ui

#include "editing/ValueFormBase.h"

#include <QButtonGroup>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "editing/BinValueEntry.h"
#include "ui/Guarded.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"
#include "ui/TitleWidth.h"

namespace sb::ui {

ValueEditForm::ValueEditForm(const char* name, QWidget* parent) : QDialog(parent) {
    setObjectName(QLatin1String(name));
    setWindowTitle(QStringLiteral("Value edit"));
    // The caller names the option in the title.
    KeepTitleWhole(*this);
    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { cmdOK_Click(); }));
    connect(cmdCancel, &QPushButton::clicked, this, [this] { hide(); });
}

void ValueEditForm::Conclude(const EntryCheck& check, const std::function<void(const std::string&)>& putBack) {
    if (check.Accepted) {
        EditValue = check.EditValue;
        hide();
        return;
    }
    ShowMessage(kWrongValueEntered);
    putBack(check.BoxText);
}

void ValueEditForm::JoinOptionButtons(QRadioButton* first, QRadioButton* second, std::function<void(int index)> click) {
    auto* group = new QButtonGroup(this);
    group->addButton(first, 0);
    group->addButton(second, 1);
    connect(group, &QButtonGroup::idToggled, this, Guarded([click = std::move(click)](int index, bool checked) {
        if (checked) click(index);
    }));
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
// The box holds one character a byte, and every byte must come back as it
// went in. The box's document would make a carriage return a line break
// (read back as LF), and its plain text makes a no-break space a blank: a CR
// stands in the box as the symbol U+240D, and the text is read raw, with
// its line breaks as LF.
constexpr char16_t kCarriageReturnSymbol = 0x240D;

std::string ValueBoxForm::Value() const {
    QString text = txtValue->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    text.replace(QChar(kCarriageReturnSymbol), QLatin1Char('\r'));
    return Bytes(text);
}

void ValueBoxForm::SetValue(const std::string& value) {
    QString text = Latin1(value);
    text.replace(QLatin1Char('\r'), QChar(kCarriageReturnSymbol));
    txtValue->setPlainText(text);
}

}  // namespace sb::ui

#include "editing/frmBinValEdit.h"

#include "editing/BinValueEntry.h"
#include "editing/ValueBoxLayout.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"

namespace sb::ui {

frmBinValEdit::frmBinValEdit(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmBinValEdit"));
    setWindowTitle(QStringLiteral("Value edit"));
    Label1 = Named(new QLabel(QStringLiteral("Length (Bytes)"), this), "Label1");
    txtLen = Named(new QLineEdit(this), "txtLen");
    txtValue = Named(new QPlainTextEdit(this), "txtValue");
    cmdOK = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    LayOutValueBox(*this, *Label1, *txtLen, *txtValue, nullptr, *cmdOK, *cmdCancel);

    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { hide(); });
}

void frmBinValEdit::Fill(const std::string& caption, int length, const std::string& value) {
    setWindowTitle(Latin1(caption));
    txtLen->setText(Latin1(LengthBoxText(length)));
    txtValue->setPlainText(Latin1(value));
    EditValue = Bytes(txtValue->toPlainText());
}

void frmBinValEdit::cmdOK_Click() {
    const EntryCheck check =
        CheckBinEntry(Bytes(txtValue->toPlainText()), LengthOfBox(Bytes(txtLen->text())), EditValue);
    if (check.Accepted) {
        EditValue = check.EditValue;
        hide();
        return;
    }
    ShowMessage(kWrongValueEntered);
    txtValue->setPlainText(Latin1(check.BoxText));
}

}  // namespace sb::ui

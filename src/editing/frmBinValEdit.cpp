#include "editing/frmBinValEdit.h"

#include "editing/BinValueEntry.h"

namespace sb::ui {

frmBinValEdit::frmBinValEdit(QWidget* parent) : ValueBoxForm("frmBinValEdit", parent) { LayOut(nullptr); }

void frmBinValEdit::Fill(const std::string& caption, int length, const std::string& value) {
    SetCaptionAndLength(caption, length);
    SetValue(value);
    EditValue = value;
}

void frmBinValEdit::cmdOK_Click() {
    Conclude(CheckBinEntry(Value(), Length(), EditValue), [this](const std::string& box) { SetValue(box); });
}

}  // namespace sb::ui

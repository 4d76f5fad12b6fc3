#pragma once
#include <string>

#include "editing/ValueFormBase.h"

namespace sb::ui {

// "Value edit" for a BIN option: hex text of exactly the length in txtLen.
// EditValue is hex text: the start value until a good entry, then the
// entered bytes with one blank between them.
class frmBinValEdit final : public ValueBoxForm {
    Q_OBJECT
public:
    explicit frmBinValEdit(QWidget* parent = nullptr);

    // The caller's fill: the caption, txtLen, txtValue, then EditValue: the
    // value as txtValue holds it, byte for byte.
    void Fill(const std::string& caption, int length, const std::string& value);

private:
    void cmdOK_Click() override;
};

}  // namespace sb::ui

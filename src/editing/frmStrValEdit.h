#pragma once
#include <QRadioButton>
#include <string>

#include "editing/ValueFormBase.h"

namespace sb::ui {

// "Value edit" for a STR option: exactly the length in txtLen, typed as
// characters ("ASCII") or as hex text ("Hex"). EditValue is a byte string.
class frmStrValEdit final : public ValueBoxForm {
    Q_OBJECT
public:
    explicit frmStrValEdit(QWidget* parent = nullptr);

    // The caller's fill: the caption, txtLen, "ASCII" set, txtValue, then
    // EditValue: the value as txtValue holds it, byte for byte.
    void Fill(const std::string& caption, int length, const std::string& value);

    QRadioButton* optHexASCII_0;  // "Hex"
    QRadioButton* optHexASCII_1;  // "ASCII"

private:
    void optHexASCII_Click(int index);
    void cmdOK_Click() override;
};

}  // namespace sb::ui

#pragma once
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <string>

#include "editing/ValueFormBase.h"

namespace sb::ui {

// "Value edit" for an INT option: the value between txtMin and txtMax, as
// hex or as a decimal number. EditValue is hex text.
class frmIntValEdit final : public ValueEditForm {
    Q_OBJECT
public:
    explicit frmIntValEdit(QWidget* parent = nullptr);

    // The caller's fill, in its order: the caption, "Hex" set, txtMax, txtMin,
    // txtOptValue, then EditValue from txtOptValue.
    void Fill(const std::string& caption, const std::string& min, const std::string& max, const std::string& value);

    QLabel* Label1;
    QLineEdit* txtMin;
    QLabel* Label2;
    QLineEdit* txtMax;
    QLabel* Label3;
    QLineEdit* txtOptValue;
    QRadioButton* optDecHex_0;  // "Hex"
    QRadioButton* optDecHex_1;  // "Dec"

private:
    void optDecHex_Click(int index);
    void cmdOK_Click() override;
};

}  // namespace sb::ui

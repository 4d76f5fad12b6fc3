#pragma once
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <string>

namespace sb::ui {

// "Value edit" for an INT option: the value between txtMin and txtMax, as
// hex or as a decimal number. The caller sets EditValue before the modal
// show and reads it afterwards; it holds the last good value, OK or Cancel.
class frmIntValEdit final : public QDialog {
    Q_OBJECT
public:
    explicit frmIntValEdit(QWidget* parent = nullptr);

    // The caller's fill, in its order: the caption, "Hex" set, txtMax, txtMin,
    // txtOptValue, then EditValue from txtOptValue.
    void Fill(const std::string& caption, const std::string& min, const std::string& max, const std::string& value);

    std::string EditValue;

    QLabel* Label1;
    QLineEdit* txtMin;
    QLabel* Label2;
    QLineEdit* txtMax;
    QLabel* Label3;
    QLineEdit* txtOptValue;
    QRadioButton* optDecHex_0;  // "Hex"
    QRadioButton* optDecHex_1;  // "Dec"
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

private:
    void optDecHex_Click(int index);
    void cmdOK_Click();
};

}  // namespace sb::ui

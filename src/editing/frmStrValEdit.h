#pragma once
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <string>

namespace sb::ui {

// "Value edit" for a STR option: exactly the length in txtLen, typed as
// characters ("ASCII") or as hex text ("Hex"). EditValue is a byte string.
class frmStrValEdit final : public QDialog {
    Q_OBJECT
public:
    explicit frmStrValEdit(QWidget* parent = nullptr);

    // The caller's fill: the caption, txtLen, "ASCII" set, txtValue, then
    // EditValue from txtValue.
    void Fill(const std::string& caption, int length, const std::string& value);

    std::string EditValue;

    QLabel* Label1;
    QLineEdit* txtLen;
    QPlainTextEdit* txtValue;
    QRadioButton* optHexASCII_0;  // "Hex"
    QRadioButton* optHexASCII_1;  // "ASCII"
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

private:
    void optHexASCII_Click(int index);
    void cmdOK_Click();
};

}  // namespace sb::ui

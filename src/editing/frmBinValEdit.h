#pragma once
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <string>

namespace sb::ui {

// "Value edit" for a BIN option: hex text of exactly the length in txtLen.
// EditValue is hex text: the start value until a good entry, then the
// entered bytes with one blank between them.
class frmBinValEdit final : public QDialog {
    Q_OBJECT
public:
    explicit frmBinValEdit(QWidget* parent = nullptr);

    // The caller's fill: the caption, txtLen, txtValue, then EditValue from
    // txtValue.
    void Fill(const std::string& caption, int length, const std::string& value);

    std::string EditValue;

    QLabel* Label1;
    QLineEdit* txtLen;
    QPlainTextEdit* txtValue;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

private:
    void cmdOK_Click();
};

}  // namespace sb::ui

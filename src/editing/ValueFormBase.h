#pragma once
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <functional>
#include <string>

#include "editing/ValueEntry.h"

namespace sb::ui {

// What the three value edit forms share: the caption "Value edit" until the
// caller names the option, the public field EditValue, and OK and Cancel.
// Cancel only hides the form; EditValue holds the last good value either way.
class ValueEditForm : public QDialog {
    Q_OBJECT
public:
    std::string EditValue;

    QPushButton* cmdOK;
    QPushButton* cmdCancel;

protected:
    ValueEditForm(const char* name, QWidget* parent);

    // The end of cmdOK: an accepted entry becomes EditValue and the form
    // hides; a refused one brings "Wrong value entered", then putBack puts
    // the box's text right and the form stays open.
    void Conclude(const EntryCheck& check, const std::function<void(const std::string&)>& putBack);
    virtual void cmdOK_Click() = 0;

    // Two option buttons as one control array: a button that becomes set,
    // by a click or by the caller, raises click with its index. The first is
    // set when the form is made.
    void JoinOptionButtons(QRadioButton* first, QRadioButton* second, std::function<void(int index)> click);
    // OK and Cancel at the right end of a row.
    QLayout* ButtonRow();
};

// frmBinValEdit and frmStrValEdit: the length in bytes above a value box of
// several lines, optional mode buttons below it.
class ValueBoxForm : public ValueEditForm {
    Q_OBJECT
public:
    QLabel* Label1;
    QLineEdit* txtLen;
    QPlainTextEdit* txtValue;

protected:
    ValueBoxForm(const char* name, QWidget* parent);
    void LayOut(QLayout* modes);

    // The caller's first steps: the caption, then txtLen.
    void SetCaptionAndLength(const std::string& caption, int length);
    int Length() const;
    std::string Value() const;
    void SetValue(const std::string& value);
};

}  // namespace sb::ui

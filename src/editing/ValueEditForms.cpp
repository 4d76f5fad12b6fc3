#include "editing/ValueEditForms.h"

#include "ui/ModalDialog.h"

namespace sb::ui {
namespace {

template <class Form>
Form& FirstUse(std::unique_ptr<Form>& form) {
    if (!form) form = std::make_unique<Form>();
    return *form;
}

}  // namespace

ValueEditForms::ValueEditForms() = default;
ValueEditForms::~ValueEditForms() { Unload(); }

std::string ValueEditForms::EditInt(const std::string& caption, const std::string& min, const std::string& max,
                                    const std::string& value) {
    frmIntValEdit& form = FirstUse(int_);
    form.Fill(caption, min, max, value);
    ShowModal(form);
    return form.EditValue;
}

std::string ValueEditForms::EditBin(const std::string& caption, int length, const std::string& value) {
    frmBinValEdit& form = FirstUse(bin_);
    form.Fill(caption, length, value);
    ShowModal(form);
    return form.EditValue;
}

std::string ValueEditForms::EditStr(const std::string& caption, int length, const std::string& value) {
    frmStrValEdit& form = FirstUse(str_);
    form.Fill(caption, length, value);
    ShowModal(form);
    return form.EditValue;
}

void ValueEditForms::Unload() {
    int_.reset();
    bin_.reset();
    str_.reset();
}

}  // namespace sb::ui

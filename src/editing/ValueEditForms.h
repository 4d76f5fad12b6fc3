#pragma once
#include <memory>

#include "editing/ValueEditors.h"
#include "editing/frmBinValEdit.h"
#include "editing/frmIntValEdit.h"
#include "editing/frmStrValEdit.h"

namespace sb::ui {

// The three value edit forms of the program: each is created at its first
// use and lives, hidden between uses, until it is unloaded with the main
// screen. The forms are windows of their own, without an owner.
class ValueEditForms final : public ValueEditors {
public:
    ValueEditForms();
    ~ValueEditForms() override;

    std::string EditInt(const std::string& caption, const std::string& min, const std::string& max,
                        const std::string& value) override;
    std::string EditBin(const std::string& caption, int length, const std::string& value) override;
    std::string EditStr(const std::string& caption, int length, const std::string& value) override;

    // The forms that exist so far, nullptr for one not yet used.
    frmIntValEdit* IntForm() const { return int_.get(); }
    frmBinValEdit* BinForm() const { return bin_.get(); }
    frmStrValEdit* StrForm() const { return str_.get(); }

    // Unloads frmIntValEdit, frmBinValEdit and frmStrValEdit, in this order.
    void Unload();

private:
    std::unique_ptr<frmIntValEdit> int_;
    std::unique_ptr<frmBinValEdit> bin_;
    std::unique_ptr<frmStrValEdit> str_;
};

}  // namespace sb::ui

#pragma once
#include <string>

namespace sb {

// The three value edit forms as the tree's events use them. Each call fills
// its form the way its caller must (the option buttons first, since they
// convert what stands in the boxes, then the boxes, then EditValue from the
// value box), shows it modally and answers its EditValue. OK and Cancel are
// not told apart: EditValue holds the start value until a good entry.
class ValueEditors {
public:
    virtual ~ValueEditors() = default;
    // frmIntValEdit in "Hex"; min, max and value are hex text.
    virtual std::string EditInt(const std::string& caption, const std::string& min, const std::string& max,
                                const std::string& value) = 0;
    // frmBinValEdit; value is hex text.
    virtual std::string EditBin(const std::string& caption, int length, const std::string& value) = 0;
    // frmStrValEdit in "ASCII"; value is a byte string.
    virtual std::string EditStr(const std::string& caption, int length, const std::string& value) = 0;
};

}  // namespace sb

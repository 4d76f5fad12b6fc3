#pragma once
#include <string>

namespace sb {

// What cmdOK of a value edit form decides: an accepted entry becomes the
// form's EditValue and the form hides; a refused one brings the message
// "Wrong value entered" and puts BoxText back into the value box.
struct EntryCheck {
    bool Accepted = false;
    std::string EditValue;  // the new EditValue when accepted, else the old one
    std::string BoxText;    // what the value box shows after a refusal
};

inline constexpr const char* kWrongValueEntered = "Wrong value entered";

}  // namespace sb

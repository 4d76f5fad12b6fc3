#pragma once
#include <memory>

#include "link/SerialPort.h"
#include "link/frmPortControl.h"
#include "update/frmFileCtrl.h"
#include "update/frmTarnlift.h"

namespace sb::ui {

// The two update screens as the program holds them: frmTarnlift for the
// length of one press of cmdFWUpdate (the screen has no button to end it;
// its close box unloads it, so each opening starts with an empty file name),
// frmFileCtrl loaded at its first use and unloaded by its caller. While it
// lives, it is what cmdFWUpdate and the unload of the main screen reach.
class UpdateForms {
public:
    UpdateForms();
    ~UpdateForms();
    UpdateForms(const UpdateForms&) = delete;
    UpdateForms& operator=(const UpdateForms&) = delete;

    // cmdFWUpdate: frmTarnlift as a modal dialog on the main screen's port.
    void ShowTarnlift(SerialPort& comPort, frmPortControl& portControl);
    // The screen while it is shown; else null.
    frmTarnlift* Tarnlift() const { return tarnlift_.get(); }
    void UnloadTarnlift();

    // Loaded (Form_Load) at the first call after an unload.
    frmFileCtrl& FileCtrl();
    void UnloadFileCtrl();

private:
    std::unique_ptr<frmTarnlift> tarnlift_;
    std::unique_ptr<frmFileCtrl> fileCtrl_;
    bool tarnliftShown_ = false;
};

}  // namespace sb::ui

#include "update/UpdateForms.h"

#include "mainscreen/UpdateScreens.h"
#include "ui/ModalDialog.h"

namespace sb::ui {

UpdateForms::UpdateForms() {
    SetUpdateScreens({[this](SerialPort& comPort, frmPortControl& portControl) { ShowTarnlift(comPort, portControl); },
                      [this] { UnloadFileCtrl(); }, [this] { UnloadTarnlift(); }});
}

UpdateForms::~UpdateForms() {
    SetUpdateScreens({});
    UnloadFileCtrl();
    UnloadTarnlift();
}

void UpdateForms::ShowTarnlift(SerialPort& comPort, frmPortControl& portControl) {
    if (tarnliftShown_) return;
    tarnlift_ = std::make_unique<frmTarnlift>(*this, comPort, portControl);
    tarnliftShown_ = true;
    ShowModal(*tarnlift_);
    tarnliftShown_ = false;
    UnloadTarnlift();
}

void UpdateForms::UnloadTarnlift() {
    // While its modal show runs, the screen is only hidden; the end of the
    // show unloads it.
    if (tarnliftShown_) {
        if (tarnlift_) tarnlift_->hide();
        return;
    }
    tarnlift_.reset();
}

frmFileCtrl& UpdateForms::FileCtrl() {
    if (!fileCtrl_) fileCtrl_ = std::make_unique<frmFileCtrl>();
    return *fileCtrl_;
}

void UpdateForms::UnloadFileCtrl() {
    if (!fileCtrl_) return;
    fileCtrl_->Unload();
    fileCtrl_.reset();
}

}  // namespace sb::ui

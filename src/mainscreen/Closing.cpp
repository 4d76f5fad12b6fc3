// The end of the main screen: the window manager moves and closes the
// window; closing unloads the program's other forms, and the program ends.
#include <QCloseEvent>

#include "helpers/QuietStep.h"
#include "mainscreen/UpdateScreens.h"
#include "mainscreen/frmDeviceCofigurator.h"

namespace sb::ui {

frmDeviceCofigurator::BusyAction::BusyAction(frmDeviceCofigurator& form) : form_(form) {
    ++form_.busy_;
    // The offline run would replace the record under the running action.
    form_.mnuOfflineRead->setEnabled(false);
}

frmDeviceCofigurator::BusyAction::~BusyAction() {
    if (--form_.busy_ > 0) return;
    form_.mnuOfflineRead->setEnabled(true);
    if (form_.closeRequested_)
        form_.Unload();
    else if (form_.closeAfterWrite_)
        form_.close();
}

void frmDeviceCofigurator::closeEvent(QCloseEvent* event) {
    if (!isEnabled()) {
        // "Write" locks the whole form, its close box too: the close waits
        // until the write has ended and said whether the module took the
        // configuration.
        event->ignore();
        closeAfterWrite_ = true;
        return;
    }
    // Otherwise the close is never refused and asks nothing, also not for an
    // edited image.
    event->accept();
    if (busy_ > 0) {
        // The action runs on inside a wait: its next port operation fails
        // and is skipped, and the action's end unloads the forms.
        closeRequested_ = true;
        ClosePortQuietly();
        return;
    }
    Unload();
}

void frmDeviceCofigurator::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    const UpdateScreens& screens = CurrentUpdateScreens();
    if (screens.UnloadFileCtrl) QuietStep(screens.UnloadFileCtrl);
    if (screens.UnloadTarnlift) QuietStep(screens.UnloadTarnlift);
    editForms_.Unload();
    portControl_.reset();
    emit unloaded();
}

}  // namespace sb::ui

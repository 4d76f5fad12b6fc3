#pragma once
#include <functional>

namespace sb {
class SerialPort;
class frmPortControl;
}  // namespace sb

namespace sb::ui {

// The firmware update screens (frmTarnlift and its file chooser frmFileCtrl)
// are built apart from the main screen and register here how they are
// opened and unloaded. cmdFWUpdate shows frmTarnlift as a modal dialog on
// ComPort, with the selection dialog that the main screen has loaded; the
// unload of the main screen unloads frmFileCtrl, then frmTarnlift. A hook
// left empty does nothing.
struct UpdateScreens {
    std::function<void(SerialPort& comPort, frmPortControl& portControl)> ShowTarnlift;
    std::function<void()> UnloadFileCtrl;
    std::function<void()> UnloadTarnlift;
};

void SetUpdateScreens(UpdateScreens screens);
const UpdateScreens& CurrentUpdateScreens();

}  // namespace sb::ui

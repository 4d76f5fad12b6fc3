// "Write": the configuration in txtCfgEdited goes to a module chosen anew.
#include "helpers/HexText.h"
#include "helpers/QuietStep.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/MessageBox.h"

namespace sb::ui {
namespace {

constexpr const char* kComPortError = "COMPort Error";
constexpr const char* kNoBootDevice = "Cant find device in boot mode";
constexpr const char* kWrongData = "Error! Config was not set\r\nWrong data context!";
constexpr const char* kWritten = "Config written successfully!";
constexpr const char* kNotWritten = "Error! Config was not set !";
// The command goes out a second after the opening.
constexpr double kBeforeCommandMs = 500;

}  // namespace

void frmDeviceCofigurator::cmdWriteConfig_Click() {
    BusyAction busy(*this);
    // The whole form is locked: only the selection dialog and the message
    // boxes take input meanwhile.
    setEnabled(false);
    if (OpenChosenPort(kComPortError, kNoBootDevice)) QuietStep([this] {
        WaitMs(kBeforeCommandMs);
        WriteToOpenModule();
    });
    ClosePortQuietly();
    cmdWriteConfig->setEnabled(true);
    setEnabled(true);
}

void frmDeviceCofigurator::WriteToOpenModule() {
    // Neither the length nor the module is compared with what was read.
    const std::string data = NormalizeHex(cfgEditedText_);
    if (data.empty()) {
        ShowMessage(kWrongData);
        return;
    }
    // A port that fails during the exchange leaves the answer empty.
    std::string answer;
    SkipOnPortError([&] { answer = TrimBlanks(TerminalExecute(std::string(cmd::SETAPPCFG) + data, *MSComm1, *status_)); });
    if (answer != cmd::AnswerOK) {
        ShowMessage(kNotWritten);
        return;
    }
    const std::string differs = mnuVerifyWrite->isChecked() ? WriteNotVerified(data) : std::string();
    ShowMessage(differs.empty() ? kWritten : differs);
}

}  // namespace sb::ui

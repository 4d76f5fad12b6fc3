#include "link/ModeSwitch.h"

#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"

namespace sb {

std::optional<PortError> SwitchToBoot(SerialPort& port, const std::string& portName) {
    auto openFailure = SkipOnPortError([&] { OpenPort(port, portName, kSettings300); });
    WaitMs(kBootOpeningMs);
    SkipOnPortError([&] { port.SetPortOpen(false); });
    return openFailure;
}

std::optional<PortError> SwitchToRunning(SerialPort& port, const std::string& portName, StatusText& status,
                                         const std::function<void(const std::string&)>& showAnswer) {
    auto openFailure = SkipOnPortError([&] { OpenPort(port, portName, kSettings115200); });
    WaitMs(100);
    SkipOnPortError([&] { TerminalExecute(std::string(cmd::GETSN), port, status); });
    WaitMs(200);
    SkipOnPortError([&] { port.Input(); });
    SkipOnPortError([&] { port.Output(std::string(cmd::RUN)); });
    WaitMs(200);
    SkipOnPortError([&] {
        const std::string answer = port.Input();
        showAnswer(answer);
    });
    SkipOnPortError([&] { port.SetPortOpen(false); });
    return openFailure;
}

}  // namespace sb

#include "link/ModeSwitch.h"

#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"

namespace sb {
namespace {

// The last step of a switch: the port is closed on every road, also when a
// step fails in a way that is not the port's and ends the switch early.
class ClosedAtTheEnd {
public:
    explicit ClosedAtTheEnd(SerialPort& port) : port_(port) {}
    ~ClosedAtTheEnd() {
        try {
            port_.SetPortOpen(false);
        } catch (...) {
            // A port that cannot even be closed has nothing more to give.
        }
    }
    ClosedAtTheEnd(const ClosedAtTheEnd&) = delete;
    ClosedAtTheEnd& operator=(const ClosedAtTheEnd&) = delete;

private:
    SerialPort& port_;
};

}  // namespace

std::optional<PortError> SwitchToBoot(SerialPort& port, const std::string& portName) {
    const ClosedAtTheEnd closing(port);
    auto openFailure = SkipOnPortError([&] { OpenPort(port, portName, kSettings300); });
    WaitMs(kBootOpeningMs);
    return openFailure;
}

std::optional<PortError> SwitchToRunning(SerialPort& port, const std::string& portName, StatusText& status,
                                         const std::function<void(const std::string&)>& showAnswer) {
    const ClosedAtTheEnd closing(port);
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
    return openFailure;
}

}  // namespace sb

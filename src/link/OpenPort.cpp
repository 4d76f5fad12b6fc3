#include "link/SerialPort.h"

namespace sb {

void OpenPort(SerialPort& port, const std::string& name, const std::string& settings) {
    port.SetCommPort(name);
    port.SetSettings(settings);
    port.SetInputLen(0);
    port.SetRThreshold(0);
    port.SetSThreshold(0);
    port.SetInBufferSize(kPortBufferSize);
    port.SetOutBufferSize(kPortBufferSize);
    port.SetPortOpen(true);
}

}  // namespace sb

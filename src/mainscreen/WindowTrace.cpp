#include "mainscreen/WindowTrace.h"

#include "link/QtSerialPort.h"
#include "support/TracingPort.h"

namespace sb::ui {

support::WireRing& WindowWireTrace() {
    static support::WireRing ring(256 * 1024);
    return ring;
}

std::unique_ptr<SerialPort> MakeTracedPort() {
    return std::make_unique<support::TracingPort>(std::make_unique<QtSerialPort>(), WindowWireTrace());
}

}  // namespace sb::ui

#pragma once
#include <memory>

#include "link/SerialPort.h"
#include "support/WireTrace.h"

namespace sb::ui {

// The window's last 256 KiB of wire traffic, always kept, for a support
// bundle; both of its ports feed it.
support::WireRing& WindowWireTrace();

// The system's port, feeding the window's trace.
std::unique_ptr<SerialPort> MakeTracedPort();

}  // namespace sb::ui

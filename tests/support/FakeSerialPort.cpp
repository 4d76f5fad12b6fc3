#include "FakeSerialPort.h"

#include <utility>

#include "helpers/Waiting.h"

namespace sb::test {

void FakeSerialPort::SetCommPort(const std::string& name) {
    calls.push_back("SetCommPort(" + name + ")");
    name_ = name;
}

void FakeSerialPort::SetSettings(const std::string& text) {
    calls.push_back("SetSettings(" + text + ")");
    settings = text;
}

void FakeSerialPort::SetPortOpen(bool open) {
    calls.push_back(open ? "SetPortOpen(true)" : "SetPortOpen(false)");
    if (open && failOpen) throw PortError("cannot open " + name_, "No such file or directory");
    if (open && open_) throw PortError("port already open", "Device or resource busy");
    open_ = open;
}

std::string FakeSerialPort::Input() {
    ++inputReads;
    if (failInput || !open_) throw PortError("read failed", "Input/output error");
    return std::exchange(pending_, {});
}

void FakeSerialPort::Output(const std::string& bytes) {
    if (failOutput || !open_) throw PortError("write failed", "Input/output error");
    written.push_back(bytes);
    if (onOutput) onOutput(bytes);
}

void FakeSerialPort::Feed(const std::string& bytes) {
    pending_ += bytes;
    if (!bytes.empty()) CurrentWaitContext().NotifyInput();
}

}  // namespace sb::test

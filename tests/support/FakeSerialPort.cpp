#include "FakeSerialPort.h"

#include "helpers/Waiting.h"

namespace sb::test {

void FakeSerialPort::SetCommPort(const std::string& name) {
    calls.push_back("SetCommPort(" + name + ")");
    name_ = name;
}
void FakeSerialPort::SetSettings(const std::string& s) {
    calls.push_back("SetSettings(" + s + ")");
    settings = s;
}
void FakeSerialPort::SetInputLen(int v) { calls.push_back("SetInputLen(" + std::to_string(v) + ")"); }
void FakeSerialPort::SetRThreshold(int v) { calls.push_back("SetRThreshold(" + std::to_string(v) + ")"); }
void FakeSerialPort::SetSThreshold(int v) { calls.push_back("SetSThreshold(" + std::to_string(v) + ")"); }
void FakeSerialPort::SetInBufferSize(int v) { calls.push_back("SetInBufferSize(" + std::to_string(v) + ")"); }
void FakeSerialPort::SetOutBufferSize(int v) { calls.push_back("SetOutBufferSize(" + std::to_string(v) + ")"); }

void FakeSerialPort::SetPortOpen(bool open) {
    calls.push_back(open ? "SetPortOpen(true)" : "SetPortOpen(false)");
    if (open && failOpen) throw PortError("cannot open " + name_, "No such file or directory");
    if (open && open_) throw PortError("port already open", "Device or resource busy");
    open_ = open;
}

std::string FakeSerialPort::Input() {
    ++inputReads;
    if (failInput || !open_) throw PortError("read failed", "Input/output error");
    std::string out;
    out.swap(pending_);
    return out;
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

std::string FakeSerialPort::AllWritten() const {
    std::string all;
    for (const auto& w : written) all += w;
    return all;
}

}  // namespace sb::test

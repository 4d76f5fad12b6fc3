#pragma once
#include <functional>
#include <string>
#include <vector>

#include "link/SerialPort.h"

namespace sb::test {

// A serial port in memory. It records every member call in order, keeps what
// was written, hands out what a test feeds in, and can fail on demand.
class FakeSerialPort final : public SerialPort {
public:
    void SetCommPort(const std::string& name) override;
    std::string CommPort() const override { return name_; }
    void SetSettings(const std::string& settings) override;
    void SetInputLen(int length) override { Note("SetInputLen", length); }
    void SetRThreshold(int threshold) override { Note("SetRThreshold", threshold); }
    void SetSThreshold(int threshold) override { Note("SetSThreshold", threshold); }
    void SetInBufferSize(int bytes) override { Note("SetInBufferSize", bytes); }
    void SetOutBufferSize(int bytes) override { Note("SetOutBufferSize", bytes); }
    void SetPortOpen(bool open) override;
    bool PortOpen() const override { return open_; }
    std::string Input() override;
    void Output(const std::string& bytes) override;

    // Bytes the module "sends": they wait for the next Input().
    void Feed(const std::string& bytes);

    // Called with each Output(); a test answers from it (often through the clock).
    std::function<void(const std::string& bytes)> onOutput;

    std::vector<std::string> calls;    // "SetSettings(300, N, 8, 1)", "SetInputLen(0)", ...
    std::vector<std::string> written;  // each Output() as it came
    std::string settings;
    int inputReads = 0;

    // Operations that throw PortError: "open" (SetPortOpen(true)), "input", "output".
    bool failOpen = false;
    bool failInput = false;
    bool failOutput = false;

private:
    void Note(const char* member, int value) { calls.push_back(member + ("(" + std::to_string(value) + ")")); }

    std::string name_;
    bool open_ = false;
    std::string pending_;
};

}  // namespace sb::test

#pragma once
#include <functional>
#include <memory>

#include "link/SerialPort.h"
#include "support/WireTrace.h"

namespace sb::support {

// A serial port that tells a sink every byte that passes, and its openings
// and closings, and otherwise is the port it wraps. Failures of the port pass
// through unchanged.
class TracingPort final : public SerialPort {
public:
    TracingPort(std::unique_ptr<SerialPort> inner, WireSink& sink,
                std::function<uint64_t()> clock = MonotonicMicros);

    void SetCommPort(const std::string& name) override { inner_->SetCommPort(name); }
    std::string CommPort() const override { return inner_->CommPort(); }
    void SetSettings(const std::string& settings) override;
    void SetInputLen(int length) override { inner_->SetInputLen(length); }
    void SetRThreshold(int threshold) override { inner_->SetRThreshold(threshold); }
    void SetSThreshold(int threshold) override { inner_->SetSThreshold(threshold); }
    void SetInBufferSize(int bytes) override { inner_->SetInBufferSize(bytes); }
    void SetOutBufferSize(int bytes) override { inner_->SetOutBufferSize(bytes); }
    void SetPortOpen(bool open) override;
    bool PortOpen() const override { return inner_->PortOpen(); }
    std::string Input() override;
    void Output(const std::string& bytes) override;

private:
    void Note(const std::string& text);

    std::unique_ptr<SerialPort> inner_;
    WireSink& sink_;
    std::function<uint64_t()> clock_;
    std::string settings_;
};

}  // namespace sb::support

#include "support/TracingPort.h"

namespace sb::support {

TracingPort::TracingPort(std::unique_ptr<SerialPort> inner, WireSink& sink, std::function<uint64_t()> clock)
    : inner_(std::move(inner)), sink_(sink), clock_(std::move(clock)) {}

void TracingPort::SetSettings(const std::string& settings) {
    inner_->SetSettings(settings);
    settings_ = settings;
}

void TracingPort::SetPortOpen(bool open) {
    const bool was = inner_->PortOpen();
    try {
        inner_->SetPortOpen(open);
    } catch (const PortError& failure) {
        Note(std::string(open ? "open " : "close ") + CommPort() + " failed: " + failure.what() +
             (failure.reason.empty() ? "" : ": " + failure.reason));
        throw;
    }
    if (open != was) Note(open ? "open " + CommPort() + " " + settings_ : "close " + CommPort());
}

std::string TracingPort::Input() {
    std::string bytes = inner_->Input();
    // Most polls find nothing: they cost no more than the test.
    if (!bytes.empty()) sink_.Take({clock_(), WireDirection::In, bytes});
    return bytes;
}

void TracingPort::Output(const std::string& bytes) {
    if (!bytes.empty()) sink_.Take({clock_(), WireDirection::Out, bytes});
    inner_->Output(bytes);
}

void TracingPort::Note(const std::string& text) { sink_.Take({clock_(), WireDirection::Note, text}); }

}  // namespace sb::support

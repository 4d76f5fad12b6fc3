#pragma once
#include <stdexcept>
#include <string>

// The serial port as the system uses it: the members it sets, in the order
// of the fixed opening sequence, and Input/Output of raw bytes (one character
// a byte, every value 0x00..0xFF passed unchanged).
namespace sb {

// A failing port operation. `reason` keeps the system's own words (such as
// "Permission denied") for the second line of a message.
struct PortError : std::runtime_error {
    PortError(const std::string& what, std::string systemReason)
        : std::runtime_error(what), reason(std::move(systemReason)) {}
    std::string reason;
};

inline constexpr const char* kSettings300 = "300, N, 8, 1";
inline constexpr const char* kSettings115200 = "115200, N, 8, 1";
inline constexpr int kPortBufferSize = 8192;

class SerialPort {
public:
    virtual ~SerialPort() = default;
    // Ports are named as the platform names them: "ttyACM0", a device path,
    // "COM7". Only while closed.
    virtual void SetCommPort(const std::string& name) = 0;
    virtual std::string CommPort() const = 0;
    // "300, N, 8, 1": baud rate, parity, data bits, stop bits.
    virtual void SetSettings(const std::string& settings) = 0;
    virtual void SetInputLen(int length) = 0;
    virtual void SetRThreshold(int threshold) = 0;
    virtual void SetSThreshold(int threshold) = 0;
    virtual void SetInBufferSize(int bytes) = 0;   // only while closed
    virtual void SetOutBufferSize(int bytes) = 0;  // only while closed
    virtual void SetPortOpen(bool open) = 0;
    virtual bool PortOpen() const = 0;
    // Everything waiting, removed from the port; empty when nothing is; never blocks.
    virtual std::string Input() = 0;
    // Queues the bytes for sending and returns at once.
    virtual void Output(const std::string& bytes) = 0;
};

// The fixed opening sequence, nothing between its steps.
void OpenPort(SerialPort& port, const std::string& name, const std::string& settings);

}  // namespace sb

#pragma once
#include <cstdint>
#include <string>

namespace sb {

// The settings text of a port, "300, N, 8, 1": baud rate, parity letter, data
// bits and stop bits, separated by commas with blanks allowed around them.
struct PortSettings {
    int32_t BaudRate = 9600;
    char Parity = 'N';  // N, E, O, M or S
    int DataBits = 8;
    int StopBits = 1;  // 1 or 2
};

// Throws PortError for a text that does not give all four fields.
PortSettings ParsePortSettings(const std::string& text);

}  // namespace sb

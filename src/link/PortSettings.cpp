#include "link/PortSettings.h"

#include <cctype>
#include <charconv>
#include <vector>

#include "helpers/TrimBlanks.h"
#include "link/SerialPort.h"

namespace sb {
namespace {

std::vector<std::string> SplitAtCommas(const std::string& text) {
    std::vector<std::string> fields;
    std::string::size_type start = 0;
    for (;;) {
        const auto comma = text.find(',', start);
        fields.push_back(TrimBlanks(text.substr(start, comma - start)));
        if (comma == std::string::npos) return fields;
        start = comma + 1;
    }
}

bool ReadWhole(const std::string& field, int32_t& value) {
    const char* end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    return error == std::errc() && stop == end && !field.empty();
}

}  // namespace

PortSettings ParsePortSettings(const std::string& text) {
    const auto refuse = [&text]() -> PortError {
        return PortError("Invalid port settings \"" + text + "\"", "Invalid argument");
    };
    const auto fields = SplitAtCommas(text);
    if (fields.size() != 4) throw refuse();

    PortSettings settings;
    int32_t dataBits = 0;
    int32_t stopBits = 0;
    if (!ReadWhole(fields[0], settings.BaudRate) || settings.BaudRate <= 0) throw refuse();
    if (fields[1].size() != 1) throw refuse();
    settings.Parity = static_cast<char>(std::toupper(static_cast<unsigned char>(fields[1][0])));
    if (std::string("NEOMS").find(settings.Parity) == std::string::npos) throw refuse();
    if (!ReadWhole(fields[2], dataBits) || dataBits < 5 || dataBits > 8) throw refuse();
    if (!ReadWhole(fields[3], stopBits) || (stopBits != 1 && stopBits != 2)) throw refuse();
    settings.DataBits = dataBits;
    settings.StopBits = stopBits;
    return settings;
}

}  // namespace sb

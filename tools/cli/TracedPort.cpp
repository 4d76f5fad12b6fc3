#include "TracedPort.h"

#include "link/QtSerialPort.h"
#include "support/TracingPort.h"

namespace sb::cli {
namespace {

struct TraceSettings {
    std::string path;
    bool wholeBlocks = false;
    std::unique_ptr<support::WireFile> file;  // opened with the first port
};

TraceSettings& Settings() {
    static TraceSettings settings;
    return settings;
}

}  // namespace

void AddTraceOptions(CLI::App* command) {
    command->add_option("--trace", Settings().path,
                        "Add every byte to and from the module to FILE, with its time (README, \"The wire trace\")")
        ->type_name("FILE");
    command->add_flag("--trace-blocks", Settings().wholeBlocks,
                      "Put each XMODEM block into the trace whole, not as a summary line");
}

std::unique_ptr<SerialPort> MakePort() {
    TraceSettings& trace = Settings();
    if (trace.path.empty()) return std::make_unique<QtSerialPort>();
    if (!trace.file) trace.file = std::make_unique<support::WireFile>(trace.path, trace.wholeBlocks);
    return std::make_unique<support::TracingPort>(std::make_unique<QtSerialPort>(), *trace.file);
}

std::vector<std::string> TraceArguments(const std::string& port) {
    const TraceSettings& trace = Settings();
    if (trace.path.empty()) return {};
    std::string name = port.substr(port.find_last_of('/') + 1);
    if (port.rfind("/dev/pts/", 0) == 0) name = "pts" + name;
    std::vector<std::string> arguments = {"--trace", trace.path + "." + name};
    if (trace.wholeBlocks) arguments.emplace_back("--trace-blocks");
    return arguments;
}

}  // namespace sb::cli

#include <iostream>
#include <memory>
#include <string>

#include "Commands.h"
#include "SerialChoice.h"
#include "JsonOutput.h"
#include "ModuleConfig.h"
#include "TerminalLines.h"
#include "config/Catalog.h"
#include "config/Latin1Text.h"
#include "configfiles/ConfigCompare.h"
#include "configfiles/ConfigFile.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/PortErrorText.h"
#include "link/QtSerialPort.h"
#include "link/ReadModule.h"
#include "link/Terminal.h"

// save and diff: a module's configuration kept in a file, and two
// configurations compared option by option. Either side of diff may be the
// module as it stands, read as save reads it.
namespace sb::cli {
namespace {

constexpr double kReadSettleMs = 500;  // behind the opening, before the first command

struct FileOptions {
    std::string port;
    std::vector<std::string> files;
    bool json = false;
};

[[noreturn]] void Fail(int status, const std::string& message) {
    std::cerr << TerminalLines(message) << '\n';
    throw CLI::RuntimeError(status);
}

// The exchanges of info, then the answers taken as a configuration.
LoadedConfig ReadModuleConfig(const std::string& portName) {
    QtSerialPort port;
    PlainStatusText status;
    try {
        OpenPort(port, portName, kSettings300);
    } catch (const PortError& failure) {
        Fail(kExitNoModule, PortErrorText("CommPort Error", failure));
    }
    WaitMs(kReadSettleMs);
    DeviceInfo read;
    const auto failure = ReadModuleInfo(port, status, read);
    port.SetPortOpen(false);
    if (failure) Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    return LoadModuleConfig(read, portName);
}

void Save(const FileOptions& options) {
    const LoadedConfig config = ReadModuleConfig(options.port);
    WriteConfigFile(options.files.at(0), config.Document);
    std::cout << "Configuration of " << Latin1ToTerminal(config.Document.Module.SN) << " saved to " << options.files[0]
              << '\n';
}

struct Side {
    std::string Name;
    LoadedConfig Config;
};

Side SideOf(const std::string& file, const std::string& port) {
    if (!port.empty()) return {port, ReadModuleConfig(port)};
    return {file, ReadConfigFile(file)};
}

// --port takes the place of A or of B, as it stands before or behind the
// one file.
void Diff(const FileOptions& options, const CLI::App& command) {
    const bool portFirst = !options.port.empty() && !command.parse_order().empty() &&
                           (command.parse_order().front()->get_name() == "--port" ||
                            command.parse_order().front()->get_name() == "--serial");
    if (options.files.size() != (options.port.empty() ? 2u : 1u))
        Fail(kExitUsage, "diff compares two configurations: two files, or one file and --port");
    const std::string& first = options.files.front();
    const Side a = portFirst ? SideOf("", options.port) : SideOf(first, "");
    const Side b = options.port.empty() ? SideOf(options.files.back(), "")
                   : portFirst         ? SideOf(first, "")
                                       : SideOf("", options.port);
    const ConfigComparison comparison = CompareConfigurations(a.Config.Device, a.Config.Device.CfgImage,
                                                              b.Config.Device, b.Config.Device.CfgImage);
    if (options.json) {
        PrintJson(ComparisonJson(comparison));
    } else {
        std::cout << "--- " << a.Name << "\n+++ " << b.Name << '\n';
        for (const std::string& line : ComparisonLines(comparison, "A", "B"))
            std::cout << Latin1ToTerminal(line) << '\n';
    }
    std::cout.flush();
    if (!comparison.Equal()) throw CLI::RuntimeError(kExitDiffer);
}

}  // namespace

bool IsConfigFilePath(const std::string& path) {
    const std::string extension = kConfigExtension;
    return path.size() > extension.size() && path.compare(path.size() - extension.size(), extension.size(), extension) == 0;
}

void AddConfigFileCommands(CLI::App& app) {
    auto saveOptions = std::make_shared<FileOptions>();
    CLI::App* save = app.add_subcommand("save", "Read a module in boot mode and keep its configuration in a file");
    AddPortOrSerial(save, saveOptions->port, WantedMode::Boot);
    save->add_option("file", saveOptions->files, "The configuration file to write (*.sbconf)")->required()->expected(1);
    save->callback([saveOptions] { Save(*saveOptions); });

    auto diffOptions = std::make_shared<FileOptions>();
    CLI::App* diff = app.add_subcommand(
        "diff", "Compare two configurations option by option; --port P stands for the module as it is now");
    diff->add_option("files", diffOptions->files, "A and B: configuration files (*.sbconf)")->expected(1, 2);
    // --port (or --serial) reads the module as A when it stands before the file, else as B.
    AddPortOrSerial(diff, diffOptions->port, WantedMode::Boot, nullptr, PortNeed::Optional);
    diff->add_flag("--json", diffOptions->json, "Print the result as one JSON object");
    diff->callback([diffOptions, diff] { Diff(*diffOptions, *diff); });
}

}  // namespace sb::cli

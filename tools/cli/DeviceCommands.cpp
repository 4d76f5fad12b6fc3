#include <iostream>
#include <memory>
#include <optional>

#include "Commands.h"
#include "JsonText.h"
#include "SerialChoice.h"
#include "TerminalLines.h"
#include "config/Types.h"
#include "helpers/HexText.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/ModeSwitch.h"
#include "link/PortErrorText.h"
#include "link/PortLists.h"
#include "link/QtSerialPort.h"
#include "link/ReadModule.h"
#include "link/SystemInventory.h"
#include "link/Terminal.h"

// ports, info, boot, run and write: the device link without a window. Each
// command opens its port for its own length, as the screens do, and closes it
// on every road.
namespace sb::cli {
namespace {

constexpr double kReadSettleMs = 500;    // behind the opening, before the first command
constexpr double kWriteSettleMs = 1000;  // SETAPPCFG goes out a second after the opening
constexpr double kRescanMs = 200;

// Whether a status line on standard error waits for more dots.
bool statusLineOpen = false;

void EndStatusLine() {
    if (statusLineOpen) std::cerr << '\n';
    statusLineOpen = false;
}

[[noreturn]] void Fail(int status, const std::string& message) {
    EndStatusLine();
    std::cerr << TerminalLines(message) << '\n';
    throw CLI::RuntimeError(status);
}

// The status words of the exchanges on standard error: each word on a line
// of its own, the dots of the polls behind it as they come.
class ErrorStreamStatus final : public StatusText {
public:
    explicit ErrorStreamStatus(bool shown) : shown_(shown) {}
    ~ErrorStreamStatus() override { EndStatusLine(); }
    std::string Text() const override { return text_; }
    void SetText(const std::string& text) override {
        if (shown_) {
            if (statusLineOpen && !text_.empty() && text.compare(0, text_.size(), text_) == 0) {
                std::cerr << text.substr(text_.size());
            } else {
                EndStatusLine();
                std::cerr << text;
            }
            std::cerr.flush();
            statusLineOpen = true;
        }
        text_ = text;
    }

private:
    bool shown_;
    std::string text_;
};

struct DeviceOptions {
    std::string port;
    bool json = false;
    bool verbose = false;
    double waitSeconds = 10;
    std::string hex;
};

PortListState ScanNow() {
    static const std::unique_ptr<PortInventory> inventory = MakePortInventory();
    return ScanPortLists({}, *inventory, [](const std::string& text) { std::cerr << TerminalLines(text) << '\n'; });
}

std::string JsonPorts(const PortList& list) {
    std::string out = "[";
    for (const auto& item : list.Items) {
        if (item.Port.empty()) continue;  // "Not Found"
        if (out.size() > 1) out += ", ";
        out += "{\"port\": " + JsonString(item.Port) + ", \"description\": " + JsonString(item.Info) +
               ", \"id\": " + JsonString(item.PNPDeviceID) + "}";
    }
    return out + "]";
}

void PrintPorts(const char* caption, const PortList& list) {
    std::cout << caption << '\n';
    for (const auto& item : list.Items) {
        std::cout << "  " << item.Text;
        if (!item.Info.empty()) std::cout << "  " << item.Info;
        std::cout << '\n';
    }
}

void Ports(const DeviceOptions& options) {
    const PortListState lists = ScanNow();
    if (options.json) {
        std::cout << "{\"running\": " << JsonPorts(lists.DevList) << ", \"boot\": " << JsonPorts(lists.BootList)
                  << "}\n";
        return;
    }
    PrintPorts("Running Devices", lists.DevList);
    PrintPorts("Devices in Boot", lists.BootList);
}

void OpenOrFail(SerialPort& port, const std::string& name, const char* caption) {
    try {
        OpenPort(port, name, kSettings300);
    } catch (const PortError& failure) {
        Fail(kExitNoModule, PortErrorText(caption, failure));
    }
}

void Info(const DeviceOptions& options) {
    QtSerialPort port;
    ErrorStreamStatus status(options.verbose);
    OpenOrFail(port, options.port, "CommPort Error");
    WaitMs(kReadSettleMs);
    DeviceInfo info;
    const auto failure = ReadModuleInfo(port, status, info);
    port.SetPortOpen(false);

    const std::pair<const char*, const std::string*> fields[] = {
        {"SN", &info.SN},
        {"PVer", &info.PVer},
        {"PName", &info.PName},
        {"PDate", &info.PDate},
        {"VIN", &info.VIN},
        {"FWName", &info.FWName},
        {"FWVer", &info.FWVer},
        {"HWVer", &info.HWVer},
        {"AppConfig", &info.AppConfig},
        {"InfoFile", &info.InfoFile},
        {"AppInfo", &info.AppInfo},
    };
    bool silent = false;
    if (options.json) std::cout << "{";
    for (const auto& [name, value] : fields) {
        if (options.json) {
            std::cout << (name == fields[0].first ? "" : ", ") << '"' << name << "\": " << JsonString(*value);
        } else {
            std::cout << name << ": " << *value << '\n';
        }
        silent = silent || *value == kNoAnswer;
    }
    if (options.json) std::cout << "}\n";
    std::cout.flush();
    if (failure) Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    if (silent) Fail(kExitNotConfirmed, "The module did not answer every command.");
}

// Scans until a port of the wanted mode shows up that was not in that list
// before the switch: a module that re-enumerates comes back under a name of
// the system's choosing, which may or may not be the old one.
std::optional<PortListItem> WaitForArrival(ModuleMode mode, const PortList& before, double waitSeconds) {
    const auto isNew = [&before](const PortListItem& item) {
        for (const auto& old : before.Items)
            if (old.Port == item.Port && old.PNPDeviceID == item.PNPDeviceID) return false;
        return !item.Port.empty();
    };
    const auto listOf = [mode](const PortListState& lists) -> const PortList& {
        return mode == ModuleMode::Boot ? lists.BootList : lists.DevList;
    };
    for (double waited = 0;; waited += kRescanMs) {
        const PortListState lists = ScanNow();
        for (const auto& item : listOf(lists).Items)
            if (isNew(item)) return item;
        if (waited >= waitSeconds * 1000) return std::nullopt;
        WaitMs(kRescanMs);
    }
}

void ReportArrival(const std::optional<PortListItem>& arrived, ModuleMode mode, const DeviceOptions& options,
                   const std::string& answerJson) {
    const char* caption = mode == ModuleMode::Boot ? "Devices in Boot" : "Running Devices";
    if (options.json) {
        std::cout << "{" << answerJson << "\"port\": " << (arrived ? JsonString(arrived->Port) : "null")
                  << ", \"description\": " << (arrived ? JsonString(arrived->Info) : "null") << "}\n";
    } else if (arrived) {
        std::cout << caption << ": " << arrived->Port;
        if (!arrived->Info.empty()) std::cout << "  " << arrived->Info;
        std::cout << '\n';
    }
    std::cout.flush();
    if (!arrived)
        Fail(kExitNotConfirmed, std::string("No new port showed up under \"") + caption + "\" within " +
                                    std::to_string(static_cast<int>(options.waitSeconds)) + " s.");
}

void Boot(const DeviceOptions& options) {
    const PortListState before = ScanNow();
    QtSerialPort port;
    if (const auto failure = SwitchToBoot(port, options.port))
        Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    ReportArrival(WaitForArrival(ModuleMode::Boot, before.BootList, options.waitSeconds), ModuleMode::Boot, options,
                  "");
}

void Run(const DeviceOptions& options) {
    const PortListState before = ScanNow();
    QtSerialPort port;
    ErrorStreamStatus status(options.verbose);
    std::optional<std::string> answer;
    if (const auto failure =
            SwitchToRunning(port, options.port, status, [&answer](const std::string& text) { answer = text; }))
        Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    if (!options.json && answer) std::cout << *answer << (answer->empty() || answer->back() == '\n' ? "" : "\n");
    const std::string answerJson = "\"answer\": " + (answer ? JsonString(*answer) : std::string("null")) + ", ";
    ReportArrival(WaitForArrival(ModuleMode::Running, before.DevList, options.waitSeconds), ModuleMode::Running,
                  options, answerJson);
}

void Write(const DeviceOptions& options) {
    const std::string data = NormalizeHex(options.hex);
    if (data.empty()) Fail(kExitUsage, "Error! Config was not set\r\nWrong data context!");
    QtSerialPort port;
    ErrorStreamStatus status(options.verbose);
    OpenOrFail(port, options.port, "COMPort Error");
    WaitMs(kWriteSettleMs);
    std::string answer;
    std::optional<PortError> failure;
    try {
        answer = TrimBlanks(TerminalExecute(std::string(cmd::SETAPPCFG) + data, port, status));
    } catch (const PortError& e) {
        failure = e;
    }
    port.SetPortOpen(false);
    const bool written = answer == cmd::AnswerOK;
    if (options.json)
        std::cout << "{\"answer\": " << JsonString(answer) << ", \"written\": " << (written ? "true" : "false")
                  << "}\n";
    else if (written)
        std::cout << "Config written successfully!\n";
    std::cout.flush();
    if (failure) Fail(kExitNoModule, PortErrorText("COMPort Error", *failure));
    if (!written) Fail(kExitNotConfirmed, "Error! Config was not set !\r\nThe module answered: " + answer);
}

CLI::App* AddCommand(CLI::App& app, const char* name, const char* description,
                     const std::shared_ptr<DeviceOptions>& options, void (*run)(const DeviceOptions&)) {
    CLI::App* command = app.add_subcommand(name, description);
    command->add_flag("--json", options->json, "Print the result as one JSON object");
    command->callback([options, run] { run(*options); });
    return command;
}

void AddPortOption(CLI::App* command, const std::shared_ptr<DeviceOptions>& options,
                   WantedMode wanted = WantedMode::Boot) {
    AddPortOrSerial(command, options->port, wanted);
}

}  // namespace

void AddDeviceCommands(CLI::App& app) {
    auto options = std::make_shared<DeviceOptions>();

    AddCommand(app, "ports", "List the ports of running modules and of modules in boot mode", options, Ports);

    CLI::App* info = AddCommand(app, "info", "Read what a module in boot mode reports about itself", options, Info);
    AddPortOption(info, options);
    info->add_flag("--verbose", options->verbose, "Show the status of each exchange on standard error");

    CLI::App* boot =
        AddCommand(app, "boot", "Send a running module into boot mode, and show its new port", options, Boot);
    AddPortOption(boot, options, WantedMode::Any);
    boot->add_option("--wait", options->waitSeconds, "Seconds to wait for the module's new port (default 10)");

    CLI::App* run =
        AddCommand(app, "run", "Start the firmware of a module in boot mode, and show its new port", options, Run);
    AddPortOption(run, options);
    run->add_option("--wait", options->waitSeconds, "Seconds to wait for the module's new port (default 10)");
    run->add_flag("--verbose", options->verbose, "Show the status of each exchange on standard error");

    CLI::App* write =
        AddCommand(app, "write", "Write a configuration image (hex text) into a module in boot mode", options, Write);
    AddPortOption(write, options);
    write->add_option("hex", options->hex, "The configuration image as hex text")->required();
    write->add_flag("--verbose", options->verbose, "Show the status of each exchange on standard error");
}

}  // namespace sb::cli

#include <iostream>
#include <memory>
#include <optional>

#include "Commands.h"
#include "JsonOutput.h"
#include "ModuleConfig.h"
#include "SerialChoice.h"
#include "TerminalLines.h"
#include "config/Latin1Text.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/WriteChecks.h"
#include "config/Types.h"
#include "helpers/HexText.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/ModeSwitch.h"
#include "link/PortErrorText.h"
#include "link/PortLists.h"
#include "TracedPort.h"
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
    std::string file;  // a configuration file in place of hex
    bool verify = false;
    bool force = false;
};

PortListState ScanNow() {
    static const std::unique_ptr<PortInventory> inventory = MakePortInventory();
    return ScanPortLists({}, *inventory, [](const std::string& text) { std::cerr << TerminalLines(text) << '\n'; });
}

Json JsonPorts(const PortList& list) {
    Json out = Json::array();
    for (const auto& item : list.Items) {
        if (item.Port.empty()) continue;  // "Not Found"
        out.push_back({{"port", JsonBytes(item.Port)},
                       {"description", JsonBytes(item.Info)},
                       {"id", JsonBytes(item.PNPDeviceID)}});
    }
    return out;
}

void PrintPorts(const char* caption, const PortList& list) {
    std::cout << caption << '\n';
    for (const auto& item : list.Items) {
        std::cout << "  " << Latin1ToTerminal(item.Text);
        if (!item.Info.empty()) std::cout << "  " << Latin1ToTerminal(item.Info);
        std::cout << '\n';
    }
}

void Ports(const DeviceOptions& options) {
    const PortListState lists = ScanNow();
    if (options.json) {
        PrintJson({{"running", JsonPorts(lists.DevList)}, {"boot", JsonPorts(lists.BootList)}});
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
    const auto portOwner = MakePort();
    SerialPort& port = *portOwner;
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
    Json json = Json::object();
    for (const auto& [name, value] : fields) {
        if (options.json)
            json[name] = JsonBytes(*value);
        else
            std::cout << name << ": " << Latin1ToTerminal(*value) << '\n';
        silent = silent || *value == kNoAnswer;
    }
    if (options.json) PrintJson(json);
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

// json: what the command has to say before the port, if anything.
void ReportArrival(const std::optional<PortListItem>& arrived, ModuleMode mode, const DeviceOptions& options,
                   Json json = Json::object()) {
    const char* caption = mode == ModuleMode::Boot ? "Devices in Boot" : "Running Devices";
    if (options.json) {
        json["port"] = arrived ? JsonBytes(arrived->Port) : Json();
        json["description"] = arrived ? JsonBytes(arrived->Info) : Json();
        PrintJson(json);
    } else if (arrived) {
        std::cout << caption << ": " << Latin1ToTerminal(arrived->Port);
        if (!arrived->Info.empty()) std::cout << "  " << Latin1ToTerminal(arrived->Info);
        std::cout << '\n';
    }
    std::cout.flush();
    if (!arrived)
        Fail(kExitNotConfirmed, std::string("No new port showed up under \"") + caption + "\" within " +
                                    std::to_string(static_cast<int>(options.waitSeconds)) + " s.");
}

void Boot(const DeviceOptions& options) {
    const PortListState before = ScanNow();
    const auto portOwner = MakePort();
    SerialPort& port = *portOwner;
    if (const auto failure = SwitchToBoot(port, options.port))
        Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    ReportArrival(WaitForArrival(ModuleMode::Boot, before.BootList, options.waitSeconds), ModuleMode::Boot, options);
}

void Run(const DeviceOptions& options) {
    const PortListState before = ScanNow();
    const auto portOwner = MakePort();
    SerialPort& port = *portOwner;
    ErrorStreamStatus status(options.verbose);
    std::optional<std::string> answer;
    if (const auto failure =
            SwitchToRunning(port, options.port, status, [&answer](const std::string& text) { answer = text; }))
        Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    if (!options.json && answer) std::cout << Latin1ToTerminal(*answer) << '\n';
    ReportArrival(WaitForArrival(ModuleMode::Running, before.DevList, options.waitSeconds), ModuleMode::Running,
                  options, {{"answer", answer ? JsonBytes(*answer) : Json()}});
}

// A file's image is checked against the module's catalog before it goes
// out; --verify reads the configuration back behind the "OK". Both need the
// catalog, which is read on the same opening ahead of SETAPPCFG.
DeviceInfo CatalogForWrite(SerialPort& port, StatusText& status, const DeviceOptions& options,
                           const std::string& image) {
    WaitMs(kReadSettleMs);
    std::string reason;
    const auto module = ReadModuleCatalog(port, status, reason);
    if (!module) Fail(kExitCatalogRefused, (reason.empty() ? "" : Latin1ToTerminal(reason) + "\n") +
                                               "Module do not support info file feature");
    if (options.file.empty() || options.force) return *module;
    const FitCheck fit = CheckFit(*module, image);
    if (fit.Verdict != Fit::Fits)
        Fail(kExitDoesNotFit, options.file + ": " + fit.Message + "; --force writes it anyway");
    return *module;
}

void Write(const DeviceOptions& options) {
    const std::string data =
        options.file.empty() ? NormalizeHex(options.hex) : ReadConfigFile(options.file).Document.Image;
    if (data.empty()) Fail(kExitUsage, "Error! Config was not set\r\nWrong data context!");
    const auto portOwner = MakePort();
    SerialPort& port = *portOwner;
    ErrorStreamStatus status(options.verbose);
    OpenOrFail(port, options.port, "COMPort Error");
    std::optional<DeviceInfo> module;
    if (!options.file.empty() || options.verify)
        module = CatalogForWrite(port, status, options, HexToBytes(data));
    else
        WaitMs(kWriteSettleMs);
    std::string answer;
    std::optional<PortError> failure;
    std::optional<VerifyResult> verified;
    try {
        answer = TrimBlanks(TerminalExecute(std::string(cmd::SETAPPCFG) + data, port, status));
        if (options.verify && answer == cmd::AnswerOK)
            verified = VerifyWrite(*module, HexToBytes(data),
                                   TrimBlanks(TerminalExecute(std::string(cmd::GETAPPCFG), port, status)));
    } catch (const PortError& e) {
        failure = e;
    }
    port.SetPortOpen(false);
    const bool written = answer == cmd::AnswerOK;
    if (options.json) {
        Json json = {{"answer", JsonBytes(answer)}, {"written", written}};
        if (options.verify) json["verified"] = verified && verified->Holds;
        PrintJson(json);
    } else if (written && (!verified || verified->Holds)) {
        std::cout << "Config written successfully!\n";
    }
    std::cout.flush();
    if (failure) Fail(kExitNoModule, PortErrorText("COMPort Error", *failure));
    if (!written)
        Fail(kExitNotConfirmed, "Error! Config was not set !\r\nThe module answered: " + Latin1ToTerminal(answer));
    if (verified && !verified->Holds) Fail(kExitNotVerified, VerifyMessage(*verified, Latin1ToTerminal));
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
    AddTraceOptions(command);
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
    CLI::Option_group* image = write->add_option_group("image", "The configuration, one of");
    image->add_option("hex", options->hex, "The configuration image as hex text");
    image->add_option("--file", options->file,
                      "A configuration file (*.sbconf); refused when its image does not fit the module");
    image->require_option(1);
    write->add_flag("--force", options->force, "Write the file's image even when it does not fit the module");
    write->add_flag("--verify", options->verify,
                    "Read the configuration back behind the write and compare it with what was sent");
    write->add_flag("--verbose", options->verbose, "Show the status of each exchange on standard error");
}

}  // namespace sb::cli

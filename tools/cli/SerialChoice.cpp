#include "SerialChoice.h"

#include <iostream>
#include <memory>

#include "Commands.h"
#include "config/Latin1Text.h"
#include "helpers/Waiting.h"
#include "link/ModeSwitch.h"
#include "link/PortErrorText.h"
#include "TracedPort.h"
#include "link/QtSerialPort.h"
#include "link/SystemInventory.h"
#include "production/StationBook.h"
#include "TerminalLines.h"

namespace sb::cli {
namespace {

// A module re-enumerates within a few seconds; the scans behind the switch
// are the ones of the boot command.
constexpr double kRescanMs = 200;
constexpr double kBootArrivalMs = 10000;

[[noreturn]] void Fail(int status, const std::string& message) {
    std::cerr << TerminalLines(message) << '\n';
    throw CLI::RuntimeError(status);
}

std::vector<ListedModule> ModulesOf(const std::string& serial) {
    const auto inventory = MakePortInventory();
    std::vector<ListedModule> found;
    for (const ListedModule& module : ListModules(*inventory))
        if (module.UsbSerial == serial) found.push_back(module);
    return found;
}

ListedModule TheOneModule(const std::string& serial) {
    const std::vector<ListedModule> found = ModulesOf(serial);
    if (found.empty()) Fail(kExitSerialUnknown, "No module with the serial " + serial + " is plugged in.");
    if (found.size() > 1) {
        std::string ports;
        for (const ListedModule& module : found) ports += (ports.empty() ? "" : ", ") + Latin1ToTerminal(module.Port);
        Fail(kExitSerialAmbiguous,
             "The serial " + serial + " is the one of " + std::to_string(found.size()) + " modules (" + ports + ").");
    }
    return found.front();
}

std::string IntoBootLoader(const ListedModule& module) {
    const auto portOwner = MakePort();
    SerialPort& port = *portOwner;
    if (const auto failure = SwitchToBoot(port, module.Port))
        Fail(kExitNoModule, PortErrorText("CommPort Error", *failure));
    for (double waited = 0;; waited += kRescanMs) {
        for (const ListedModule& again : ModulesOf(module.UsbSerial))
            if (again.Mode == ModuleMode::Boot) return again.Port;
        if (waited >= kBootArrivalMs)
            Fail(kExitNotConfirmed, "The module " + module.UsbSerial + " did not come back in its boot loader within " +
                                        std::to_string(static_cast<int>(kBootArrivalMs / 1000)) + " s.");
        WaitMs(kRescanMs);
    }
}

// Help, and a missing required argument, are CLI11's to answer, before any
// module is touched.
bool ParseIsComplete(const CLI::App* command) {
    for (const CLI::Option* option : command->get_options())
        if ((option->get_required() && option->count() == 0) || (option->get_name() == "--help" && option->count() > 0))
            return false;
    return true;
}

}  // namespace

void AddPortOrSerial(CLI::App* command, std::string& port, WantedMode wanted, CLI::Option* instead, PortNeed need) {
    auto serial = std::make_shared<std::string>();
    CLI::Option* byPort = command->add_option("--port", port, "A port name as 'ports' lists it, or a device path");
    CLI::Option* bySerial = command->add_option(
        "--serial", *serial,
        "The module whose USB identity ends in this serial number (a running one is sent into boot mode first)");
    byPort->excludes(bySerial);
    if (instead) instead->excludes(byPort)->excludes(bySerial);
    command->parse_complete_callback([=, &port] {
        if (instead && instead->count() > 0) return;
        if (byPort->count() + bySerial->count() == 0) {
            if (need == PortNeed::Optional) return;
            throw CLI::RequiredError("--port or --serial");
        }
        if (bySerial->count() == 0 || !ParseIsComplete(command)) return;
        const ListedModule module = TheOneModule(*serial);
        port = wanted == WantedMode::Boot && module.Mode == ModuleMode::Running ? IntoBootLoader(module) : module.Port;
    });
}

}  // namespace sb::cli

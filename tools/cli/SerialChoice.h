#pragma once
#include <CLI/CLI.hpp>
#include <string>

// --port or --serial: a command names its module by its port, or by the
// serial number of its USB identity. A serial is turned into a port before
// the command runs; a module that is found running where the command wants
// it in boot mode is first sent into its boot loader and found again there.
namespace sb::cli {

enum class WantedMode {
    Boot,  // the command talks to the boot loader (info, write, flash, run)
    Any,   // the module as it is found (boot)
};

enum class PortNeed { Required, Optional };

// Adds --port and --serial to command, one of them required (unless `need`
// is Optional, or `instead`, an option such as --all, is given); the port of
// the module ends up in port.
void AddPortOrSerial(CLI::App* command, std::string& port, WantedMode wanted, CLI::Option* instead = nullptr,
                     PortNeed need = PortNeed::Required);

}  // namespace sb::cli

#include <QCoreApplication>
#include <exception>
#include <iostream>
#include <string>

#include "Commands.h"
#include "ProgramVersion.h"
#include "TerminalLines.h"
#include "link/PortErrorText.h"
#include "ui/QtWaitContext.h"

namespace {

std::string ExitStatusFooter() {
    std::string footer = "Exit status:";
    for (const auto& [code, meaning] : sb::cli::kExitStatuses)
        footer += std::string(code == 0 ? " " : "; ") + std::to_string(code) + " " + meaning;
    return footer + ".";
}

// CLI11 ends with codes of its own (105 for a file that is not there); here
// every fault of the command line is a usage error, and a status that the
// table does not hold is none of ours.
int ExitStatusOf(const CLI::Error& error) {
    const int code = error.get_exit_code();
    if (dynamic_cast<const CLI::RuntimeError*>(&error) == nullptr)
        return code == 0 ? sb::cli::kExitSuccess : sb::cli::kExitUsage;
    for (const auto& status : sb::cli::kExitStatuses)
        if (status.Code == code) return code;
    return sb::cli::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
    // The serial port adapter lives on Qt's event loop; every wait runs it.
    QCoreApplication qtApp(argc, argv);
    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);

    CLI::App app{"servicebay-cli: read, configure and program the module from scripts"};
    app.set_version_flag("--version", std::string("servicebay-cli ") + sb::kProgramVersion);
    app.require_subcommand(1);
    app.footer(ExitStatusFooter());
    sb::cli::AddCatalogCommands(app);
    sb::cli::AddDeviceCommands(app);
    sb::cli::AddFlashCommand(app);
    sb::cli::AddConfigFileCommands(app);
    sb::cli::AddStationCommand(app);
    sb::cli::AddRecipeCommands(app);

    int status = sb::cli::kExitSuccess;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Error& e) {
        app.exit(e);
        status = ExitStatusOf(e);
    } catch (const sb::PortError& failure) {
        std::cerr << sb::cli::TerminalLines(sb::PortErrorText("CommPort Error", failure)) << '\n';
        status = sb::cli::kExitNoModule;
    } catch (const sb::ConfigFileError& failure) {
        std::cerr << failure.what() << '\n';
        status = sb::cli::ExitStatusOf(failure.Fault());
    } catch (const std::exception& failure) {
        // What the command was given could not be taken (an image of more
        // than 32767 hex digits, a path that cannot be read).
        std::cerr << failure.what() << '\n';
        status = sb::cli::kExitUsage;
    }
    sb::SetWaitContext(nullptr);
    return status;
}

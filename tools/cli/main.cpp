#include <QCoreApplication>

#include "Commands.h"
#include "ui/QtWaitContext.h"

int main(int argc, char** argv) {
    // The serial port adapter lives on Qt's event loop; every wait runs it.
    QCoreApplication qtApp(argc, argv);
    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);

    CLI::App app{"servicebay-cli: read, configure and program the module from scripts"};
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 success; 1 usage error; 2 catalog refused; 3 no module or port error;\n"
        "4 the module did not confirm; 5 firmware transfer failed; 6 firmware file missing, empty or unreadable;\n"
        "7 no configuration of the catalog has the image's Id.");
    sb::cli::AddCatalogCommands(app);
    sb::cli::AddDeviceCommands(app);
    sb::cli::AddFlashCommand(app);

    int status = 0;
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        status = app.exit(e);
    }
    sb::SetWaitContext(nullptr);
    return status;
}

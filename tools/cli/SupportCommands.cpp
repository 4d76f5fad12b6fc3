#include <QtGlobal>
#include <iostream>
#include <memory>

#include "Commands.h"
#include "JsonOutput.h"
#include "ProgramVersion.h"
#include "SerialChoice.h"
#include "config/Latin1Text.h"
#include "configfiles/ConfigHistory.h"
#include "helpers/WholeFile.h"
#include "link/QtSerialPort.h"
#include "link/SystemInventory.h"
#include "support/DoctorReport.h"
#include "support/SupportBundle.h"

// doctor: why a module cannot be reached, and what puts it right.
// support-bundle: that, and what support needs besides, in one archive.
namespace sb::cli {
namespace {

struct DoctorOptions {
    std::string port;
    std::string needs = "boot";
    std::string log;
    bool json = false;
};

int ExitStatusOf(support::Trouble trouble) {
    switch (trouble) {
        case support::Trouble::None: return kExitSuccess;
        case support::Trouble::Access: return kExitDoctorAccess;
        case support::Trouble::OtherProgram: return kExitDoctorOtherProgram;
        case support::Trouble::Mode: return kExitDoctorMode;
        case support::Trouble::Folder: return kExitDoctorAccess;
        case support::Trouble::NoModule: return kExitDoctorNoModule;
    }
    return kExitUsage;
}

// The port's USB identity as the inventory lists it (a virtual module's too).
std::string IdentityOf(const std::string& port) {
    std::string identity;
    const auto inventory = MakePortInventory();
    try {
        inventory->Connect();
        inventory->Walk([&](const InventoryPort& item) {
            if (QtSerialPort::DevicePath(item.DeviceID) == QtSerialPort::DevicePath(port)) identity = item.PNPDeviceID;
        });
    } catch (const std::exception&) {
        // A port the inventory cannot tell about shows no identity; the mode check says so.
    }
    return identity;
}

support::DoctorRequest DoctorRequestFor(const std::string& port, ModuleMode needed, const std::string& log) {
    support::DoctorRequest request{port, port.empty() ? "" : IdentityOf(port), needed, support::ProgramFiles()};
    if (!log.empty()) request.Folders.push_back(log);
    return request;
}

// Process names and paths are the system's bytes: shown in the terminal-safe form.
void PrintSafeLines(const std::string& text) {
    for (std::size_t from = 0; from < text.size();) {
        const auto end = text.find('\n', from);
        std::cout << Latin1ToTerminal(std::string_view(text).substr(from, end - from)) << '\n';
        from = end == std::string::npos ? text.size() : end + 1;
    }
    std::cout.flush();
}

struct BundleOptions {
    std::string file;
    std::string trace;
    std::string log;
    bool withVin = false;
};

void SupportBundle(const BundleOptions& options) {
    const support::LocalSystem system;
    support::BundleSources sources;
    sources.Findings = support::RunDoctor(system, DoctorRequestFor("", ModuleMode::None, options.log));
    sources.Versions = std::string("servicebay-cli ") + kProgramVersion + "\nQt " + qVersion() + "\n" +
                       support::SystemVersions(system);
    sources.HistoryRoot = HistoryRoot();
    sources.LogPaths = support::ProgramFiles();
    if (!options.log.empty()) sources.LogPaths.push_back(options.log);
    sources.WithVin = options.withVin;
    std::string trace;
    std::error_code failure;
    if (options.trace.empty())
        sources.WireTraceMissing = "no trace file was given (--trace-file)";
    else if (ReadWholeFile(options.trace, trace, support::kBundlePartLimit * 4, &failure) == WholeFileRead::Complete)
        sources.WireTrace = std::move(trace);
    else
        sources.WireTraceMissing = options.trace + " cannot be read" + (failure ? ": " + failure.message() : "");
    try {
        support::WriteSupportBundle(options.file, sources);
    } catch (const std::runtime_error& error) {
        std::cerr << Latin1ToTerminal(error.what()) << '\n';
        throw CLI::RuntimeError(kExitBundleCannotWrite);
    }
    std::cout << "Support bundle written to " << Latin1ToTerminal(options.file) << '\n';
}

}  // namespace

void AddSupportCommands(CLI::App& app) {
    auto bundle = std::make_shared<BundleOptions>();
    CLI::App* bundleCommand = app.add_subcommand(
        "support-bundle", "Write the doctor's findings, versions, a wire trace and the last read into one archive");
    bundleCommand->add_option("file", bundle->file, "The archive to write (.tar.gz)")->required();
    bundleCommand->add_option("--trace-file", bundle->trace, "A wire trace written with --trace, to go in");
    bundleCommand->add_option("--log", bundle->log, "A production log whose path goes in");
    bundleCommand->add_flag("--with-vin", bundle->withVin, "Keep the module's VIN in the configuration and the trace");
    bundleCommand->callback([bundle] { SupportBundle(*bundle); });

    auto options = std::make_shared<DoctorOptions>();
    CLI::App* doctor = app.add_subcommand(
        "doctor", "Look for what keeps a module from being reached, and say how to put it right");
    AddPortOrSerial(doctor, options->port, WantedMode::Any, nullptr, PortNeed::Optional);
    doctor->add_option("--needs", options->needs, "The mode the next command needs: boot (default), running or any")
        ->check(CLI::IsMember({"boot", "running", "any"}));
    doctor->add_option("--log", options->log, "A production log to be written, checked with the program's files");
    doctor->add_flag("--json", options->json, "Print the findings as one JSON object");
    doctor->callback([options] {
        const ModuleMode needed = options->needs == "boot"      ? ModuleMode::Boot
                                  : options->needs == "running" ? ModuleMode::Running
                                                                : ModuleMode::None;
        const auto findings =
            support::RunDoctor(support::LocalSystem(), DoctorRequestFor(options->port, needed, options->log));
        if (options->json)
            PrintJson(support::FindingsJson(findings));
        else
            PrintSafeLines(support::FindingsText(findings));
        if (const int status = ExitStatusOf(support::WorstTrouble(findings)); status != kExitSuccess)
            throw CLI::RuntimeError(status);
    });
}

}  // namespace sb::cli

#include "ProductionCommands.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "Commands.h"
#include "ProgramVersion.h"
#include "ProgressBoard.h"
#include "link/DeviceEvents.h"
#include "link/SystemInventory.h"
#include "production/FirmwareFile.h"
#include "production/ProductionLog.h"
#include "production/Station.h"
#include "production/StopSignals.h"
#include "production/Summary.h"

namespace sb::cli {
namespace {

[[noreturn]] void Fail(int status, const std::string& message) {
    std::cerr << message << '\n';
    throw CLI::RuntimeError(status);
}

// This very program, for the children: the same build downloads as plans.
std::string ThisProgram() {
    std::error_code failed;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? "servicebay-cli" : path.string();
}

// The program line of one job. A download reads the sealed copy of the
// firmware, so every module gets the bytes whose SHA-256 the log names.
std::vector<std::string> JobCommand(const ProductionOptions& options, const FirmwareFile& firmware,
                                    const ModuleJob& job) {
    if (job.Step == JobStep::EnterBoot) return {ThisProgram(), "boot", "--port", job.Port, "--json"};
    std::vector<std::string> argv = {ThisProgram(),          "flash", "--port", job.Port, firmware.CopyPath(),
                                     "--json",               "--progress-json", "--retries",
                                     std::to_string(options.retries)};
    if (options.production) argv.push_back("--production");
    if (options.runAfter) argv.push_back("--run-after");
    return argv;
}

struct Run {
    std::unique_ptr<FirmwareFile> firmware;
    std::unique_ptr<ProductionLog> log;
    ProgressBoard board{std::cerr, ::isatty(STDERR_FILENO) != 0};
};

// The firmware and the log before any module is touched: a run without its
// log is refused.
void Prepare(Run& run, const ProductionOptions& options) {
    try {
        run.firmware = std::make_unique<FirmwareFile>(options.file);
    } catch (const FirmwareError& failure) {
        Fail(kExitNoFile, failure.what());
    }
    if (options.log.empty()) return;
    try {
        run.log = std::make_unique<ProductionLog>(options.log);
    } catch (const LogError& failure) {
        Fail(kExitNoLog, failure.what());
    }
}

LineSettings SettingsOf(Run& run, const ProductionOptions& options) {
    LineSettings settings;
    settings.Firmware = run.firmware.get();
    settings.Log = run.log.get();
    settings.ProgramVersion = kProgramVersion;
    const FirmwareFile* firmware = run.firmware.get();
    settings.Command = [options, firmware](const ModuleJob& job) { return JobCommand(options, *firmware, job); };
    return settings;
}

LineHooks HooksOf(Run& run) {
    return {[&run](const ModuleJob& job, const XmodemProgress& p) { run.board.Progress(job, p); },
            [&run](const ModuleJob& job, const ModuleRecord* record, bool ok) { run.board.Ended(job, record, ok); }};
}

// One turn of the loop: waits for the children, the stop signals and the
// device events, and serves what came. Answers the stop requests that came.
struct Turn {
    int stops = 0;
    bool devices = false;
};
Turn WaitTurn(ChildSupervisor& children, StopSignals& signals, DeviceEvents* events) {
    std::vector<pollfd> fds;
    signals.AddPollFd(fds);
    if (events) events->AddPollFds(fds);
    const size_t own = fds.size();
    children.AddPollFds(fds);
    ::poll(fds.data(), fds.size(), children.PollTimeoutMs());
    Turn turn;
    for (size_t i = 0; i < own; ++i) {
        if (!fds[i].revents) continue;
        if (i == 0) turn.stops = signals.Take();
        else if (events) turn.devices = (fds[i].fd == events->UdevFd() ? events->DrainUdev() : events->DrainRegistry()) || turn.devices;
    }
    children.Service(fds);
    return turn;
}

// The table on standard output; the failed modules named on standard error
// and in the exit status.
void Conclude(const std::vector<ModuleRecord>& records) {
    const Summary summary = Summarize(records);
    std::cout << summary.Table() << std::flush;
    if (summary.AllSucceeded()) return;
    std::string names;
    for (const SummaryRow* row : summary.Failed())
        names += (names.empty() ? "" : ", ") + (row->Last.UsbSerial.empty() ? row->Last.Port : row->Last.UsbSerial);
    Fail(kExitModuleFailed, "Not programmed: " + names + ".");
}

}  // namespace

void FlashAll(const ProductionOptions& options) {
    Run run;
    Prepare(run, options);
    std::vector<ModuleJob> jobs;
    for (const ListedModule& module : ListModules(*MakePortInventory()))
        if (module.Mode == ModuleMode::Boot) jobs.push_back({JobStep::Flash, module.Port, module.UsbSerial});
    if (jobs.empty()) Fail(kExitNoModule, "Cant find device in boot mode");

    StopSignals signals;
    ProductionLine line(SettingsOf(run, options), HooksOf(run));
    try {
        for (const ModuleJob& job : jobs) {
            run.board.Started(job);
            line.Start(job);
        }
        while (line.Running() > 0)
            if (WaitTurn(line.Children(), signals, nullptr).stops > 0) line.StopAll();
    } catch (const LogError& failure) {
        line.StopAll();
        Fail(kExitNoLog, failure.what());
    }
    Conclude(line.Records());
}

namespace {

void Station(const ProductionOptions& options) {
    Run run;
    Prepare(run, options);
    StopSignals signals;
    DeviceEvents events;
    for (const std::string& problem : events.Problems()) std::cerr << problem << '\n';
    auto inventory = MakePortInventory();
    StationSettings settings{SettingsOf(run, options), options.count,
                             [&inventory] { return ListModules(*inventory); }};
    sb::Station station(std::move(settings), HooksOf(run));
    run.board.Note("Waiting for modules (" + run.firmware->Name() + ", SHA-256 " + run.firmware->Sha256() + ")");
    int stops = 0;
    try {
        station.Refresh();
        while (!station.Finished()) {
            const Turn turn = WaitTurn(station.Line().Children(), signals, &events);
            if (turn.devices) station.Refresh();
            for (int i = 0; i < turn.stops; ++i) {
                if (++stops == 1) {
                    run.board.Note("Stopping: the modules in progress are finished first (Ctrl-C again to stop them).");
                    station.Stop();
                } else {
                    station.Abort();
                }
            }
        }
    } catch (const LogError& failure) {
        station.Abort();
        Fail(kExitNoLog, failure.what());
    }
    if (station.Refusal()) {
        std::cout << Summarize(station.Line().Records()).Table() << std::flush;
        Fail(kExitFirmwareChanged, *station.Refusal());
    }
    Conclude(station.Line().Records());
}

}  // namespace

CLI::Option* AddFlashAllOptions(CLI::App* flash, ProductionOptions& options) {
    flash->add_option("--log", options.log, "With --all: append one JSON line per module and attempt to FILE")
        ->type_name("FILE");
    return flash->add_flag("--all", options.all, "Download the file into every module in boot mode at the same time");
}

void AddStationCommand(CLI::App& app) {
    auto options = std::make_shared<ProductionOptions>();
    CLI::App* station = app.add_subcommand(
        "station", "Wait for modules and program each one as it is plugged in, until Ctrl-C or --count");
    station->add_option("file", options->file, "The firmware file (*.cod), read once at the start")->required();
    station->add_flag("--production", options->production,
                      "Behind each successful download add the production record to sniffer.ini");
    station->add_flag("--run-after", options->runAfter, "Start the firmware of each programmed module with RUN");
    station->add_option("--count", options->count, "End after N modules were programmed")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    station->add_option("--retries", options->retries, "Try a failed download again up to N times (default 0)")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    station->add_option("--log", options->log, "Append one JSON line per module and attempt to FILE")
        ->type_name("FILE");
    station->callback([options] { Station(*options); });
}

}  // namespace sb::cli

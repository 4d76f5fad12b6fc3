#include "ProductionCommands.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "Commands.h"
#include "ProgramVersion.h"
#include "TracedPort.h"
#include "ProgressBoard.h"
#include "link/DeviceEvents.h"
#include "link/SystemInventory.h"
#include "production/FirmwareFile.h"
#include "production/JobCommand.h"
#include "production/RecipeFirmware.h"
#include "production/ProductionLog.h"
#include "production/Station.h"
#include "production/StationStopping.h"
#include "production/StopSignals.h"
#include "production/Summary.h"

namespace sb::cli {
namespace {

using Clock = std::chrono::steady_clock;

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

struct Run {
    std::optional<Recipe> recipe;
    std::unique_ptr<FirmwareFile> firmware;
    std::unique_ptr<ProductionLog> log;
    ProgressBoard board{std::cerr, ::isatty(STDERR_FILENO) != 0};
    std::vector<ListedModule> withdrawn;  // waited for their turn, never started
};

// A recipe's firmware is its own, and must still be the file that the
// check read.
void PrepareRecipe(Run& run, ProductionOptions& options) {
    run.recipe = RecipeOrFail(options.recipe);
    options.recipe = run.recipe->Path;
    options.file = run.recipe->Firmware.File;
}

// The recipe, the firmware and the log before any module is touched: a run
// without its log is refused.
void Prepare(Run& run, ProductionOptions& options) {
    if (!options.recipe.empty()) PrepareRecipe(run, options);
    try {
        run.firmware = std::make_unique<FirmwareFile>(options.file);
    } catch (const FirmwareError& failure) {
        Fail(kExitNoFile, failure.what());
    }
    if (run.recipe)
        if (const std::string differs = RecipeFirmwareDiffers(*run.recipe, *run.firmware); !differs.empty())
            Fail(kExitRecipeHashDiffers, differs);
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
    settings.Run = NewRunIdentity(options.station, std::string("servicebay-cli ") + kProgramVersion);
    settings.Retries = options.retries;
    settings.Recipe = run.recipe ? &*run.recipe : nullptr;
    settings.Jobs = options.jobs;
    const FirmwareFile* firmware = run.firmware.get();
    const JobProgram program{ThisProgram(), options.production, options.runAfter, options.recipe};
    // Each module's program traces into a file of its own.
    settings.Command = [program, firmware](const ModuleJob& job) {
        std::vector<std::string> argv = JobCommand(program, *firmware, job);
        for (auto& argument : TraceArguments(job.Port)) argv.push_back(std::move(argument));
        return argv;
    };
    return settings;
}

// A line that the log did not take goes to standard error as it is.
LineHooks HooksOf(Run& run) {
    return {[&run](const ModuleJob& job, int attempt) { run.board.Started(job, attempt); },
            [&run](const ModuleJob& job, const XmodemProgress& p) { run.board.Progress(job, p); },
            [&run](const ModuleJob& job, const ModuleRecord* record, bool ok) { run.board.Ended(job, record, ok); },
            [&run](const std::string& line) { run.board.Note(line.substr(0, line.find_last_not_of('\n') + 1)); },
            {},
            [&run](const ModuleJob& job) { run.board.Waiting(job); },
            [&run](const ModuleJob& job) {
                run.board.Withdrawn(job);
                run.withdrawn.push_back({job.Port, job.UsbSerial, ModuleMode::Boot});
            }};
}

// One turn of the loop: waits for the children, the stop signals and the
// device events, at most maxMs, and serves what came. Answers the stop
// requests that came.
struct Turn {
    int stops = 0;
    bool devices = false;
};
Turn WaitTurn(ChildSupervisor& children, StopSignals& signals, DeviceEvents* events, int maxMs) {
    std::vector<pollfd> fds;
    signals.AddPollFd(fds);
    if (events) events->AddPollFds(fds);
    const size_t own = fds.size();
    children.AddPollFds(fds);
    const int due = children.PollTimeoutMs();
    ::poll(fds.data(), fds.size(), due < 0 ? maxMs : maxMs < 0 ? due : std::min(due, maxMs));
    Turn turn;
    for (size_t i = 0; i < own; ++i) {
        if (!fds[i].revents) continue;
        if (i == 0) turn.stops = signals.Take();
        else if (events) turn.devices = (fds[i].fd == events->UdevFd() ? events->DrainUdev() : events->DrainRegistry()) || turn.devices;
    }
    children.Service(fds);
    return turn;
}

std::string Names(const std::vector<ListedModule>& modules) {
    std::string names;
    for (const ListedModule& m : modules) names += (names.empty() ? "" : ", ") + ModuleName(m.Port, m.UsbSerial);
    return names;
}

// The table on standard output; the modules that were not programmed named
// on standard error, and the exit status: a log that failed comes first,
// then a firmware file that changed (said when it was seen), then the modules.
void Conclude(const ProductionLine& line, const std::vector<ListedModule>& notStarted = {},
              bool firmwareChanged = false) {
    const Summary summary = Summarize(line.Records());
    std::cout << summary.Table() << std::flush;
    std::vector<ListedModule> failed;
    for (const SummaryRow* row : summary.Failed()) failed.push_back({row->Last.Port, row->Last.UsbSerial});
    if (!failed.empty()) std::cerr << "Not programmed: " << Names(failed) << ".\n";
    if (!notStarted.empty()) std::cerr << "Seen, but not started: " << Names(notStarted) << ".\n";
    if (line.LogFailure()) Fail(kExitNoLog, *line.LogFailure());
    if (firmwareChanged) throw CLI::RuntimeError(kExitFirmwareChanged);
    if (!failed.empty() || !notStarted.empty()) throw CLI::RuntimeError(kExitModuleFailed);
}

}  // namespace

void FlashAll(ProductionOptions options, const std::string& port) {
    Run run;
    Prepare(run, options);
    std::vector<ModuleJob> jobs;
    for (const ListedModule& module : ListModules(*MakePortInventory()))
        if (port.empty() ? module.Mode == ModuleMode::Boot : module.Port == port)
            jobs.push_back({JobStep::Flash, module.Port, module.UsbSerial, static_cast<int>(jobs.size()) + 1});
    // A port that the listing does not show is taken as it was given.
    if (!port.empty() && jobs.empty()) jobs.push_back({JobStep::Flash, port, "", 1});
    if (jobs.empty()) Fail(kExitNoModule, "Cant find device in boot mode");

    StopSignals signals;
    ProductionLine line(SettingsOf(run, options), HooksOf(run));
    for (const ModuleJob& job : jobs) line.Start(job);
    while (line.Running() > 0)
        if (WaitTurn(line.Children(), signals, nullptr, -1).stops > 0) line.StopAll();
    Conclude(line, run.withdrawn);
}

namespace {

void Station(ProductionOptions options) {
    Run run;
    Prepare(run, options);
    StopSignals signals;
    DeviceEvents events;
    for (const std::string& problem : events.Problems()) std::cerr << problem << '\n';
    auto inventory = MakePortInventory();
    StationSettings settings{SettingsOf(run, options), options.count,
                             [&inventory] { return ListModules(*inventory); },
                             [&run](const std::string& text) { run.board.Note(text); }};
    sb::Station station(std::move(settings), HooksOf(run));
    if (run.recipe) {
        const std::string plan = RecipePlan(*run.recipe);
        run.board.Note(plan.substr(0, plan.find_last_not_of('\n') + 1));
    }
    run.board.Note("Waiting for modules (" + run.firmware->Name() + ", SHA-256 " + run.firmware->Sha256() + ")");
    StationStopping stopping("Ctrl-C", [&run](const std::string& text) { run.board.Note(text); });
    auto nextCheck = Clock::now() + kStationFirmwareCheckEvery;
    station.Refresh();
    while (!station.Finished()) {
        const auto untilCheck = std::chrono::ceil<std::chrono::milliseconds>(nextCheck - Clock::now());
        const Turn turn = WaitTurn(station.Line().Children(), signals, &events,
                                   static_cast<int>(std::max<int64_t>(0, untilCheck.count())));
        if (turn.devices) station.Refresh();
        if (Clock::now() >= nextCheck) {
            station.CheckFirmware();
            nextCheck = Clock::now() + kStationFirmwareCheckEvery;
        }
        stopping.Take(station, turn.stops);
    }
    Conclude(station.Line(), station.NotStarted(), station.Refusal().has_value());
}

void AddJobsOption(CLI::App* command, ProductionOptions& options) {
    command->add_option("--jobs", options.jobs,
                        "At most N modules in progress at once; the others wait their turn (default: all)")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
}

}  // namespace

CLI::Option* AddFlashAllOptions(CLI::App* flash, ProductionOptions& options) {
    flash->add_option("--log", options.log,
                      "Append a JSON line to FILE when each try starts and ends; the download then runs as the "
                      "production line of --all does")
        ->type_name("FILE");
    flash->add_option("--station", options.station,
                      "With --log: the station's name in the log (default: the host name)")
        ->type_name("NAME");
    AddJobsOption(flash, options);
    return flash->add_flag("--all", options.all, "Download the file into every module in boot mode at the same time");
}

void AddStationCommand(CLI::App& app) {
    auto options = std::make_shared<ProductionOptions>();
    CLI::App* station = app.add_subcommand(
        "station", "Wait for modules and program each one as it is plugged in, until Ctrl-C or --count");
    CLI::Option* file = station->add_option("file", options->file, "The firmware file (*.cod), read once at the start");
    AddTraceOptions(station);
    CLI::Option* production =
        station->add_flag("--production", options->production,
                          "Behind each successful download add the production record to sniffer.ini");
    CLI::Option* runAfter =
        station->add_flag("--run-after", options->runAfter, "Start the firmware of each programmed module with RUN");
    station->add_option("--recipe", options->recipe, "Carry out the recipe's steps on each module (*.sbrecipe)")
        ->type_name("RECIPE")
        ->excludes(file)
        ->excludes(production)
        ->excludes(runAfter);
    station->add_option("--count", options->count, "End after N modules were programmed")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    station->add_option("--retries", options->retries, "Try a failed download again up to N times (default 0)")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    AddJobsOption(station, *options);
    station->add_option("--log", options->log, "Append a JSON line to FILE when each try starts and ends")
        ->type_name("FILE");
    station->add_option("--station", options->station, "The station's name in the log (default: the host name)")
        ->type_name("NAME");
    station->callback([options] {
        if (options->file.empty() && options->recipe.empty()) throw CLI::RequiredError("file");
        Station(*options);
    });
}

}  // namespace sb::cli

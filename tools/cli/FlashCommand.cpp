#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>

#include "Commands.h"
#include "JsonOutput.h"
#include "ProductionCommands.h"
#include "SerialChoice.h"
#include "TerminalLines.h"
#include "link/ModeSwitch.h"
#include "link/PortErrorText.h"
#include "link/QtSerialPort.h"
#include "link/SystemInventory.h"
#include "production/ChildReport.h"
#include "production/RecipeRun.h"
#include "production/StationBook.h"
#include "update/SnifferIni.h"
#include "update/TransferPace.h"
#include "update/UpdateRun.h"

// flash: the update run of the update screen without its dialogs. The port
// comes from --port and the retry question is answered from --retries. The
// message of success goes to standard output, the others to standard error,
// and so does the transfer's progress: a bar on a terminal, plain lines
// otherwise.
namespace sb::cli {
namespace {

using Clock = std::chrono::steady_clock;

struct FlashOptions {
    std::string port;
    std::string file;
    bool production = false;
    bool json = false;
    bool progressJson = false;
    bool runAfter = false;
    int retries = 0;
    std::string recipe;
    bool lineChild = false;  // run by a production line, which has checked the USB serial
};

// The transfer's progress on standard error: a bar drawn again in place on a
// terminal (at most ten times a second), a line at each tenth otherwise.
class ProgressView {
public:
    explicit ProgressView(bool terminal) : terminal_(terminal) {}
    ~ProgressView() { EndLine(); }

    void Show(const XmodemProgress& progress) {
        const auto now = Clock::now();
        if (progress.Blocks == 0) {
            start_ = now;
            lastTenth_ = -1;
        }
        const bool done = progress.Bytes >= progress.Total;
        const int tenth = progress.Total > 0 ? static_cast<int>(10LL * progress.Bytes / progress.Total) : 10;
        if (terminal_) {
            if (!done && progress.Blocks != 0 && now - lastDraw_ < std::chrono::milliseconds(100)) return;
            std::cerr << '\r' << Line(progress, now, true) << "\x1b[K" << std::flush;
            lineOpen_ = true;
            lastDraw_ = now;
        } else if (tenth != lastTenth_) {
            std::cerr << Line(progress, now, false) << '\n' << std::flush;
        }
        lastTenth_ = tenth;
    }

    // Before anything else is printed on the terminal.
    void EndLine() {
        if (lineOpen_) std::cerr << '\n' << std::flush;
        lineOpen_ = false;
    }

private:
    std::string Line(const XmodemProgress& p, Clock::time_point now, bool bar) const {
        const TransferPace pace = PaceOf(p, std::chrono::duration<double>(now - start_).count());
        const double share = pace.Share;
        std::ostringstream line;
        if (bar) {
            constexpr int kWidth = 30;
            const int filled = static_cast<int>(share * kWidth);
            line << '[' << std::string(filled, '#') << std::string(kWidth - filled, '-') << "] ";
        } else {
            line << "Transfer ";
        }
        char percent[8];
        std::snprintf(percent, sizeof percent, "%3d%%", static_cast<int>(share * 100));
        line << percent << "  " << p.Bytes << " of " << p.Total << " bytes";
        if (pace.BytesPerSecond > 0) {
            line << "  " << RateText(pace.BytesPerSecond);
            if (bar && p.Bytes < p.Total) line << "  " << TimeLeftText(pace.SecondsLeft);
        }
        return line.str();
    }

    bool terminal_;
    bool lineOpen_ = false;
    int lastTenth_ = -1;
    Clock::time_point start_ = Clock::now();
    Clock::time_point lastDraw_;
};

const char* EndName(UpdateEnd end) {
    switch (end) {
        case UpdateEnd::NoFile: return "no file";
        case UpdateEnd::NoPort: return "no port";
        case UpdateEnd::FileUnreadable: return "file unreadable";
        case UpdateEnd::Abandoned: return "not downloaded";
        case UpdateEnd::Programmed: return "programmed";
    }
    return "";
}

Json JsonRecord(const ProductionRecord& r) {
    Json out = {{"written", r.End == RecordEnd::Written},
                {"end", RecordEndText(r.End)},
                {"number", r.Number},
                {"section", JsonBytes(r.Section)},
                {"SN", JsonBytes(r.SN)},
                {"Ver", JsonBytes(r.Ver)},
                {"Name", JsonBytes(r.Name)},
                {"Date", JsonBytes(r.Date)},
                {"UID", JsonBytes(r.UID)}};
    if (r.WriteFailure) out["reason"] = JsonBytes(r.WriteFailure.message());
    return out;
}

Json JsonOutcome(const FlashOptions& options, const UpdateOutcome& outcome, const std::string& iniPath,
                 const std::vector<std::string>& messages) {
    Json texts = Json::array();
    for (const std::string& message : messages) texts.push_back(JsonBytes(message));
    Json out = {{"end", EndName(outcome.End)},
                {"port", JsonBytes(options.port)},
                {"file", JsonBytes(options.file)},
                {"size", outcome.FileSize},
                {"tries", outcome.Tries},
                {"programmed", outcome.Result > 0 ? outcome.Result : 0},
                {"result", outcome.Result},
                {"report", JsonBytes(outcome.Report)},
                {"messages", std::move(texts)},
                {"record", outcome.Record ? JsonRecord(*outcome.Record) : Json()}};
    if (outcome.Record) out["sniffer_ini"] = JsonBytes(iniPath);
    return out;
}

// The exit status of a run, with its reason on standard error.
int Conclude(const UpdateOutcome& outcome) {
    switch (outcome.End) {
        case UpdateEnd::NoFile:
        case UpdateEnd::FileUnreadable: return kExitNoFile;
        case UpdateEnd::NoPort: return kExitNoModule;
        case UpdateEnd::Abandoned:
            if (outcome.OpenFailure) {
                std::cerr << TerminalLines(PortErrorText("CommPort Error", *outcome.OpenFailure)) << '\n';
                return kExitNoModule;
            }
            if (outcome.PortFailure)
                std::cerr << TerminalLines(PortErrorText(kUpdateNotDownloaded, *outcome.PortFailure)) << '\n';
            return kExitTransferFailed;
        case UpdateEnd::Programmed: break;
    }
    if (!outcome.Record) return 0;
    if (outcome.Record->End != RecordEnd::Written) {
        std::cerr << "No production record: " << RecordEndText(outcome.Record->End);
        if (outcome.Record->WriteFailure) std::cerr << " (" << outcome.Record->WriteFailure.message() << ")";
        std::cerr << ".\n";
        return kExitNotConfirmed;
    }
    return 0;
}

// RUN behind a successful download; the module leaves its boot loader.
void StartFirmware(const std::string& portName) {
    QtSerialPort port;
    PlainStatusText status;
    if (const auto failure = SwitchToRunning(port, portName, status, [](const std::string&) {}))
        std::cerr << TerminalLines(PortErrorText("CommPort Error", *failure)) << '\n';
}

std::string StepList(const std::vector<RecipeStep>& steps) {
    std::string list;
    for (RecipeStep step : steps) list += (list.empty() ? "" : ", ") + std::string(StepName(step));
    return list;
}

// The serial of the port's USB identity, as the listing shows it; empty for
// a port it does not show.
std::string UsbSerialOf(const std::string& port) {
    for (const ListedModule& module : ListModules(*MakePortInventory()))
        if (module.Port == port) return module.UsbSerial;
    return {};
}

// flash with a recipe: its steps on one module. A production line has
// checked the module's USB serial against the order when it took the module
// up (the boot loader's may be another); alone, this program does. The firmware is the
// recipe's, or the file given, which must have the recipe's SHA-256 (the
// production line hands each module a sealed copy of it).
void FlashByRecipe(const FlashOptions& options, SerialPort& port, StatusText& status, const UpdateHooks& hooks,
                   const std::string& iniPath, ProgressView& progress, const std::vector<std::string>& messages) {
    const Recipe recipe = RecipeOrFail(options.recipe);
    const std::string firmware = options.file.empty() ? recipe.Firmware.File : options.file;
    RecipeOutcome outcome;
    const bool checkOrder = !options.lineChild && recipe.UsbSerialsFile;
    const std::string serial = checkOrder ? UsbSerialOf(options.port) : "";
    if (checkOrder && !OnOrder(recipe, serial)) {
        outcome.Failed = RecipeStep::Identity;
        outcome.Detail = OffOrderReason(recipe, serial);
    } else {
        const auto entered = [&options](RecipeStep step) {
            if (options.progressJson) std::cout << StepLine(step) << std::flush;
        };
        outcome = RecipeRun(port, status, recipe, hooks, entered).Run(options.port, firmware, iniPath);
    }
    progress.EndLine();
    const std::string step = outcome.Failed ? StepName(*outcome.Failed) : "";
    if (options.json) {
        Json json = outcome.Update ? JsonOutcome(options, *outcome.Update, iniPath, messages)
                                   : Json{{"end", "not downloaded"}};
        json["step"] = step.empty() ? Json() : Json(step);
        json["detail"] = JsonBytes(outcome.Detail);
        json["SN"] = outcome.SN ? JsonBytes(*outcome.SN) : Json();
        json["PName"] = outcome.PName ? JsonBytes(*outcome.PName) : Json();
        if (outcome.Record) json["record"] = JsonRecord(*outcome.Record);
        PrintJson(json);
    } else if (!outcome.Failed) {
        std::cout << "Programmed (" << StepList(RecipeSteps(recipe)) << "), SN " << Latin1ToTerminal(*outcome.SN)
                  << '\n';
    } else {
        std::cerr << "The " << step << " step failed" << (outcome.Detail.empty() ? "" : ": ")
                  << TerminalSafeLines(outcome.Detail) << '\n';
    }
    std::cout.flush();
    if (outcome.Failed) throw CLI::RuntimeError(kExitRecipeStepFailed);
}

void Flash(const FlashOptions& options) {
    QtSerialPort port;
    PlainStatusText status;
    ProgressView progress(::isatty(STDERR_FILENO) != 0);
    std::vector<std::string> messages;
    int retriesLeft = options.retries;

    UpdateHooks hooks;
    hooks.FileName = [&options] { return options.file; };
    hooks.ChoosePort = [&options] { return options.port; };
    hooks.EnableStart = [](bool) {};
    hooks.Progress = [&](const XmodemProgress& p) {
        if (options.progressJson) std::cout << ProgressLine(p) << std::flush;
        else progress.Show(p);
    };
    hooks.ShowMessage = [&](const std::string& text, ui::MessageButtons buttons) {
        progress.EndLine();
        messages.push_back(text);
        const bool question = buttons == ui::MessageButtons::OkCancel;
        const bool retry = question && retriesLeft > 0;
        // The success on standard output; the failures and the retry question
        // on standard error.
        std::ostream& out = text.rfind(kUpdateCompleted, 0) == 0 ? std::cout : std::cerr;
        if (!options.json) out << TerminalSafeLines(text) << (question ? (retry ? " yes" : " no") : "") << std::endl;
        if (!question) return ui::MessageAnswer::Ok;
        if (!retry) return ui::MessageAnswer::Cancel;
        --retriesLeft;
        return ui::MessageAnswer::Ok;
    };

    const std::string iniPath = SnifferIniPath();
    if (!options.recipe.empty()) return FlashByRecipe(options, port, status, hooks, iniPath, progress, messages);
    const UpdateOutcome outcome = UpdateRun(port, status, hooks).Run(options.production, iniPath);
    progress.EndLine();
    if (options.json) {
        PrintJson(JsonOutcome(options, outcome, iniPath, messages));
    } else if (outcome.Record && outcome.Record->End == RecordEnd::Written) {
        std::cout << "Production record " << outcome.Record->Section << " written to " << iniPath << '\n';
    }
    std::cout.flush();
    if (const int exitStatus = Conclude(outcome)) throw CLI::RuntimeError(exitStatus);
    if (options.runAfter) StartFirmware(options.port);
}

}  // namespace

void AddFlashCommand(CLI::App& app) {
    auto options = std::make_shared<FlashOptions>();
    auto many = std::make_shared<ProductionOptions>();
    CLI::App* flash =
        app.add_subcommand("flash", "Download a firmware file into a module in boot mode (CR BOOT CR, then XMODEM-1K)");
    AddPortOrSerial(flash, options->port, WantedMode::Boot, AddFlashAllOptions(flash, *many));
    flash->add_option("file", options->file, "The firmware file (*.cod); with --recipe, the recipe's by default");
    CLI::Option* production = flash->add_flag("--production", options->production,
                                              "Behind a successful download add the production record to sniffer.ini");
    flash->add_option("--retries", options->retries, "Try a failed download again up to N times (default 0)")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    flash->add_flag("--json", options->json, "Print the result as one JSON object");
    flash->add_flag("--progress-json", options->progressJson,
                    "The progress as one JSON line per block on standard output, for a program that watches");
    CLI::Option* runAfter =
        flash->add_flag("--run-after", options->runAfter, "Start the firmware with RUN behind a successful download");
    flash->add_option("--recipe", options->recipe,
                      "Carry out the recipe's steps (*.sbrecipe); a file given must have its firmware's SHA-256")
        ->type_name("RECIPE")
        ->excludes(production)
        ->excludes(runAfter);
    flash->add_flag("--line-child", options->lineChild, "Run by a production line")->group("");
    // With a log, one module's download is a production line of one: the same
    // lines, tries and summary as for many.
    flash->callback([options, many] {
        if (options->file.empty() && options->recipe.empty()) throw CLI::RequiredError("file");
        if (!many->all && many->log.empty()) return Flash(*options);
        many->recipe = options->recipe;
        many->file = options->file;
        many->production = options->production;
        many->retries = options->retries;
        many->runAfter = options->runAfter;
        FlashAll(*many, many->all ? "" : options->port);
    });
}

}  // namespace sb::cli

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
#include "production/ChildReport.h"
#include "production/ProgressBatch.h"
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

// How often a download tells the program that watches it of its progress.
constexpr auto kProgressJsonEvery = std::chrono::milliseconds(250);

struct FlashOptions {
    std::string port;
    std::string file;
    bool production = false;
    bool json = false;
    bool progressJson = false;
    bool runAfter = false;
    int retries = 0;
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

const char* RecordEndName(RecordEnd end) {
    switch (end) {
        case RecordEnd::Written: return "written";
        case RecordEnd::UidNotSixteen: return "the UID has not 16 characters";
        case RecordEnd::NotCleared: return "the module did not confirm CLROTP";
        case RecordEnd::SerialError: return "the module answered Error! to GETSN";
        case RecordEnd::WriteFailed: return "sniffer.ini could not be written";
        case RecordEnd::NoNumberLeft: return "QTY in sniffer.ini has no record number left";
    }
    return "";
}

Json JsonRecord(const ProductionRecord& r) {
    Json out = {{"written", r.End == RecordEnd::Written},
                {"end", RecordEndName(r.End)},
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
        std::cerr << "No production record: " << RecordEndName(outcome.Record->End);
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

void Flash(const FlashOptions& options) {
    QtSerialPort port;
    PlainStatusText status;
    ProgressView progress(::isatty(STDERR_FILENO) != 0);
    ProgressBatch batch(kProgressJsonEvery);
    const auto tell = [](const std::optional<XmodemProgress>& p) {
        if (p) std::cout << ProgressLine(*p) << std::flush;
    };
    std::vector<std::string> messages;
    int retriesLeft = options.retries;

    UpdateHooks hooks;
    hooks.FileName = [&options] { return options.file; };
    hooks.ChoosePort = [&options] { return options.port; };
    hooks.EnableStart = [](bool) {};
    hooks.Progress = [&](const XmodemProgress& p) {
        if (options.progressJson) tell(batch.Take(p, Clock::now()));
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
    const UpdateOutcome outcome = UpdateRun(port, status, hooks).Run(options.production, iniPath);
    if (options.progressJson) tell(batch.Rest());
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
    flash->add_option("file", options->file, "The firmware file (*.cod)")->required();
    flash->add_flag("--production", options->production,
                    "Behind a successful download add the production record to sniffer.ini");
    flash->add_option("--retries", options->retries, "Try a failed download again up to N times (default 0)")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    flash->add_flag("--json", options->json, "Print the result as one JSON object");
    flash->add_flag("--progress-json", options->progressJson,
                    "The progress as JSON lines on standard output, a few a second, for a program that watches");
    flash->add_flag("--run-after", options->runAfter, "Start the firmware with RUN behind a successful download");
    // With a log, one module's download is a production line of one: the same
    // lines, tries and summary as for many.
    flash->callback([options, many] {
        if (!many->all && many->log.empty()) return Flash(*options);
        many->file = options->file;
        many->production = options->production;
        many->retries = options->retries;
        many->runAfter = options->runAfter;
        FlashAll(*many, many->all ? "" : options->port);
    });
}

}  // namespace sb::cli

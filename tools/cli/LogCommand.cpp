#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>

#include "Commands.h"
#include "JsonOutput.h"
#include "config/Latin1Text.h"
#include "production/LogQueries.h"
#include "production/LogReader.h"

// log: the production logs of one station or of a whole plant, read as they
// stream by. Without a question every attempt's end is listed in the order
// of the files; --serial follows one module, --summary counts the yield.
namespace sb::cli {
namespace {

struct LogOptions {
    std::vector<std::string> files;
    std::string serial;
    bool summary = false;
    bool json = false;
};

// A text of the log on the terminal: the module's bytes in the safe form,
// "-" where the line has none.
std::string Shown(const std::string& text) { return text.empty() ? "-" : Latin1ToTerminal(Utf8ToLatin1(text)); }

Json Text(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json EntryJson(const LogEntry& e) {
    return {{"time", e.Time},
            {"station", Text(e.Station)},
            {"port", Text(e.Port)},
            {"usb_serial", Text(e.UsbSerial)},
            {"SN", Text(e.SN)},
            {"attempt", e.Attempt},
            {"firmware_sha256", Text(e.FirmwareSha256)},
            {"configuration_sha256", Text(e.ConfigurationSha256)},
            {"recipe_sha256", Text(e.RecipeSha256)},
            {"step", Text(e.Step)},
            {"result", e.Result},
            {"detail", Text(e.Detail)}};
}

// time, station, module, firmware, configuration, step, result and why.
std::string EntryRow(const LogEntry& e) {
    std::string row = e.Time + "  " + Shown(e.Station) + "  " + Shown(e.UsbSerial) + "  " + Shown(e.SN) + "  " +
                      Shown(e.FirmwareSha256) + "  " + Shown(e.ConfigurationSha256) + "  " + Shown(e.Step) + "  " +
                      e.Result;
    if (!e.Detail.empty()) row += "  " + Shown(e.Detail);
    return row;
}

std::string Percent(int part, int whole) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f %%", whole > 0 ? 100.0 * part / whole : 0.0);
    return text;
}

std::string Counts(const std::map<std::string, int>& counts) {
    std::string text;
    for (const auto& [name, count] : counts) text += (text.empty() ? "" : ", ") + Shown(name) + " " + std::to_string(count);
    return text.empty() ? "-" : text;
}

void PrintSummary(const YieldSummary& summary, bool json) {
    Json groups = Json::array();
    for (const YieldGroup& g : summary.Groups()) {
        if (json) {
            groups.push_back({{"day", g.Day},
                              {"firmware_sha256", Text(g.FirmwareSha256)},
                              {"attempts", g.Attempts},
                              {"programmed", g.Programmed()},
                              {"by_result", g.ByResult},
                              {"by_failing_step", g.ByFailingStep}});
            continue;
        }
        std::cout << g.Day << "  firmware " << Shown(g.FirmwareSha256) << ": " << g.Attempts << " attempts, "
                  << g.Programmed() << " programmed (" << Percent(g.Programmed(), g.Attempts) << ")\n"
                  << "  by result: " << Counts(g.ByResult) << "\n"
                  << "  failed at: " << Counts(g.ByFailingStep) << '\n';
    }
    if (json) PrintJson({{"summary", groups}});
}

// What one reader of the files found.
struct Found {
    std::optional<ModuleHistory> history;
    YieldSummary summary;
};

void Log(const LogOptions& options) {
    // A listing keeps the order of the files; the questions are answered by
    // as many readers as there are processors, each over files of its own.
    const bool listing = options.serial.empty() && !options.summary;
    const unsigned workers = listing ? 1 : std::max(1u, std::thread::hardware_concurrency());
    std::vector<Found> found(workers);
    bool skipped = false;
    const auto hooksOf = [&](unsigned worker) {
        Found& mine = found[worker];
        LogHooks hooks;
        // Told one at a time.
        hooks.Problem = [&skipped](const LogProblem& p) {
            if (p.Line > 0) skipped = true;
            std::cerr << Shown(p.File) << (p.Line > 0 ? ":" + std::to_string(p.Line) : "") << ": skipped: " << p.Why
                      << '\n';
        };
        if (!options.serial.empty()) {
            ModuleHistory& history = mine.history.emplace(options.serial);
            hooks.Wanted = [&history](std::string_view line) { return history.Wanted(line); };
            hooks.Entry = [&history](const LogEntry& entry) { history.Take(entry); };
            return hooks;
        }
        hooks.Wanted = MayEndAnAttempt;
        if (options.summary) {
            hooks.Entry = [&mine](const LogEntry& entry) { mine.summary.Take(entry); };
            return hooks;
        }
        hooks.Entry = [&options](const LogEntry& entry) {
            if (entry.Port.empty() || entry.Result == "started") return;
            if (options.json) std::cout << EntryJson(entry).dump() << '\n';
            else std::cout << EntryRow(entry) << '\n';
        };
        return hooks;
    };
    const bool allRead = ReadLogs(options.files, workers, hooksOf);
    for (size_t i = 1; i < found.size(); ++i) {
        if (found[0].history && found[i].history) found[0].history->Merge(*found[i].history);
        found[0].summary.Merge(found[i].summary);
    }

    YieldSummary& summary = found[0].summary;
    if (const auto& history = found[0].history) {
        const std::vector<LogEntry> attempts = history->NewestFirst();
        if (options.summary) {
            for (const LogEntry& entry : attempts) summary.Take(entry);
        } else if (options.json) {
            Json list = Json::array();
            for (const LogEntry& entry : attempts) list.push_back(EntryJson(entry));
            PrintJson({{"serial", options.serial}, {"attempts", list}});
        } else {
            for (const LogEntry& entry : attempts) std::cout << EntryRow(entry) << '\n';
        }
    }
    if (options.summary) PrintSummary(summary, options.json);
    std::cout.flush();
    if (!allRead) throw CLI::RuntimeError(kExitLogUnreadable);
    if (skipped) throw CLI::RuntimeError(kExitLogLineSkipped);
}

}  // namespace

void AddLogCommand(CLI::App& app) {
    auto options = std::make_shared<LogOptions>();
    CLI::App* log = app.add_subcommand(
        "log", "Read production logs (of one station or many): every attempt, one module's, or the yield");
    log->add_option("files", options->files, "The log files (- for standard input)")->required();
    log->add_option("--serial", options->serial,
                    "Every attempt of the module with this USB serial or SN, newest first")
        ->type_name("SN");
    log->add_flag("--summary", options->summary,
                  "The yield by result and by the step that failed, per day (UTC) and firmware SHA-256");
    log->add_flag("--json", options->json, "JSON: one object, or one line an attempt when listing every attempt");
    log->callback([options] { Log(*options); });
}

}  // namespace sb::cli

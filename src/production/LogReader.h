#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The production logs read back, line by line, over any number of files of
// any size: a line is taken as it comes and forgotten, so memory stays that
// of the longest line. A line that is no log line is named (file and line
// number) and skipped; the reading goes on. Lines of older programs lack
// the fields of recipes (step, recipe and configuration SHA-256s): they are
// empty then.
namespace sb {

struct LogEntry {
    std::string Time;  // UTC, ISO 8601
    std::string Station;
    std::string RunId;
    std::string Port;       // empty on a line of the station itself
    std::string UsbSerial;  // as logged (UTF-8)
    std::string SN;         // the module's own answer to GETSN, where read
    int Attempt = 0;
    std::string FirmwareSha256;
    std::string ConfigurationSha256;
    std::string RecipeSha256;
    std::string Step;    // the step that failed, where a recipe ran
    std::string Result;  // "started", "programmed", ...
    std::string Detail;
};

struct LogProblem {
    std::string File;
    size_t Line = 0;  // from 1; 0: the file itself
    std::string Why;
};

struct LogHooks {
    std::function<void(const LogEntry&)> Entry;
    std::function<void(const LogProblem&)> Problem;
    // A cheap look at the raw line before it is parsed: false skips it.
    std::function<bool(std::string_view line)> Wanted;
};

// One line of a log: the entry, or why it is none.
std::optional<LogEntry> ParseLogLine(std::string_view line, std::string& why);

// Reads the file (or standard input for "-") to its end. Returns false when
// the file cannot be opened or read; its problem has been told.
bool ReadLog(const std::string& path, const LogHooks& hooks);

// Reads the files side by side on up to `workers` threads, each file whole
// on one of them (a plant's logs are many files): worker i takes its lines
// with hooksOf(i), and the problems are told one at a time. One worker reads
// them in their order on this thread. False when a file could not be read.
bool ReadLogs(const std::vector<std::string>& paths, unsigned workers,
              const std::function<LogHooks(unsigned worker)>& hooksOf);

}  // namespace sb

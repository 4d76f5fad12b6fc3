#pragma once
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "production/LogReader.h"

// The questions a plant asks its production logs, answered while the lines
// stream by: what became of one module, and how a firmware fared each day.
namespace sb {

// Every attempt of one module, by the serial of its USB identity or its own
// SN: the line of its end, or the line of its start where no end was logged
// (the station was killed while it ran).
class ModuleHistory {
public:
    explicit ModuleHistory(std::string serial);
    // Whether a raw line may be one of the module's; false only when it
    // surely is not.
    bool Wanted(std::string_view line) const;
    void Take(const LogEntry& entry);
    // The attempts another history of the same module took.
    void Merge(const ModuleHistory& other);
    std::vector<LogEntry> NewestFirst() const;

private:
    std::string serial_;
    std::string needle_;  // the serial as it stands in a line; empty: no quick look
    void Keep(const std::string& key, const LogEntry& entry);
    std::map<std::string, LogEntry> attempts_;  // by run, port and attempt
};

// Whether a raw line may be the end of an attempt; false only for the start
// line of one as a station writes it. Cheaper than reading the line.
bool MayEndAnAttempt(std::string_view line);

// The ends of attempts counted by day (UTC) and firmware SHA-256: by result,
// and those that failed by the step that failed ("-" where none was logged).
struct YieldGroup {
    std::string Day;
    std::string FirmwareSha256;
    int Attempts = 0;
    std::map<std::string, int> ByResult;
    std::map<std::string, int> ByFailingStep;
    int Programmed() const;
};

class YieldSummary {
public:
    void Take(const LogEntry& entry);
    void Merge(const YieldSummary& other);
    // By day, then by firmware.
    std::vector<YieldGroup> Groups() const;

private:
    std::map<std::pair<std::string, std::string>, YieldGroup> groups_;
};

}  // namespace sb

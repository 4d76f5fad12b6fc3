#include "production/LogQueries.h"

#include <algorithm>

namespace sb {
namespace {

constexpr const char* kStarted = "started";
constexpr const char* kProgrammed = "programmed";

// Printable ASCII that a JSON writer leaves as it is.
bool StandsAsItIs(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return c >= 0x20 && c < 0x7F && c != '"' && c != '\\' && c != '/';
    });
}

}  // namespace

ModuleHistory::ModuleHistory(std::string serial)
    : serial_(std::move(serial)), needle_(StandsAsItIs(serial_) ? '"' + serial_ + '"' : "") {}

bool ModuleHistory::Wanted(std::string_view line) const {
    return needle_.empty() || line.find(needle_) != std::string_view::npos;
}

void ModuleHistory::Take(const LogEntry& entry) {
    if (entry.Port.empty() || (entry.UsbSerial != serial_ && entry.SN != serial_)) return;
    Keep(entry.RunId + '\n' + entry.Port + '\n' + std::to_string(entry.Attempt), entry);
}

// The end of an attempt stands for it; its start only while no end is known.
void ModuleHistory::Keep(const std::string& key, const LogEntry& entry) {
    const auto [at, fresh] = attempts_.try_emplace(key, entry);
    if (!fresh && entry.Result != kStarted) at->second = entry;
}

void ModuleHistory::Merge(const ModuleHistory& other) {
    for (const auto& [key, entry] : other.attempts_) Keep(key, entry);
}

std::vector<LogEntry> ModuleHistory::NewestFirst() const {
    std::vector<LogEntry> attempts;
    for (const auto& [key, entry] : attempts_) attempts.push_back(entry);
    // ISO 8601 times in UTC sort as texts.
    std::stable_sort(attempts.begin(), attempts.end(),
                     [](const LogEntry& a, const LogEntry& b) {
                         return a.Time != b.Time ? a.Time > b.Time : a.Attempt > b.Attempt;
                     });
    return attempts;
}

int YieldGroup::Programmed() const {
    const auto found = ByResult.find(kProgrammed);
    return found == ByResult.end() ? 0 : found->second;
}

bool MayEndAnAttempt(std::string_view line) {
    // Within a JSON text every quote of a string is escaped, so this stands
    // only where the member "result" holds "started".
    return line.find("\"result\":\"started\"") == std::string_view::npos;
}

void YieldSummary::Take(const LogEntry& entry) {
    // The lines of the station itself are no attempts.
    if (entry.Port.empty() || entry.Result == kStarted) return;
    const std::string day = entry.Time.substr(0, 10);
    YieldGroup& group = groups_[{day, entry.FirmwareSha256}];
    group.Day = day;
    group.FirmwareSha256 = entry.FirmwareSha256;
    ++group.Attempts;
    ++group.ByResult[entry.Result];
    if (entry.Result != kProgrammed) ++group.ByFailingStep[entry.Step.empty() ? "-" : entry.Step];
}

void YieldSummary::Merge(const YieldSummary& other) {
    for (const auto& [key, theirs] : other.groups_) {
        YieldGroup& group = groups_[key];
        group.Day = theirs.Day;
        group.FirmwareSha256 = theirs.FirmwareSha256;
        group.Attempts += theirs.Attempts;
        for (const auto& [result, count] : theirs.ByResult) group.ByResult[result] += count;
        for (const auto& [step, count] : theirs.ByFailingStep) group.ByFailingStep[step] += count;
    }
}

std::vector<YieldGroup> YieldSummary::Groups() const {
    std::vector<YieldGroup> groups;
    for (const auto& [key, group] : groups_) groups.push_back(group);
    return groups;
}

}  // namespace sb

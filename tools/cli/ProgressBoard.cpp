#include "ProgressBoard.h"

#include <cstdio>

#include "config/Latin1Text.h"
#include "update/TransferPace.h"

namespace sb::cli {
namespace {

constexpr auto kRedrawEvery = std::chrono::milliseconds(100);
constexpr int kBarWidth = 24;

// The device's serial is its own text: it reaches the terminal in the safe form.
std::string Who(const ModuleJob& job) {
    return Latin1ToTerminal(job.Port) + "  " + (job.UsbSerial.empty() ? "-" : Latin1ToTerminal(job.UsbSerial));
}

std::string Percent(double share) {
    char text[8];
    std::snprintf(text, sizeof text, "%3d%%", static_cast<int>(share * 100));
    return text;
}

}  // namespace

void ProgressBoard::Started(const ModuleJob& job, int attempt) {
    const std::string who = Who(job) + (attempt > 1 ? "  try " + std::to_string(attempt) : "");
    if (job.Step == JobStep::EnterBoot) return Note(who + "  into the boot loader");
    rows_[job.Port] = Row{who, {}, Clock::now(), -1};
    if (terminal_) Draw({}, true);
}

void ProgressBoard::Progress(const ModuleJob& job, const XmodemProgress& progress) {
    Row& row = rows_[job.Port];
    if (row.who.empty()) row.who = Who(job);
    if (progress.Blocks == 0) row.start = Clock::now();
    row.progress = progress;
    const int tenth = progress.Total > 0 ? static_cast<int>(10LL * progress.Bytes / progress.Total) : 10;
    if (terminal_) return Draw({}, false);
    if (tenth == row.tenth) return;
    row.tenth = tenth;
    out_ << RowText(row) << '\n' << std::flush;
}

void ProgressBoard::Ended(const ModuleJob& job, const ModuleRecord* record, bool ok) {
    const std::string who = Who(job);
    rows_.erase(job.Port);
    if (!record) return Note(who + "  in the boot loader");
    std::string line = who + "  " + ResultName(record->Result);
    if (record->Step) line += " at " + *record->Step;
    if (ok) line += "  " + std::to_string(record->BytesProgrammed) + " bytes";
    if (!record->Detail.empty()) line += "  " + record->Detail;
    Note(line);
}

void ProgressBoard::Note(const std::string& line) {
    if (!terminal_) {
        out_ << line << '\n' << std::flush;
        return;
    }
    Draw({line}, true);
}

std::string ProgressBoard::RowText(const Row& row) const {
    const XmodemProgress& p = row.progress;
    const TransferPace pace = PaceOf(p, std::chrono::duration<double>(Clock::now() - row.start).count());
    std::string text = row.who + "  ";
    if (terminal_) {
        const int filled = static_cast<int>(pace.Share * kBarWidth);
        text += '[' + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + "] ";
    }
    text += Percent(pace.Share) + "  " + std::to_string(p.Bytes) + " of " + std::to_string(p.Total) + " bytes";
    if (pace.BytesPerSecond > 0) text += "  " + RateText(pace.BytesPerSecond);
    return text;
}

// The rows in progress are the last lines of the terminal: each drawing goes
// up over them, writes the lasting lines in their place and draws the rows
// below again.
void ProgressBoard::Draw(const std::vector<std::string>& lasting, bool force) {
    const auto now = Clock::now();
    if (!force && now - lastDraw_ < kRedrawEvery) return;
    lastDraw_ = now;
    std::string text;
    if (drawn_ > 0) text += "\r\x1b[" + std::to_string(drawn_) + "A";
    for (const std::string& line : lasting) text += line + "\x1b[K\n";
    for (const auto& [port, row] : rows_) text += RowText(row) + "\x1b[K\n";
    text += "\x1b[J";
    drawn_ = static_cast<int>(rows_.size());
    out_ << text << std::flush;
}

}  // namespace sb::cli

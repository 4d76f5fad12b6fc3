#include "production/ProductionLine.h"

#include <system_error>

#include "production/ChildReport.h"

namespace sb {
namespace {

// A module without a serial in its USB identity is known by its port.
std::string ModuleKey(const ModuleJob& job) { return job.UsbSerial.empty() ? "port " + job.Port : job.UsbSerial; }

}  // namespace

ProductionLine::ProductionLine(LineSettings settings, LineHooks hooks)
    : settings_(std::move(settings)),
      hooks_(std::move(hooks)),
      children_({[this](ChildSupervisor::Id id, const std::string& line) { Line(id, line); },
                 [this](ChildSupervisor::Id id, const ChildEnd& end) { Ended(id, end); }}) {}

bool ProductionLine::Busy(const std::string& usbSerial) const {
    for (const auto& [id, run] : running_)
        if (run.job.UsbSerial == usbSerial) return true;
    return false;
}

void ProductionLine::Start(const ModuleJob& job) {
    try {
        const ChildSupervisor::Id id = children_.Start(settings_.Command(job), settings_.Limits);
        running_[id] = Job{job, {}, {}};
    } catch (const std::system_error& failure) {
        ModuleRecord record = NewRecord(job);
        record.Result = job.Step == JobStep::Flash ? ModuleResult::Crashed : ModuleResult::NoBoot;
        record.Detail = failure.what();
        Finish(job, &record, false);
    }
}

void ProductionLine::Line(ChildSupervisor::Id id, const std::string& line) {
    Job& run = running_.at(id);
    if (const auto progress = ParseProgressLine(line)) {
        run.progress = progress;
        if (hooks_.Progress) hooks_.Progress(run.job, *progress);
    } else if (!line.empty()) {
        run.lastLine = line;
    }
}

void ProductionLine::Ended(ChildSupervisor::Id id, const ChildEnd& end) {
    const Job run = running_.at(id);
    running_.erase(id);
    ModuleRecord record = NewRecord(run.job);
    record.Seconds = end.Seconds;
    if (run.job.Step == JobStep::EnterBoot) {
        if (TakeBootEnd(record, end)) return Finish(run.job, nullptr, true);
    } else {
        TakeFlashEnd(record, end, ParseFlashResult(run.lastLine), run.progress);
    }
    Finish(run.job, &record, Succeeded(record));
}

ModuleRecord ProductionLine::NewRecord(const ModuleJob& job) {
    ModuleRecord record;
    record.Port = job.Port;
    record.UsbSerial = job.UsbSerial;
    record.FirmwareFile = settings_.Firmware->Path();
    record.FirmwareSize = settings_.Firmware->Size();
    record.FirmwareSha256 = settings_.Firmware->Sha256();
    record.ProgramVersion = settings_.ProgramVersion;
    return record;
}

void ProductionLine::Finish(const ModuleJob& job, ModuleRecord* record, bool ok) {
    if (record) {
        record->Time = UtcNowText();
        record->Attempt = ++attempts_[ModuleKey(job)];
        // The log first: a record nobody could read afterwards was never made.
        if (settings_.Log) settings_.Log->Append(*record);
        records_.push_back(*record);
        record = &records_.back();
    }
    if (hooks_.Ended) hooks_.Ended(job, record, ok);
}

}  // namespace sb

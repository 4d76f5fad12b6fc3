#include "production/ProductionLine.h"

#include <system_error>

#include "production/ChildReport.h"

namespace sb {
namespace {

// Where another try may fare better: the transfer, the port or the program
// failed. A firmware that could not be read, or a download without its
// record, would end the same way again.
bool WorthAnotherTry(ModuleResult result) {
    return result == ModuleResult::NotDownloaded || result == ModuleResult::Hung || result == ModuleResult::Crashed;
}

}  // namespace

ProductionLine::ProductionLine(LineSettings settings, LineHooks hooks)
    : settings_(std::move(settings)),
      hooks_(std::move(hooks)),
      children_({[this](ChildSupervisor::Id id, const std::string& line) { Line(id, line); },
                 [this](ChildSupervisor::Id id, const ChildEnd& end) { Ended(id, end); }}) {}

void ProductionLine::Start(const ModuleJob& job) {
    // The serial the module showed when its attempt began: a boot loader
    // need not show the serial of its firmware.
    if (settings_.Recipe && !inBoot_.count(job.Module) && !OnOrder(*settings_.Recipe, job.UsbSerial))
        return Refuse(job);
    Launch(job, job.Step == JobStep::Flash ? settings_.Retries : 0);
}

// Never touched: no program is started for it.
void ProductionLine::Refuse(const ModuleJob& job) {
    ++attempts_[job.Module];
    ModuleRecord record = NewRecord(job);
    record.Result = ModuleResult::Refused;
    record.Step = StepName(RecipeStep::Identity);
    record.Detail = OffOrderReason(*settings_.Recipe, job.UsbSerial);
    record.BytesAcknowledged = 0;
    End(job, record, 0);
}

void ProductionLine::Launch(const ModuleJob& job, int triesLeft) {
    if (!inBoot_.erase(job.Module)) {
        ++attempts_[job.Module];
        // Written before the program starts: a station that is killed leaves
        // a trace of every module it had in hand.
        ModuleRecord start = NewRecord(job);
        start.Result = ModuleResult::Started;
        Log(start);
    }
    if (hooks_.Started) hooks_.Started(job, attempts_[job.Module]);
    try {
        const ChildSupervisor::Id id = children_.Start(settings_.Command(job), settings_.Limits);
        running_[id] = Job{job, triesLeft, {}, {}};
    } catch (const std::system_error& failure) {
        ModuleRecord record = NewRecord(job);
        record.Result = job.Step == JobStep::Flash ? ModuleResult::Crashed : ModuleResult::NoBoot;
        record.Detail = failure.what();
        record.BytesAcknowledged = 0;
        End(job, record, triesLeft);
    }
}

void ProductionLine::Drop(const ModuleJob& job, const std::string& why) {
    inBoot_.erase(job.Module);
    ModuleRecord record = NewRecord(job);
    record.Result = ModuleResult::NotDownloaded;
    record.Detail = why;
    record.BytesAcknowledged = 0;
    End(job, record, 0);
}

void ProductionLine::LogStationLine(ModuleResult result, const std::string& detail) {
    ModuleRecord record = NewRecord({});
    record.Result = result;
    record.Detail = detail;
    Log(record);
}

void ProductionLine::Line(ChildSupervisor::Id id, const std::string& line) {
    Job& run = running_.at(id);
    if (const auto progress = ParseProgressLine(line)) {
        run.progress = progress;
        if (hooks_.Progress) hooks_.Progress(run.job, *progress);
    } else if (const auto step = ParseStepLine(line)) {
        if (hooks_.Step) hooks_.Step(run.job, *step);
    } else if (!line.empty()) {
        run.lastLine = line;
    }
}

void ProductionLine::Ended(ChildSupervisor::Id id, const ChildEnd& end) {
    const Job run = running_.at(id);
    running_.erase(id);
    ModuleRecord record = NewRecord(run.job);
    record.Seconds = end.Seconds;
    record.BytesAcknowledged = run.progress ? run.progress->Bytes : 0;
    if (run.job.Step == JobStep::EnterBoot) {
        if (TakeBootEnd(record, end)) {
            inBoot_.insert(run.job.Module);
            if (hooks_.Ended) hooks_.Ended(run.job, nullptr, true);
            return;
        }
    } else {
        TakeFlashEnd(record, end, ParseFlashResult(run.lastLine), run.progress);
    }
    End(run.job, record, run.triesLeft);
}

void ProductionLine::End(const ModuleJob& job, ModuleRecord& record, int triesLeft) {
    const bool ok = Succeeded(record);
    Log(record);
    records_.push_back(record);
    if (!ok && triesLeft > 0 && WorthAnotherTry(record.Result)) return Launch(job, triesLeft - 1);
    if (hooks_.Ended) hooks_.Ended(job, &records_.back(), ok);
}

ModuleRecord ProductionLine::NewRecord(const ModuleJob& job) {
    ModuleRecord record;
    record.Module = job.Module;
    record.Port = job.Port;
    record.UsbSerial = job.UsbSerial;
    record.Attempt = attempts_[job.Module];
    record.FirmwareFile = settings_.Firmware->Path();
    record.FirmwareSize = settings_.Firmware->Size();
    record.FirmwareSha256 = settings_.Firmware->Sha256();
    record.Run = settings_.Run;
    if (const Recipe* recipe = settings_.Recipe) {
        record.RecipeFile = recipe->Path;
        record.RecipeSha256 = recipe->Sha256;
        if (recipe->Configuration) record.ConfigurationSha256 = recipe->Configuration->Sha256;
    }
    return record;
}

// The log first: a record nobody could read afterwards was never made. A
// line the log does not take is handed on whole, and the run goes on.
void ProductionLine::Log(ModuleRecord& record) {
    record.Time = UtcNowText();
    if (!settings_.Log) return;
    try {
        settings_.Log->Append(record);
    } catch (const LogError& failure) {
        if (!logFailure_) logFailure_ = failure.what();
        if (hooks_.Unlogged) hooks_.Unlogged(LogLine(record));
    }
}

}  // namespace sb

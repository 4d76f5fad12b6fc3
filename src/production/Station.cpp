#include "production/Station.h"

#include "config/Latin1Text.h"

namespace sb {

Station::Station(StationSettings settings, LineHooks hooks)
    : list_(std::move(settings.List)),
      note_(std::move(settings.Note)),
      firmware_(settings.Line.Firmware),
      hooks_(std::move(hooks)),
      book_(settings.Count),
      line_(std::move(settings.Line), {hooks_.Started, hooks_.Progress,
                                       [this](const ModuleJob& job, const ModuleRecord* record, bool ok) {
                                           JobEnded(job, record, ok);
                                       },
                                       hooks_.Unlogged, hooks_.Step}) {}

void Station::Refresh() {
    // A job that fails to start ends at once and asks for a refresh from
    // within this one; that one is done behind it, on a plan made anew.
    if (aborted_) return;
    if (refreshing_) {
        again_ = true;
        return;
    }
    refreshing_ = true;
    do {
        again_ = false;
        const StationPlan plan = book_.Plan(list_());
        for (const ListedModule& module : plan.Skipped)
            if (note_) note_(Latin1ToTerminal(module.Port) + "  " +
                             (module.UsbSerial.empty() ? "-" : Latin1ToTerminal(module.UsbSerial)) +
                             "  skipped: programmed before in this run");
        for (const ModuleJob& job : plan.Jobs) {
            if (job.Step == JobStep::Flash && !FirmwareStillThere()) break;
            book_.Started(job);
            line_.Start(job);
            if (again_) break;
        }
    } while (again_);
    refreshing_ = false;
}

void Station::CheckFirmware() {
    if (firmware_->MayHaveChanged()) FirmwareStillThere();
}

void Station::Abort() {
    // Not even a module already in its boot loader is downloaded now.
    aborted_ = true;
    book_.Stop();
    line_.StopAll();
    DropStranded("left in its boot loader: the station was stopped");
}

void Station::JobEnded(const ModuleJob& job, const ModuleRecord* record, bool ok) {
    book_.Ended(job, ok);
    if (hooks_.Ended) hooks_.Ended(job, record, ok);
    // A module that was switched into its boot loader may be there already.
    Refresh();
    // It will not be downloaded when the firmware file has changed; the
    // refresh has found where it is now.
    if (refusal_) DropStranded("left in its boot loader: the firmware file " + change_);
}

bool Station::FirmwareStillThere() {
    if (refusal_) return false;
    const FirmwareState state = firmware_->Check();
    if (state == FirmwareState::Unchanged) return true;
    change_ = firmware_->Path() + (state == FirmwareState::Gone ? " is gone" : " has changed") +
              " since the station started";
    refusal_ = "The firmware file " + change_ + "; no further module is programmed.";
    book_.Stop();
    line_.LogStationLine(ModuleResult::FirmwareChanged, *refusal_);
    if (note_) note_(*refusal_);
    DropStranded("left in its boot loader: the firmware file " + change_);
    return false;
}

// Each drop ends a job, which may come back here: the book is asked anew each time.
void Station::DropStranded(const std::string& why) {
    while (const auto job = book_.Stranded()) line_.Drop(*job, why);
}

}  // namespace sb

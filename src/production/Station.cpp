#include "production/Station.h"

namespace sb {

Station::Station(StationSettings settings, LineHooks hooks)
    : list_(std::move(settings.List)),
      firmware_(settings.Line.Firmware),
      hooks_(std::move(hooks)),
      book_(settings.Count),
      line_(std::move(settings.Line),
            {hooks_.Progress, [this](const ModuleJob& job, const ModuleRecord* record, bool ok) {
                 JobEnded(job, record, ok);
             }}) {}

void Station::Refresh() {
    // A job that fails to start ends at once and asks for a refresh from
    // within this one; that one is done behind it, on a plan made anew.
    if (refreshing_) {
        again_ = true;
        return;
    }
    refreshing_ = true;
    do {
        again_ = false;
        for (const ModuleJob& job : book_.Plan(list_())) {
            if (job.Step == JobStep::Flash && !FirmwareStillThere()) break;
            book_.Started(job);
            line_.Start(job);
            if (again_) break;
        }
    } while (again_);
    refreshing_ = false;
}

void Station::Abort() {
    book_.Stop();
    line_.StopAll();
}

void Station::JobEnded(const ModuleJob& job, const ModuleRecord* record, bool ok) {
    book_.Ended(job, ok);
    if (hooks_.Ended) hooks_.Ended(job, record, ok);
    // A module that was switched into its boot loader may be there already.
    Refresh();
}

bool Station::FirmwareStillThere() {
    const FirmwareState state = firmware_->Check();
    if (state == FirmwareState::Unchanged) return true;
    refusal_ = "The firmware file " + firmware_->Path() +
               (state == FirmwareState::Gone ? " is gone" : " has changed") +
               " since the station started; no further module is programmed.";
    book_.Stop();
    return false;
}

}  // namespace sb

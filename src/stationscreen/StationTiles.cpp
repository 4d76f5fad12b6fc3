#include "stationscreen/StationTiles.h"

namespace sb {

std::string StepWord(JobStep step) { return step == JobStep::EnterBoot ? "boot" : "download"; }

ModuleTile& StationTiles::Of(int module) {
    while (static_cast<int>(tiles_.size()) < module) {
        tiles_.emplace_back();
        tiles_.back().Module = static_cast<int>(tiles_.size());
        tiles_.back().Step = "waiting";
    }
    return tiles_.at(static_cast<size_t>(module) - 1);
}

void StationTiles::Started(const ModuleJob& job, int attempt, double now) {
    ModuleTile& tile = Of(job.Module);
    tile.TransferStart = now;
    tile.Attempt = attempt;
    tile.Step = StepWord(job.Step);
    tile.Detail.clear();
    tile.Progress.reset();
}

void StationTiles::Begun(const ModuleJob& job, const std::string& step) { Of(job.Module).Step = step; }

void StationTiles::Progress(const ModuleJob& job, const XmodemProgress& progress, double now) {
    ModuleTile& tile = Of(job.Module);
    if (progress.Blocks == 0) tile.TransferStart = now;
    tile.Progress = progress;
    tile.TransferSeconds = now - tile.TransferStart;
}

void StationTiles::Ended(const ModuleJob& job, const ModuleRecord* record, bool ok) {
    ModuleTile& tile = Of(job.Module);
    // A switch into the boot loader that succeeded has no record: the
    // download follows once the module shows up there.
    if (!record) {
        tile.Step = "in the boot loader";
        return;
    }
    // Under a recipe the step that failed is named: "refused at identity".
    tile.Step = ResultName(record->Result) + (record->Step && !ok ? " at " + *record->Step : std::string());
    tile.Detail = record->Detail;
    if (record->SN) tile.SN = record->SN;
}

void StationTiles::Follow(const std::vector<BookEntry>& entries) {
    for (const BookEntry& entry : entries) {
        ModuleTile& tile = Of(entry.Module);
        tile.Port = entry.Port;
        tile.UsbSerial = entry.UsbSerial;
        tile.Present = entry.Present;
        // Plugged in again after a failure: it waits for its next attempt.
        if (entry.Stage == ModuleStage::Waiting && tile.Stage != ModuleStage::Waiting) tile.Step = "waiting";
        tile.Stage = entry.Stage;
    }
}

TransferPace PaceOf(const ModuleTile& tile) {
    if (!tile.Progress) return {};
    return PaceOf(*tile.Progress, tile.TransferSeconds);
}

}  // namespace sb

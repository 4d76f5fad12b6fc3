#include "production/StationBook.h"

#include <algorithm>

namespace sb {

std::vector<ListedModule> ListModules(PortInventory& inventory) {
    std::vector<ListedModule> listing;
    try {
        inventory.Connect();
        inventory.Walk([&listing](const InventoryPort& port) {
            const ModuleMode mode = ModeOfPort(port.PNPDeviceID);
            if (mode != ModuleMode::None) listing.push_back({port.DeviceID, UsbSerialOf(port.PNPDeviceID), mode});
        });
    } catch (const std::exception&) {
        // What was found until then stands; the next device event reads again.
    }
    return listing;
}

StationPlan StationBook::Plan(const std::vector<ListedModule>& listing) {
    // A module is where it was while its port shows it as before; every
    // other listed port is an arrival.
    std::vector<Module*> stayed;
    std::vector<ListedModule> arrivals;
    for (const ListedModule& listed : listing) {
        if (Module* known = SameAs(listed)) stayed.push_back(known);
        else arrivals.push_back(listed);
    }
    for (Module& module : modules_) module.present = false;
    for (Module* module : stayed) module->present = true;
    // A module back after RUN is taken for the programmed one before a new
    // module of its serial in boot mode could be.
    std::stable_partition(arrivals.begin(), arrivals.end(),
                          [](const ListedModule& m) { return m.Mode == ModuleMode::Running; });

    StationPlan plan;
    for (const ListedModule& arrival : arrivals) {
        Module* module = Returning(arrival);
        if (!module) {
            modules_.push_back({arrival.UsbSerial, arrival.Port, arrival.Mode, Stage::Seen, true});
            continue;
        }
        if (module->stage == Stage::Programmed) plan.Skipped.push_back(arrival);
        if (module->stage == Stage::Failed) module->stage = Stage::Seen;
        *module = {module->serial, arrival.Port, arrival.Mode, module->stage, true};
    }

    int begun = programmed_ + InProgress();
    for (size_t i = 0; i < modules_.size(); ++i) {
        const Module& module = modules_[i];
        if (!module.present) continue;
        const bool boot = module.mode == ModuleMode::Boot;
        if (module.stage == Stage::Booted && boot) plan.Jobs.push_back(JobOf(i, JobStep::Flash));
        if (module.stage != Stage::Seen || stopped_ || (count_ > 0 && begun >= count_)) continue;
        plan.Jobs.push_back(JobOf(i, boot ? JobStep::Flash : JobStep::EnterBoot));
        ++begun;
    }
    return plan;
}

StationBook::Module* StationBook::SameAs(const ListedModule& listed) {
    for (Module& module : modules_)
        if (module.present && module.port == listed.Port && module.serial == listed.UsbSerial &&
            module.mode == listed.Mode)
            return &module;
    return nullptr;
}

// An absent module of the arrival's serial: one on its way into its boot
// loader when the arrival is in boot mode, else one that failed (to be tried
// again), one seen before, and last one that was programmed.
StationBook::Module* StationBook::Returning(const ListedModule& arrival) {
    const auto likeness = [&arrival](const Module& m) {
        if (m.present || m.serial != arrival.UsbSerial) return 0;
        switch (m.stage) {
            case Stage::Booting:
            case Stage::Booted: return arrival.Mode == ModuleMode::Boot ? 4 : 0;
            case Stage::Failed: return 3;
            case Stage::Seen: return 2;
            case Stage::Programmed: return 1;
            case Stage::Flashing: return 0;
        }
        return 0;
    };
    Module* best = nullptr;
    for (Module& module : modules_)
        if (likeness(module) > (best ? likeness(*best) : 0)) best = &module;
    return best;
}

ModuleJob StationBook::JobOf(size_t index, JobStep step) const {
    const Module& module = modules_[index];
    return {step, module.port, module.serial, static_cast<int>(index) + 1};
}

void StationBook::Started(const ModuleJob& job) {
    modules_.at(job.Module - 1).stage = job.Step == JobStep::Flash ? Stage::Flashing : Stage::Booting;
}

void StationBook::Ended(const ModuleJob& job, bool ok) {
    Stage& stage = modules_.at(job.Module - 1).stage;
    if (!ok) {
        stage = Stage::Failed;
    } else if (job.Step == JobStep::EnterBoot) {
        stage = Stage::Booted;
    } else {
        stage = Stage::Programmed;
        ++programmed_;
    }
}

void StationBook::Withdrawn(const ModuleJob& job) { modules_.at(job.Module - 1).stage = Stage::Seen; }

std::optional<ModuleJob> StationBook::Stranded() const {
    for (size_t i = 0; i < modules_.size(); ++i)
        if (modules_[i].stage == Stage::Booted) return JobOf(i, JobStep::Flash);
    return std::nullopt;
}

std::vector<ListedModule> StationBook::NotStarted() const {
    std::vector<ListedModule> waiting;
    for (const Module& module : modules_)
        if (module.stage == Stage::Seen) waiting.push_back({module.port, module.serial, module.mode});
    return waiting;
}

std::vector<BookEntry> StationBook::Entries() const {
    std::vector<BookEntry> entries;
    for (size_t i = 0; i < modules_.size(); ++i) {
        const Module& module = modules_[i];
        const ModuleStage stage = module.stage == Stage::Seen         ? ModuleStage::Waiting
                                  : module.stage == Stage::Programmed ? ModuleStage::Programmed
                                  : module.stage == Stage::Failed     ? ModuleStage::Failed
                                                                      : ModuleStage::InProgress;
        entries.push_back({static_cast<int>(i) + 1, module.port, module.serial, stage, module.present});
    }
    return entries;
}

StationCounts CountsOf(const std::vector<BookEntry>& entries) {
    StationCounts counts;
    for (const BookEntry& entry : entries) {
        switch (entry.Stage) {
            case ModuleStage::Programmed: ++counts.Programmed; break;
            case ModuleStage::Failed: ++counts.Failed; break;
            case ModuleStage::InProgress: ++counts.InProgress; break;
            case ModuleStage::Waiting: counts.Waiting += entry.Present ? 1 : 0; break;
        }
    }
    return counts;
}

int StationBook::InProgress() const {
    return static_cast<int>(std::count_if(modules_.begin(), modules_.end(), [](const Module& m) {
        return m.stage == Stage::Booting || m.stage == Stage::Booted || m.stage == Stage::Flashing;
    }));
}

bool StationBook::Finished() const {
    if (!stopped_ && (count_ == 0 || programmed_ < count_)) return false;
    return InProgress() == 0;
}

}  // namespace sb

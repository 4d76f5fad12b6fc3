#include "production/StationBook.h"

#include <set>

namespace sb {
namespace {

std::string Key(const std::string& port, const std::string& usbSerial) {
    return usbSerial.empty() ? "port " + port : usbSerial;
}

}  // namespace

std::string UsbSerialOf(const std::string& pnpDeviceId) {
    const size_t slash = pnpDeviceId.rfind('\\');
    // "USB\VID_0483&PID_5740" has no serial: its last backslash is its first.
    if (slash == std::string::npos || slash == pnpDeviceId.find('\\')) return {};
    return pnpDeviceId.substr(slash + 1);
}

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

std::vector<ModuleJob> StationBook::Plan(const std::vector<ListedModule>& listing) {
    std::set<std::string> present;
    for (const ListedModule& m : listing) present.insert(Key(m.Port, m.UsbSerial));
    for (auto& [key, module] : modules_)
        if (module.stage == Stage::Failed && !present.count(key)) module.away = true;

    std::vector<ModuleJob> jobs;
    std::set<std::string> planned;
    int begun = programmed_ + InProgress();
    for (const ListedModule& m : listing) {
        const std::string key = Key(m.Port, m.UsbSerial);
        // Two ports of one serial: the first one listed is taken.
        if (!planned.insert(key).second) continue;
        const auto found = modules_.find(key);
        if (found != modules_.end() && found->second.stage == Stage::Booted) {
            if (m.Mode == ModuleMode::Boot) jobs.push_back({JobStep::Flash, m.Port, m.UsbSerial});
            continue;
        }
        const bool fresh = found == modules_.end() || (found->second.stage == Stage::Failed && found->second.away);
        if (!fresh || stopped_ || (count_ > 0 && begun >= count_)) continue;
        jobs.push_back({m.Mode == ModuleMode::Boot ? JobStep::Flash : JobStep::EnterBoot, m.Port, m.UsbSerial});
        ++begun;
    }
    return jobs;
}

void StationBook::Started(const ModuleJob& job) {
    modules_[Key(job.Port, job.UsbSerial)] = {job.Step == JobStep::Flash ? Stage::Flashing : Stage::Booting};
}

void StationBook::Ended(const ModuleJob& job, bool ok) {
    Module& module = modules_[Key(job.Port, job.UsbSerial)];
    if (!ok) {
        module = {Stage::Failed};
    } else if (job.Step == JobStep::EnterBoot) {
        module = {Stage::Booted};
    } else {
        module = {Stage::Programmed};
        ++programmed_;
    }
}

int StationBook::InProgress() const {
    int busy = 0;
    for (const auto& [key, module] : modules_)
        if (module.stage == Stage::Booting || module.stage == Stage::Booted || module.stage == Stage::Flashing) ++busy;
    return busy;
}

bool StationBook::Finished() const {
    if (!stopped_ && (count_ == 0 || programmed_ < count_)) return false;
    for (const auto& [key, module] : modules_)
        if (module.stage == Stage::Booting || module.stage == Stage::Flashing) return false;
    return true;
}

}  // namespace sb

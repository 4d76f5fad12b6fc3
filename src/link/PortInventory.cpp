#include "link/PortInventory.h"

#include <dirent.h>

#include <cerrno>
#include <exception>
#include <cstring>

#include "link/ModuleRegistry.h"

namespace sb {

MergedInventory::MergedInventory(std::vector<std::unique_ptr<PortInventory>> sources) : sources_(std::move(sources)) {}

void MergedInventory::Connect() {
    connected_.clear();
    for (auto& source : sources_) {
        try {
            source->Connect();
            connected_.push_back(source.get());
        } catch (const std::exception&) {
            if (source == sources_.front()) throw;
        }
    }
}

void MergedInventory::Walk(const std::function<void(const InventoryPort&)>& visit) {
    for (PortInventory* source : connected_) {
        try {
            source->Walk(visit);
        } catch (const std::exception&) {
            // What this source handed out until then stands; the next one goes on.
        }
    }
}

void RegistryInventory::Connect() {
    // A missing folder only means that no virtual module runs.
    DIR* folder = ::opendir(ModuleRegistryFolder().c_str());
    if (folder) {
        ::closedir(folder);
        return;
    }
    if (errno != ENOENT) throw InventoryError(errno, std::strerror(errno));
}

void RegistryInventory::Walk(const std::function<void(const InventoryPort&)>& visit) {
    for (const auto& module : ListRegisteredModules())
        visit(InventoryPort{module.PNPDeviceID, module.DevicePath, module.Description});
}

}  // namespace sb

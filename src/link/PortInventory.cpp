#include "link/PortInventory.h"

#include <dirent.h>

#include <cerrno>
#include <cstring>

#include "link/ModuleRegistry.h"

namespace sb {

MergedInventory::MergedInventory(std::vector<std::unique_ptr<PortInventory>> sources) : sources_(std::move(sources)) {}

void MergedInventory::Connect() {
    for (auto& source : sources_) source->Connect();
}

void MergedInventory::Walk(const std::function<void(const InventoryPort&)>& visit) {
    for (auto& source : sources_) source->Walk(visit);
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

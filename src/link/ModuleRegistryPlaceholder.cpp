// Stands in for ModuleRegistry.cpp until the virtual module's registry is in
// the tree, so that the programs link: no virtual module is ever listed.
// CMake builds it only while ModuleRegistry.cpp is missing.
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

#include "link/ModuleRegistry.h"

namespace sb {

std::string ModuleRegistryFolder() {
    if (const char* folder = std::getenv("SERVICEBAY_REGISTRY")) return folder;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR")) return std::string(runtime) + "/servicebay";
    return "/tmp/servicebay-" + std::to_string(::getuid());
}

void PublishModule(const std::string&, const RegisteredModule&) {
    throw std::logic_error("the module registry is not built yet");
}

void WithdrawModule(const std::string&) {}

std::vector<RegisteredModule> ListRegisteredModules() { return {}; }

}  // namespace sb

#pragma once
#include <string>
#include <vector>

#include "../editing/TestCatalog.h"
#include "../tools/ModuleProcess.h"

namespace sb::test {

// servicebay-module in its boot loader with module.profile, serving the
// screen tests' catalog, in a registry folder of its own: the screens of this
// test program see this module and no other, also while other tests run
// beside it.
class VirtualModule {
public:
    // faults: switches of servicebay-module, such as "--silent".
    explicit VirtualModule(const std::vector<std::string>& faults = {}) : module_(folder_, Arguments(faults)) {
        if (module_.Device().empty()) throw std::runtime_error("servicebay-module did not start");
    }

    // Whether a line of the module's state file, such as AppConfig, comes to
    // read value: the module writes the file after its answer.
    bool WaitForState(const std::string& key, const std::string& value) const { return module_.WaitForState(key, value); }

private:
    std::vector<std::string> Arguments(const std::vector<std::string>& faults) const {
        // The screens find the module through this folder.
        ::setenv("SERVICEBAY_REGISTRY", folder_.File("registry").c_str(), 1);
        std::vector<std::string> args = {"--profile", SourceFile("tests/mainscreen/module.profile"), "--boot"};
        args.insert(args.end(), faults.begin(), faults.end());
        return args;
    }

    TempFolder folder_{"-module"};
    ModuleProcess module_;
};

}  // namespace sb::test

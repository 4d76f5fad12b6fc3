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
struct VirtualModule {
    // faults: switches of servicebay-module, such as "--silent".
    explicit VirtualModule(const std::vector<std::string>& faults = {}) : process(folder, Arguments(faults)) {
        if (process.Device().empty()) throw std::runtime_error("servicebay-module did not start");
    }

    std::vector<std::string> Arguments(const std::vector<std::string>& faults) const {
        // The screens find the module through this folder.
        ::setenv("SERVICEBAY_REGISTRY", folder.File("registry").c_str(), 1);
        std::vector<std::string> args = {"--profile", SourceFile("tests/mainscreen/module.profile"), "--boot"};
        args.insert(args.end(), faults.begin(), faults.end());
        return args;
    }

    TempFolder folder{"-module"};
    ModuleProcess process;
};

}  // namespace sb::test

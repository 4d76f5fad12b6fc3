#pragma once
#include <QProcess>
#include <QTemporaryDir>
#include <string>
#include <vector>

namespace sb::test {

// servicebay-module in its boot loader, serving the screen tests' catalog,
// in a registry folder of its own: the screens of this test program see this
// module and no other, also while other tests run beside it.
class VirtualModule {
public:
    // faults: switches of servicebay-module, such as "--silent".
    explicit VirtualModule(const std::vector<std::string>& faults = {});
    ~VirtualModule();
    VirtualModule(const VirtualModule&) = delete;
    VirtualModule& operator=(const VirtualModule&) = delete;

    const std::string& Device() const { return device_; }
    // A line of the module's state file, such as AppConfig.
    std::string State(const std::string& key) const;

private:
    QTemporaryDir dir_;
    QProcess process_;
    std::string device_;
};

}  // namespace sb::test

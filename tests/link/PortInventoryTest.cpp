#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "../helpers/TempFolder.h"
#include "ListedInventory.h"
#include "link/ModuleRegistry.h"
#include "link/PortInventory.h"

// The registry folder through which virtual modules reach the port lists,
// and the inventory that merges them with the system's ports.
namespace sb::test {
namespace {

struct Registry : ::testing::Test {
    Registry() { ::setenv("SERVICEBAY_REGISTRY", folder.c_str(), 1); }

    static std::vector<std::string> Listed() {
        std::vector<std::string> listed;
        for (const RegisteredModule& module : ListRegisteredModules())
            listed.push_back(module.DevicePath + " " + module.PNPDeviceID + " " + module.Description);
        return listed;
    }

    TempFolder temp;
    std::string folder = temp.File("registry");
};

TEST_F(Registry, ListsThePublishedEntriesOfLiveModulesInNameOrder) {
    EXPECT_TRUE(Listed().empty());  // no folder yet
    for (const char* name : {"b", "d", "a", "c"}) PublishModule(name, {"/dev/null", "USB\\" + std::string(name), name});
    PublishModule("c", {"/dev/zero", "USB\\C", "c again"});
    WithdrawModule("b");
    WithdrawModule("b");  // gone already: nothing to do
    const pid_t dead = ::fork();
    if (dead == 0) ::_exit(0);
    ::waitpid(dead, nullptr, 0);
    const std::string alive = "\nProcessId=" + std::to_string(::getpid()) + "\n";
    const std::pair<std::string, std::string> others[] = {
        {"gone.module", "DevicePath=/dev/pts/999999\nPNPDeviceID=USB\\2" + alive},
        {"file.module", "DevicePath=" + folder + "/a.module\nPNPDeviceID=USB\\3" + alive},
        {"dead.module", "DevicePath=/dev/null\nPNPDeviceID=USB\\4\nProcessId=" + std::to_string(dead)},
        {"noid.module", "DevicePath=/dev/null" + alive},
        {"notes.txt", "DevicePath=/dev/null\nPNPDeviceID=USB\\5"},
    };
    for (const auto& [name, text] : others) TempFolder::Write(folder + "/" + name, text);
    EXPECT_EQ(Listed(), (std::vector<std::string>{"/dev/null USB\\a a", "/dev/zero USB\\C c again", "/dev/null USB\\d d"}));

    for (const std::string name : {"", ".hidden", "a/b"})
        EXPECT_THROW(PublishModule(name, {"/dev/null", "x", ""}), std::invalid_argument) << name;
    EXPECT_THROW(PublishModule("x", {"/dev/null", "x", "two\nlines"}), std::invalid_argument);
}

TEST_F(Registry, LivesWhereTheEnvironmentSays) {
    ::setenv("XDG_RUNTIME_DIR", "/run/user/77", 1);
    EXPECT_EQ(ModuleRegistryFolder(), folder);
    ::unsetenv("SERVICEBAY_REGISTRY");
    EXPECT_EQ(ModuleRegistryFolder(), "/run/user/77/servicebay");
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(ModuleRegistryFolder(), "/tmp/servicebay-" + std::to_string(::getuid()));
}

TEST_F(Registry, EachSourceOfTheMergedInventoryFailsOnItsOwn) {
    PublishModule("virtual", {"/dev/null", kBootB.PNPDeviceID, "Virtual"});
    auto* system = new ListedInventory({kBootA, kRunningA});
    std::vector<std::unique_ptr<PortInventory>> sources;
    sources.emplace_back(system);
    sources.emplace_back(std::make_unique<RegistryInventory>());
    MergedInventory merged(std::move(sources));
    const auto walk = [&merged] {
        std::vector<std::string> seen;
        merged.Connect();
        merged.Walk([&seen](const InventoryPort& port) { seen.push_back(port.DeviceID + " " + port.Description); });
        return seen;
    };

    // The system's walk breaks off behind its first port; the registry's goes on.
    system->breakAt = 1;
    EXPECT_EQ(walk(), (std::vector<std::string>{"ttyACM2 Boot A", "/dev/null Virtual"}));
    // A registry that cannot be read hides nothing of the system.
    std::filesystem::remove_all(folder);
    TempFolder::Write(folder, "not a folder");
    EXPECT_EQ(walk(), std::vector<std::string>{"ttyACM2 Boot A"});
    // The system's inventory alone fails the connection.
    system->refuse = true;
    EXPECT_THROW(merged.Connect(), InventoryError);
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "../helpers/TempFolder.h"
#include "link/ModuleRegistry.h"

// The registry folder through which virtual modules reach the port lists.
namespace sb::test {
namespace {

class ModuleRegistry : public ::testing::Test {
protected:
    ModuleRegistry() { ::setenv("SERVICEBAY_REGISTRY", registry.c_str(), 1); }

    static std::vector<std::string> Listed() {
        std::vector<std::string> paths;
        for (const RegisteredModule& module : ListRegisteredModules())
            paths.push_back(module.DevicePath + " " + module.PNPDeviceID + " " + module.Description);
        return paths;
    }

    TempFolder folder;
    std::string registry = folder.File("registry");
};

pid_t DeadProcess() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return child;
}

TEST_F(ModuleRegistry, ListsPublishedEntriesInNameOrderUntilWithdrawn) {
    EXPECT_TRUE(Listed().empty());  // no folder yet
    PublishModule("zeta", {"/dev/null", "USB\\VID_0483&PID_5740\\B", "boot"});
    PublishModule("alpha", {"/dev/zero", "USB\\VID_C252&PID_1742\\A", "running"});
    EXPECT_EQ(Listed(), (std::vector<std::string>{"/dev/zero USB\\VID_C252&PID_1742\\A running",
                                                  "/dev/null USB\\VID_0483&PID_5740\\B boot"}));
    PublishModule("alpha", {"/dev/zero", "USB\\VID_0483&PID_5740\\A", "boot now"});
    EXPECT_EQ(Listed().front(), "/dev/zero USB\\VID_0483&PID_5740\\A boot now");
    WithdrawModule("alpha");
    WithdrawModule("alpha");  // gone already: nothing to do
    EXPECT_EQ(Listed(), std::vector<std::string>{"/dev/null USB\\VID_0483&PID_5740\\B boot"});
}

TEST_F(ModuleRegistry, SkipsEntriesWhoseDeviceOrProcessIsGoneAndFilesThatAreNoEntries) {
    PublishModule("good", {"/dev/null", "USB\\VID_0483&PID_5740\\1", "ok"});
    const std::string alive = "ProcessId=" + std::to_string(::getpid()) + "\n";
    const std::vector<std::pair<std::string, std::string>> files = {
        {"gone.module", "DevicePath=/dev/pts/999999\nPNPDeviceID=USB\\VID_0483&PID_5740\\2\n" + alive},
        {"file.module", "DevicePath=" + folder.File("registry/good.module") + "\nPNPDeviceID=x\n" + alive},
        {"dead.module", "DevicePath=/dev/null\nPNPDeviceID=USB\\VID_0483&PID_5740\\3\nProcessId=" +
                            std::to_string(DeadProcess()) + "\n"},
        {"noid.module", "DevicePath=/dev/null\n" + alive},
        {".good.module.tmp-1-2", "DevicePath=/dev/null\nPNPDeviceID=USB\\VID_0483&PID_5740\\4\n"},
        {"notes.txt", "DevicePath=/dev/null\nPNPDeviceID=USB\\VID_0483&PID_5740\\5\n"},
    };
    for (const auto& [name, text] : files) TempFolder::Write(folder.File("registry/" + name), text);
    EXPECT_EQ(Listed(), std::vector<std::string>{"/dev/null USB\\VID_0483&PID_5740\\1 ok"});
}

TEST_F(ModuleRegistry, RefusesNamesAndFieldsThatCannotBeReadBack) {
    for (const std::string name : {"", ".hidden", "a/b"})
        EXPECT_THROW(PublishModule(name, {"/dev/null", "USB\\VID_0483&PID_5740\\1", ""}), std::invalid_argument)
            << name;
    EXPECT_THROW(PublishModule("x", {"/dev/null", "USB\\VID_0483&PID_5740\\1", "two\nlines"}), std::invalid_argument);
}

TEST_F(ModuleRegistry, FolderFromTheEnvironmentInItsOrder) {
    const std::string xdg = std::getenv("XDG_RUNTIME_DIR") ? std::getenv("XDG_RUNTIME_DIR") : "";
    ::setenv("XDG_RUNTIME_DIR", "/run/user/77", 1);
    EXPECT_EQ(ModuleRegistryFolder(), registry);
    ::unsetenv("SERVICEBAY_REGISTRY");
    EXPECT_EQ(ModuleRegistryFolder(), "/run/user/77/servicebay");
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(ModuleRegistryFolder(), "/tmp/servicebay-" + std::to_string(::getuid()));
    if (!xdg.empty()) ::setenv("XDG_RUNTIME_DIR", xdg.c_str(), 1);
}

}  // namespace
}  // namespace sb::test

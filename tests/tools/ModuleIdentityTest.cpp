#include <gtest/gtest.h>

#include <filesystem>

#include "ModuleProcess.h"
#include "link/ModuleRegistry.h"

// The running firmware, which only a 300-baud opening held and closed sends
// to the boot loader, as a new device in the registry and at the link; and
// what a stop leaves behind. The way back by RUN is the run command's.
namespace sb::test {
namespace {

using ModuleIdentity = ModuleTest;

std::string Registered() {
    std::string listed;
    for (const RegisteredModule& module : ListRegisteredModules())
        listed += module.DevicePath + " " + module.PNPDeviceID + ";";
    return listed;
}

TEST_F(ModuleIdentity, OnlyASlowOpeningStartsTheBootLoaderAsANewDevice) {
    ModuleProcess module(folder, {"--profile", SampleFile("SampleModule.profile"), "--reenumerate-ms", "100"});
    const std::string running = module.Device();
    ASSERT_FALSE(running.empty());
    EXPECT_EQ(Registered(), running + " USB\\VID_C252&PID_1742\\20240117;");
    {
        // The firmware takes no commands, and an opening at another speed is no order.
        DeviceLine line(running, B9600);
        line.Send("GETSN\r");
        EXPECT_EQ(line.Read(500), "");
    }
    EXPECT_EQ(module.NextDevice(700), "");
    // Held well beyond what the module needs, so that a slow machine cannot cut it short.
    DeviceLine(running, B300).Read(1500);
    const std::string boot = module.NextDevice();
    ASSERT_FALSE(boot.empty());
    EXPECT_NE(boot, running);
    EXPECT_EQ(Registered(), boot + " USB\\VID_0483&PID_5740\\20240117;");
    EXPECT_EQ(std::filesystem::read_symlink(module.LinkPath()), boot);

    EXPECT_EQ(module.Stop(), 0);
    EXPECT_EQ(Registered(), "");
    EXPECT_FALSE(std::filesystem::is_symlink(module.LinkPath()));
    EXPECT_EQ(module.State("Mode"), "stopped");
}

}  // namespace
}  // namespace sb::test

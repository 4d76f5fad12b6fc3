#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "ModuleProcess.h"
#include "link/ModuleRegistry.h"

// The module's two faces: the running firmware, which a 300-baud opening
// sends to the boot loader, and the boot loader, which RUN sends back; each
// change a new device, published in the registry, at the link and on
// standard output.
namespace sb::test {
namespace {

using ModuleIdentity = ModuleTest;

std::string LinkTarget(const std::string& link) {
    std::error_code error;
    return std::filesystem::read_symlink(link, error).string();
}

bool Exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

std::vector<std::string> RegisteredIds() {
    std::vector<std::string> ids;
    for (const RegisteredModule& module : ListRegisteredModules())
        ids.push_back(module.DevicePath + " " + module.PNPDeviceID);
    return ids;
}

TEST_F(ModuleIdentity, OnlyAnOpeningAt300BaudHeldAndClosedStartsTheBootLoader) {
    ModuleProcess module(folder, {"--profile", WriteProfile(), "--reenumerate-ms", "100"});
    const std::string running = module.Device();
    ASSERT_FALSE(running.empty());
    EXPECT_EQ(RegisteredIds(), std::vector<std::string>{running + " USB\\VID_C252&PID_1742\\00004711"});
    EXPECT_EQ(LinkTarget(module.LinkPath()), running);

    struct Opening {
        speed_t speed;
        int heldMs;
    };
    for (const Opening opening : {Opening{B9600, 500}, Opening{B115200, 500}, Opening{B300, 100}}) {
        DeviceLine line(running, opening.speed);
        // The firmware takes no commands.
        line.Send("GETSN\r");
        EXPECT_EQ(line.Read(opening.heldMs), "");
        line.Close();
        EXPECT_EQ(module.NextDevice(700), "") << opening.speed << " " << opening.heldMs;
    }
    EXPECT_EQ(module.State("Mode"), "running");

    DeviceLine(running, B300).Read(500);
    const std::string boot = module.NextDevice();
    ASSERT_FALSE(boot.empty());
    EXPECT_NE(boot, running);
    EXPECT_EQ(RegisteredIds(), std::vector<std::string>{boot + " USB\\VID_0483&PID_5740\\00004711"});
    EXPECT_EQ(LinkTarget(module.LinkPath()), boot);
    EXPECT_EQ(module.State("Mode"), "boot");
    EXPECT_EQ(module.State("Device"), boot);
}

TEST_F(ModuleIdentity, RunAnswersAndStartsTheFirmwareAsANewDevice) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile(), "--reenumerate-ms", "100"});
    const std::string boot = module.Device();
    {
        DeviceLine line(boot, B115200);
        EXPECT_EQ(line.Exchange("GETSN\r"), "GETSN\r\n00004711\r\n> ");
        line.Send("RUN\r\n");
        EXPECT_EQ(line.Read(300), "RUN\r\nStarting\r\n");
    }
    const std::string running = module.NextDevice();
    ASSERT_FALSE(running.empty());
    EXPECT_NE(running, boot);
    EXPECT_EQ(RegisteredIds(), std::vector<std::string>{running + " USB\\VID_C252&PID_1742\\00004711"});
    EXPECT_EQ(module.State("Mode"), "running");

    // A boot loader held open after RUN starts the firmware all the same.
    DeviceLine(running, B300).Read(500);
    const std::string boot2 = module.NextDevice();
    DeviceLine line(boot2);
    line.Send("RUN\r\n");
    const auto start = Clock::now();
    EXPECT_FALSE(module.NextDevice(3000).empty());
    EXPECT_GE(MsSince(start), 900);
}

TEST_F(ModuleIdentity, EachStopSignalWithdrawsTheDeviceEverywhere) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ModuleProcess module(folder, {"--profile", WriteProfile(), "--name", "bench-7"});
        DeviceLine line(module.Device(), B9600);
        ASSERT_TRUE(Exists(folder.File("registry/bench-7.module")));
        const auto entries = ListRegisteredModules();
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_EQ(entries[0].Description, "ServiceBay virtual module");
        EXPECT_EQ(module.Stop(signal), 0) << signal;
        EXPECT_FALSE(Exists(folder.File("registry/bench-7.module")));
        EXPECT_FALSE(Exists(module.LinkPath()));
        EXPECT_TRUE(line.Gone());
        EXPECT_EQ(module.State("Mode"), "stopped");
    }
}

}  // namespace
}  // namespace sb::test

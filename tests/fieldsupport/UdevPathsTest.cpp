#include <gtest/gtest.h>
#include <umockdev.h>

#include <algorithm>

#include "../tools/CliRun.h"
#include "link/DeviceEvents.h"
#include "link/SystemInventory.h"
#include "support/Doctor.h"

// The system's side of the link on an emulated machine: umockdev (the test
// runs under umockdev-wrapper) gives libudev and /sys the two faces of the
// module as device descriptions beside this test. What it cannot give is a
// module behind the emulated node: no byte is exchanged here.
namespace sb {
namespace {

constexpr const char* kBootTty = "/sys/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/tty/ttyACM0";

struct Testbed {
    Testbed() {
        EXPECT_TRUE(umockdev_in_mock_environment()) << "run under umockdev-wrapper";
        Add("usb-root-hub.umockdev");
    }
    ~Testbed() { g_object_unref(bed); }
    void Add(const char* name) {
        GError* error = nullptr;
        const std::string path = test::FromEnvironment("SB_SOURCE_DIR") + "/tests/fieldsupport/umockdev/" + name;
        ASSERT_TRUE(umockdev_testbed_add_from_file(bed, path.c_str(), &error)) << (error ? error->message : path);
    }
    UMockdevTestbed* bed = umockdev_testbed_new();
};

bool Readable(int fd) {
    pollfd p{fd, POLLIN, 0};
    return ::poll(&p, 1, 5000) == 1;  // a bound, not a window: the event is sent before
}

TEST(UdevPaths, TheInventoryListsBothFacesByTheirUsbIdentity) {
    Testbed machine;
    machine.Add("boot-module.umockdev");
    machine.Add("running-module.umockdev");
    std::vector<std::pair<std::string, std::string>> listed;
    SystemInventory().Walk([&](const InventoryPort& port) { listed.emplace_back(port.DeviceID, port.PNPDeviceID); });
    std::sort(listed.begin(), listed.end());
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"ttyACM0", "USB\\VID_0483&PID_5740\\SB0001"}, {"ttyACM1", "USB\\VID_C252&PID_17A4\\SB0002"}};
    EXPECT_EQ(listed, expected);
}

TEST(UdevPaths, DeviceEventsHearAModuleComeAndGo) {
    Testbed machine;
    DeviceEvents events;
    ASSERT_GE(events.UdevFd(), 0) << (events.Problems().empty() ? "" : events.Problems()[0]);
    EXPECT_FALSE(events.DrainUdev());
    machine.Add("boot-module.umockdev");
    umockdev_testbed_uevent(machine.bed, kBootTty, "add");
    ASSERT_TRUE(Readable(events.UdevFd()));
    EXPECT_TRUE(events.DrainUdev());
    umockdev_testbed_uevent(machine.bed, kBootTty, "remove");
    umockdev_testbed_remove_device(machine.bed, kBootTty);
    ASSERT_TRUE(Readable(events.UdevFd()));
    EXPECT_TRUE(events.DrainUdev());
}

// The doctor's facts come from the emulated udev: which module the rule
// marked, and which it did not.
TEST(UdevPaths, TheDoctorSeesTheModulesAndTheirMarks) {
    Testbed machine;
    machine.Add("boot-module.umockdev");
    machine.Add("running-module.umockdev");
    auto modules = support::ModuleDevices(support::LocalSystem(), "");
    std::sort(modules.begin(), modules.end(), [](const auto& a, const auto& b) { return a.DevNode < b.DevNode; });
    ASSERT_EQ(modules.size(), 2u);
    EXPECT_EQ(modules[0].DevNode, "/dev/ttyACM0");
    EXPECT_EQ(modules[0].Serial, "SB0001");
    EXPECT_EQ(modules[0].Properties["ID_MM_DEVICE_IGNORE"], "1");
    EXPECT_EQ(modules[1].DevNode, "/dev/ttyACM1");
    EXPECT_EQ(modules[1].Product, "17a4");
    EXPECT_EQ(modules[1].Properties.count("ID_MM_DEVICE_IGNORE"), 0u);
}

// servicebay-cli finds the running module by its serial, and the doctor
// says it needs its boot loader for the next command.
TEST(UdevPaths, SerialFindsTheModuleForTheDoctor) {
    Testbed machine;
    machine.Add("boot-module.umockdev");
    machine.Add("running-module.umockdev");
    test::TempFolder folder;
    const auto run = test::RunCli(folder, {"doctor", "--serial", "SB0002", "--needs", "boot"});
    EXPECT_EQ(run.status, 42) << run.out << run.err;
    EXPECT_NE(run.out.find("boot --port ttyACM1"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace sb

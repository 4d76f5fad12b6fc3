#include <gtest/gtest.h>

#include "ListedInventory.h"
#include "link/PortLists.h"

namespace sb::test {
namespace {

using Texts = std::vector<std::string>;

Texts TextsOf(const PortList& list) {
    Texts texts;
    for (const auto& item : list.Items) texts.push_back(item.Text);
    return texts;
}

PortListState Scan(const PortListState& before, ListedInventory& inventory, Texts& reports) {
    return ScanPortLists(before, inventory, [&reports](const std::string& text) { reports.push_back(text); });
}

TEST(ModeOfPort, TellsTheTwoIdentitiesCaseSensitivelyRunningFirst) {
    using enum ModuleMode;
    const std::pair<const char*, ModuleMode> cases[] = {
        {"USB\\VID_C252&PID_1700\\X", Running}, {"USB\\VID_C252&PID_17AB", Running},
        {"USB\\VID_C252&PID_1800\\X", None},    {"USB\\VID_0483&PID_5740\\X", Boot},
        {"usb\\vid_0483&pid_5740\\x", None},    {"USB\\VID_0483&PID_574\\X", None},
        {"VID_0483&PID_5740 VID_C252&PID_17", Running}};
    for (const auto& [id, mode] : cases) EXPECT_EQ(ModeOfPort(id), mode) << id;
}

TEST(ScanPortLists, SortsPortsByModeInTheInventorysOrderAndShowsNotFoundInAnEmptyList) {
    const auto report = "Error occured during device searching\r\nError Number: 13\r\nDescription: Permission denied";
    const struct {
        std::vector<InventoryPort> ports;
        int breakAt;  // the walk breaks off there, without a report
        bool refuse;
        Texts dev, boot, reports;
    } cases[] = {
        {{kBootB, kRunningA, kOther, kBootA, kRunningB}, -1, false, {"ttyACM0", "ttyACM1"}, {"/dev/pts/7", "ttyACM2"},
         {}},
        {{kOther}, -1, false, {"Not Found"}, {"Not Found"}, {}},
        {{kBootA, kRunningA, kBootB}, 2, false, {"ttyACM0"}, {"ttyACM2"}, {}},
        {{kRunningA, kBootA}, -1, true, {"Not Found"}, {"Not Found"}, {report}},
    };
    for (const auto& c : cases) {
        ListedInventory inventory(c.ports);
        inventory.breakAt = c.breakAt;
        inventory.refuse = c.refuse;
        Texts reports;
        const auto lists = Scan({}, inventory, reports);
        EXPECT_EQ(TextsOf(lists.DevList), c.dev);
        EXPECT_EQ(TextsOf(lists.BootList), c.boot);
        EXPECT_EQ(lists.SelPort, c.boot[0]);
        EXPECT_EQ(reports, c.reports);
    }
}

TEST(ScanPortLists, KeepsASelectedPortThatIsStillThereElseTakesTheFirst) {
    ListedInventory both({kRunningA, kRunningB, kBootA, kBootB});
    Texts reports;
    auto lists = Scan({}, both, reports);
    lists.DevList.Selected = 1;
    lists.BootList.Selected = 1;
    lists = Scan(lists, both, reports);
    // Each item opens its port and has the port's description for a tool tip.
    const PortListItem& boot = lists.BootList.Items[1];
    EXPECT_EQ(lists.DevList.SelectedText() + " " + lists.SelPort + " " + boot.Port + " " + boot.Info,
              "ttyACM1 /dev/pts/7 /dev/pts/7 Boot B");
    // Module B went from the running list to the boot list, in front of the selected port.
    ListedInventory moved({kRunningA, kBootA, InventoryPort{kBootA.PNPDeviceID, "ttyACM5", "B in boot"}, kBootB});
    lists = Scan(lists, moved, reports);
    EXPECT_EQ(lists.DevList.SelectedText() + " " + lists.SelPort, "ttyACM0 /dev/pts/7");
}

TEST(NamesPort, AcceptsAnyNameButEmptyAndNotFound) {
    const std::pair<const char*, bool> cases[] = {
        {"ttyACM0", true}, {"/dev/pts/3", true}, {"", false}, {"Not Found", false}};
    for (const auto& [name, names] : cases) EXPECT_EQ(NamesPort(name), names) << name;
}

}  // namespace
}  // namespace sb::test

#include <gtest/gtest.h>

#include "ListedInventory.h"
#include "link/PortLists.h"

namespace sb::test {
namespace {

std::vector<std::string> Texts(const PortList& list) {
    std::vector<std::string> texts;
    for (const auto& item : list.Items) texts.push_back(item.Text);
    return texts;
}

PortListState Scan(const PortListState& before, ListedInventory& inventory,
                   std::vector<std::string>* reports = nullptr) {
    return ScanPortLists(before, inventory, [reports](const std::string& text) {
        if (reports) reports->push_back(text);
        if (!reports) ADD_FAILURE() << "unexpected report: " << text;
    });
}

TEST(ModeOfPort, TellsTheTwoIdentitiesCaseSensitivelyRunningFirst) {
    const std::pair<const char*, ModuleMode> cases[] = {
        {"USB\\VID_C252&PID_1700\\X", ModuleMode::Running},
        {"USB\\VID_C252&PID_17AB", ModuleMode::Running},
        {"USB\\VID_C252&PID_1800\\X", ModuleMode::None},
        {"USB\\VID_0483&PID_5740\\X", ModuleMode::Boot},
        {"usb\\vid_0483&pid_5740\\x", ModuleMode::None},
        {"USB\\VID_0483&PID_574\\X", ModuleMode::None},
        {"VID_0483&PID_5740 VID_C252&PID_17", ModuleMode::Running},
    };
    for (const auto& [id, mode] : cases) EXPECT_EQ(ModeOfPort(id), mode) << id;
}

TEST(ScanPortLists, SortsPortsIntoTheTwoListsInTheOrderTheInventoryGivesThem) {
    ListedInventory inventory({kBootB, kRunningA, kOther, kBootA, kRunningB});
    const auto lists = Scan({}, inventory);
    EXPECT_EQ(Texts(lists.DevList), (std::vector<std::string>{"ttyACM0", "ttyACM1"}));
    EXPECT_EQ(Texts(lists.BootList), (std::vector<std::string>{"/dev/pts/7", "ttyACM2"}));
    EXPECT_EQ(lists.BootList.Items[1].Port, "ttyACM2");
    EXPECT_EQ(lists.BootList.Items[1].Info, "Boot A");
    EXPECT_EQ(lists.DevList.Selected, 0);
    EXPECT_EQ(lists.BootList.Selected, 0);
    EXPECT_EQ(lists.SelPort, "/dev/pts/7");
}

TEST(ScanPortLists, PutsNotFoundIntoAListWithoutPorts) {
    ListedInventory inventory({kOther});
    const auto lists = Scan({}, inventory);
    for (const PortList* list : {&lists.DevList, &lists.BootList}) {
        ASSERT_EQ(list->Items.size(), 1u);
        EXPECT_EQ(list->Items[0].Text + "|" + list->Items[0].Port + "|" + list->Items[0].Info, "Not Found||");
        EXPECT_EQ(list->Selected, 0);
    }
    EXPECT_EQ(lists.SelPort, "Not Found");
}

TEST(ScanPortLists, KeepsASelectedPortThatIsStillThereElseTakesTheFirst) {
    ListedInventory both({kRunningA, kRunningB, kBootA, kBootB});
    auto lists = Scan({}, both);
    lists.DevList.Selected = 1;
    lists.BootList.Selected = 1;
    lists = Scan(lists, both);
    EXPECT_EQ(lists.DevList.SelectedText(), "ttyACM1");
    EXPECT_EQ(lists.SelPort, "/dev/pts/7");

    // Module B went from the running list to the boot list.
    ListedInventory moved({kRunningA, kBootA, kBootB, InventoryPort{kBootA.PNPDeviceID, "ttyACM5", "B in boot"}});
    lists = Scan(lists, moved);
    EXPECT_EQ(lists.DevList.SelectedText(), "ttyACM0");
    EXPECT_EQ(lists.SelPort, "/dev/pts/7");
}

TEST(ScanPortLists, ReportsAnUnreachableInventoryInThreeLinesAndShowsNoPort) {
    ListedInventory inventory({kRunningA, kBootA});
    auto lists = Scan({}, inventory);
    inventory.refuse = true;
    std::vector<std::string> reports;
    lists = Scan(lists, inventory, &reports);
    EXPECT_EQ(reports,
              std::vector<std::string>{
                  "Error occured during device searching\r\nError Number: 13\r\nDescription: Permission denied"});
    EXPECT_EQ(Texts(lists.DevList), std::vector<std::string>{"Not Found"});
    EXPECT_EQ(lists.SelPort, "Not Found");
}

TEST(ScanPortLists, KeepsWhatItFoundWhenTheWalkBreaksOffWithoutReport) {
    ListedInventory inventory({kBootA, kRunningA, kBootB});
    inventory.breakAt = 2;
    const auto lists = Scan({}, inventory);
    EXPECT_EQ(Texts(lists.BootList), std::vector<std::string>{"ttyACM2"});
    EXPECT_EQ(Texts(lists.DevList), std::vector<std::string>{"ttyACM0"});
}

TEST(NamesPort, AcceptsAnyNameButEmptyAndNotFound) {
    for (const char* name : {"ttyACM0", "/dev/pts/3", "COM7"}) EXPECT_TRUE(NamesPort(name)) << name;
    EXPECT_FALSE(NamesPort(""));
    EXPECT_FALSE(NamesPort("Not Found"));
}

}  // namespace
}  // namespace sb::test

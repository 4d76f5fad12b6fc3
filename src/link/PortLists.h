#pragma once
#include <functional>
#include <string>
#include <vector>

#include "link/PortInventory.h"

// What the selection dialog shows, as plain data, and the decisions of its
// scan: which list a port belongs in, which item stays selected, what
// txtSelPort reads afterwards.
namespace sb {

inline constexpr const char* kNotFound = "Not Found";
// The status of an action while the selection dialog scans before it shows.
inline constexpr const char* kScanning = "Scan for connected devices";
inline constexpr const char* kRunningIdentity = "VID_C252&PID_17";  // any product id 17xx
inline constexpr const char* kBootIdentity = "VID_0483&PID_5740";

enum class ModuleMode { Running, Boot, None };

// By the USB identity in a PNPDeviceID; the running test is made first.
ModuleMode ModeOfPort(const std::string& pnpDeviceId);

// The serial behind the last backslash of "USB\VID_0483&PID_5740\SERIAL";
// empty when the identity has none.
std::string UsbSerialOf(const std::string& pnpDeviceId);

struct PortListItem {
    std::string Text;         // as shown: the port's DeviceID, or "Not Found"
    std::string Port;         // item data: the name to open; empty for "Not Found"
    std::string Info;         // tool tip: the port's Description
    std::string PNPDeviceID;  // empty for "Not Found"
};

struct PortList {
    std::vector<PortListItem> Items;
    int Selected = -1;  // none, as before the first scan
    std::string SelectedText() const;
    std::string SelectedPort() const;
};

struct PortListState {
    PortList DevList;     // cmbUSBDevList: running modules
    PortList BootList;    // cmbUSBBootList: modules in boot mode
    std::string SelPort;  // txtSelPort
};

// The three lines of the report when the inventory cannot be reached.
std::string InventoryErrorText(const InventoryError& failure);

// One scan: the lists filled from the inventory in its order, "Not Found" in
// a list without a port, the selection kept on a port that is still there
// (else the first item), and SelPort following the boot list. A failing
// connection is reported through reportError; a failure later in the walk
// keeps what was found until then. Never throws.
PortListState ScanPortLists(const PortListState& before, PortInventory& inventory,
                            const std::function<void(const std::string&)>& reportError);

// Whether a txtSelPort text names a port to open: not empty and not "Not Found".
bool NamesPort(const std::string& selPort);

}  // namespace sb

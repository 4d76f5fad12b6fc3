#include "link/PortLists.h"

#include <exception>

namespace sb {
namespace {

void AddNotFoundIfEmpty(PortList& list) {
    if (list.Items.empty()) list.Items.push_back(PortListItem{kNotFound, "", "", ""});
}

// The first item whose text equals the one selected before, else item 0.
int StickySelection(const PortList& list, const std::string& remembered) {
    for (int i = 0; i < static_cast<int>(list.Items.size()); ++i)
        if (list.Items[i].Text == remembered) return i;
    return 0;
}

void Fill(PortListState& lists, PortInventory& inventory, const std::function<void(const std::string&)>& reportError) {
    try {
        inventory.Connect();
    } catch (const InventoryError& failure) {
        reportError(InventoryErrorText(failure));
        return;
    } catch (const std::exception& failure) {
        // Without a number of the system's own.
        reportError(InventoryErrorText(InventoryError(0, failure.what())));
        return;
    }
    try {
        inventory.Walk([&lists](const InventoryPort& port) {
            PortList* target = nullptr;
            switch (ModeOfPort(port.PNPDeviceID)) {
                case ModuleMode::Running: target = &lists.DevList; break;
                case ModuleMode::Boot: target = &lists.BootList; break;
                case ModuleMode::None: return;
            }
            target->Items.push_back(PortListItem{port.DeviceID, port.DeviceID, port.Description, port.PNPDeviceID});
        });
    } catch (const std::exception&) {
        // A port that vanished or a source that broke off: keep what was found.
    }
}

}  // namespace

ModuleMode ModeOfPort(const std::string& pnpDeviceId) {
    if (pnpDeviceId.find(kRunningIdentity) != std::string::npos) return ModuleMode::Running;
    if (pnpDeviceId.find(kBootIdentity) != std::string::npos) return ModuleMode::Boot;
    return ModuleMode::None;
}

std::string UsbSerialOf(const std::string& pnpDeviceId) {
    const size_t slash = pnpDeviceId.rfind('\\');
    // "USB\VID_0483&PID_5740" has no serial: its last backslash is its first.
    if (slash == std::string::npos || slash == pnpDeviceId.find('\\')) return {};
    return pnpDeviceId.substr(slash + 1);
}

std::string PortList::SelectedText() const {
    return Selected >= 0 && Selected < static_cast<int>(Items.size()) ? Items[Selected].Text : std::string();
}

std::string PortList::SelectedPort() const {
    return Selected >= 0 && Selected < static_cast<int>(Items.size()) ? Items[Selected].Port : std::string();
}

std::string InventoryErrorText(const InventoryError& failure) {
    return std::string("Error occured during device searching") +
           "\r\nError Number: " + std::to_string(failure.Number) + "\r\nDescription: " + failure.what();
}

PortListState ScanPortLists(const PortListState& before, PortInventory& inventory,
                            const std::function<void(const std::string&)>& reportError) {
    PortListState after;
    Fill(after, inventory, reportError);
    AddNotFoundIfEmpty(after.DevList);
    AddNotFoundIfEmpty(after.BootList);
    after.DevList.Selected = StickySelection(after.DevList, before.DevList.SelectedText());
    after.BootList.Selected = StickySelection(after.BootList, before.BootList.SelectedText());
    after.SelPort = after.BootList.SelectedText();
    return after;
}

bool NamesPort(const std::string& selPort) { return !selPort.empty() && selPort != kNotFound; }

}  // namespace sb

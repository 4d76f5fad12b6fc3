#pragma once
#include <memory>

#include "link/PortInventory.h"

namespace sb {

// The system's serial ports through QSerialPortInfo. A USB port's
// PNPDeviceID is built as "USB\VID_xxxx&PID_xxxx\serial" in upper-case hex,
// so the identity tests work on it unchanged; other ports get an empty one.
class SystemInventory final : public PortInventory {
public:
    void Connect() override {}
    void Walk(const std::function<void(const InventoryPort&)>& visit) override;
};

// The inventory of the programs: the system's ports, then the virtual modules.
std::unique_ptr<PortInventory> MakePortInventory();

}  // namespace sb

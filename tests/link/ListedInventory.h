#pragma once
#include "link/PortInventory.h"

namespace sb::test {

// An inventory from a list that a test can change between scans; it can
// refuse the connection or break off after a number of ports.
struct ListedInventory final : PortInventory {
    explicit ListedInventory(std::vector<InventoryPort> ports = {}) : ports(std::move(ports)) {}
    void Connect() override {
        if (refuse) throw InventoryError(13, "Permission denied");
    }
    void Walk(const std::function<void(const InventoryPort&)>& visit) override {
        for (std::size_t i = 0; i < ports.size(); ++i) {
            if (static_cast<int>(i) == breakAt) throw std::runtime_error("port gone");
            visit(ports[i]);
        }
    }
    std::vector<InventoryPort> ports;
    bool refuse = false;
    int breakAt = -1;
};

inline const InventoryPort kRunningA{"USB\\VID_C252&PID_1701\\A1", "ttyACM0", "Module A"};
inline const InventoryPort kRunningB{"USB\\VID_C252&PID_17FF\\B1", "ttyACM1", "Module B"};
inline const InventoryPort kBootA{"USB\\VID_0483&PID_5740\\A2", "ttyACM2", "Boot A"};
inline const InventoryPort kBootB{"USB\\VID_0483&PID_5740\\B2", "/dev/pts/7", "Boot B"};
inline const InventoryPort kOther{"USB\\VID_0483&PID_5741\\C", "ttyUSB0", "Other"};

}  // namespace sb::test

#pragma once
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// The PC's serial ports, each with the three texts the selection dialog sorts
// by: PNPDeviceID holds the USB identity ("USB\VID_0483&PID_5740\serial"),
// DeviceID is the port's name to open, Description the text for the tool tip.
namespace sb {

struct InventoryPort {
    std::string PNPDeviceID;
    std::string DeviceID;
    std::string Description;
};

// The inventory service itself cannot be reached; number and description are
// the system's own (an errno and its text).
struct InventoryError : std::runtime_error {
    InventoryError(int number, const std::string& description) : std::runtime_error(description), Number(number) {}
    int Number;
};

class PortInventory {
public:
    virtual ~PortInventory() = default;
    // Throws InventoryError when the service is not there.
    virtual void Connect() = 0;
    // Hands each port to visit, in the order the source answers. A source
    // may fail part-way; the ports handed out until then stand.
    virtual void Walk(const std::function<void(const InventoryPort&)>& visit) = 0;
};

// Several sources as one, walked in turn: the system's inventory first, then
// sources beside it. Each fails on its own. Only the first one's failure to
// connect reaches the caller (that is the report of an unreachable
// inventory); a source beside it that cannot be reached is passed over, and a
// walk that breaks off ends only that source's part, so that a broken
// registry never hides a port of the system.
class MergedInventory final : public PortInventory {
public:
    explicit MergedInventory(std::vector<std::unique_ptr<PortInventory>> sources);
    void Connect() override;
    void Walk(const std::function<void(const InventoryPort&)>& visit) override;

private:
    std::vector<std::unique_ptr<PortInventory>> sources_;
    std::vector<PortInventory*> connected_;
};

// The virtual modules that publish themselves in the registry folder.
class RegistryInventory final : public PortInventory {
public:
    // Fails only when the folder exists and cannot be read.
    void Connect() override;
    void Walk(const std::function<void(const InventoryPort&)>& visit) override;
};

}  // namespace sb

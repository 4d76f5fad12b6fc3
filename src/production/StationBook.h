#pragma once
#include <map>
#include <string>
#include <vector>

#include "link/PortInventory.h"
#include "link/PortLists.h"
#include "production/ProductionLine.h"

// The station's memory of the modules it has seen, by the serial of their USB
// identity: a module programmed successfully is not programmed again while
// the station runs, also when it comes back running after RUN; one that
// failed is tried again once it has been away and is plugged in again. A
// running module is first sent into its boot loader and downloaded when it
// shows up there.
namespace sb {

struct ListedModule {
    std::string Port;
    std::string UsbSerial;
    ModuleMode Mode = ModuleMode::None;
};

// The serial behind the last backslash of "USB\VID_0483&PID_5740\SERIAL";
// empty when the identity has none.
std::string UsbSerialOf(const std::string& pnpDeviceId);

// The modules among the inventory's ports, in its order; other ports are
// left out. A failing inventory gives what it had found until then.
std::vector<ListedModule> ListModules(PortInventory& inventory);

class StationBook {
public:
    // count: end after that many modules were programmed; 0: no end.
    explicit StationBook(int count = 0) : count_(count) {}

    // What to start for the modules listed now. Mark each job with Started.
    std::vector<ModuleJob> Plan(const std::vector<ListedModule>& listing);
    void Started(const ModuleJob& job);
    void Ended(const ModuleJob& job, bool ok);
    // Nothing new is started from now on.
    void Stop() { stopped_ = true; }

    // Stopped, or the count reached, and no job of a module in progress.
    bool Finished() const;
    int Programmed() const { return programmed_; }

private:
    enum class Stage { Booting, Booted, Flashing, Programmed, Failed };
    struct Module {
        Stage stage;
        bool away = false;  // seen missing from a listing since it failed
    };
    int InProgress() const;

    int count_;
    bool stopped_ = false;
    int programmed_ = 0;
    std::map<std::string, Module> modules_;
};

}  // namespace sb

#pragma once
#include <optional>
#include <string>
#include <vector>

#include "link/PortInventory.h"
#include "link/PortLists.h"
#include "production/ProductionLine.h"

// The station's memory of the modules it has seen. A port is one module:
// two ports that show one USB serial are two modules, for boot loaders may
// all show the same one. A module is followed while it re-enumerates: a
// module that shows up on a new port is taken for an absent one of its
// serial where there is one (on its way into its boot loader, failed, or
// programmed), else for a new one. A module programmed successfully is not
// programmed again while the station runs, also when it comes back running
// after RUN; one that failed is tried again once it has been away and is
// plugged in again. A running module is first sent into its boot loader and
// downloaded when it shows up there.
namespace sb {

struct ListedModule {
    std::string Port;
    std::string UsbSerial;
    ModuleMode Mode = ModuleMode::None;
};

// The modules among the inventory's ports, in its order; other ports are
// left out. A failing inventory gives what it had found until then.
std::vector<ListedModule> ListModules(PortInventory& inventory);

// How far a module has come, as its operator sees it.
enum class ModuleStage { Waiting, InProgress, Programmed, Failed };

struct BookEntry {
    int Module = 0;         // the book's number of the module, as its jobs carry it
    std::string Port;       // where it was seen last
    std::string UsbSerial;
    ModuleStage Stage = ModuleStage::Waiting;
    bool Present = false;  // in the last listing
};

// The modules by their stage; one waits only while it is plugged in.
struct StationCounts {
    int Programmed = 0;
    int Failed = 0;
    int InProgress = 0;
    int Waiting = 0;
    bool operator==(const StationCounts&) const = default;
};
StationCounts CountsOf(const std::vector<BookEntry>& entries);

struct StationPlan {
    std::vector<ModuleJob> Jobs;
    // Programmed modules that came back: left alone.
    std::vector<ListedModule> Skipped;
};

class StationBook {
public:
    // count: end after that many modules were programmed; 0: no end.
    explicit StationBook(int count = 0) : count_(count) {}

    // What to start for the modules listed now. Mark each job with Started.
    StationPlan Plan(const std::vector<ListedModule>& listing);
    void Started(const ModuleJob& job);
    void Ended(const ModuleJob& job, bool ok);
    // A job that waited for its turn and was never started: its module is seen, no more.
    void Withdrawn(const ModuleJob& job);
    // Nothing new is started from now on.
    void Stop() { stopped_ = true; }

    // A module that was sent into its boot loader and waits for its download.
    std::optional<ModuleJob> Stranded() const;
    // The modules seen that nothing was started for.
    std::vector<ListedModule> NotStarted() const;
    // Every module seen, in the order it was first seen.
    std::vector<BookEntry> Entries() const;
    // Stopped, or the count reached, and no module in progress.
    bool Finished() const;
    int Programmed() const { return programmed_; }

private:
    enum class Stage { Seen, Booting, Booted, Flashing, Programmed, Failed };
    struct Module {
        std::string serial;
        std::string port;  // where it was seen last
        ModuleMode mode;
        Stage stage;
        bool present;  // in the last listing
    };
    Module* SameAs(const ListedModule& listed);
    Module* Returning(const ListedModule& arrival);
    int InProgress() const;
    ModuleJob JobOf(size_t index, JobStep step) const;

    int count_;
    bool stopped_ = false;
    int programmed_ = 0;
    std::vector<Module> modules_;  // a module's number is its index + 1
};

}  // namespace sb

#pragma once
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "production/ProductionLine.h"
#include "production/StationBook.h"

// A station waits for modules and programs each one as it arrives. The caller
// tells it when the ports may have changed (Refresh, on each device event)
// and when to look at the firmware file (CheckFirmware, every second or so);
// it reads the listing itself again whenever a job ends. Before each download
// the firmware file is checked as well: a file that changed or went away
// since the start stops the station from starting anything more, and a
// module already in its boot loader is left there with a line of its own.
namespace sb {

// A firmware file that changes is seen within this time, also while no module comes.
constexpr std::chrono::seconds kStationFirmwareCheckEvery{1};

struct StationSettings {
    LineSettings Line;
    int Count = 0;  // end after that many modules were programmed; 0: no end
    // The modules plugged in now (ListModules over the inventory).
    std::function<std::vector<ListedModule>()> List;
    // What the operator has to know at once: a module left alone, a firmware file that changed.
    std::function<void(const std::string& text)> Note;
};

class Station {
public:
    Station(StationSettings settings, LineHooks hooks);

    void Refresh();
    void CheckFirmware();
    // Ctrl-C: nothing new starts (a module waiting for its turn is taken
    // back); the jobs in progress end by themselves.
    void Stop();
    // A second Ctrl-C: the jobs in progress are stopped too, and logged as interrupted.
    void Abort();
    // Nothing runs any more, and nothing more will be started.
    bool Finished() const { return book_.Finished() && line_.Running() == 0; }

    // Why the station stopped by itself, if it did.
    const std::optional<std::string>& Refusal() const { return refusal_; }
    // The modules seen that nothing was started for.
    std::vector<ListedModule> NotStarted() const { return book_.NotStarted(); }
    ProductionLine& Line() { return line_; }
    const StationBook& Book() const { return book_; }

private:
    void JobEnded(const ModuleJob& job, const ModuleRecord* record, bool ok);
    bool FirmwareStillThere();
    void DropStranded(const std::string& why);

    std::function<std::vector<ListedModule>()> list_;
    std::function<void(const std::string&)> note_;
    const FirmwareFile* firmware_;
    LineHooks hooks_;
    StationBook book_;
    ProductionLine line_;
    std::optional<std::string> refusal_;
    std::string change_;  // what became of the firmware file, once it changed
    bool aborted_ = false;
    bool refreshing_ = false;
    bool again_ = false;
};

}  // namespace sb

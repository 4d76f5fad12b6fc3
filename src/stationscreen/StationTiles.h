#pragma once
#include <optional>
#include <string>
#include <vector>

#include "production/ModuleRecord.h"
#include "production/ProductionLine.h"
#include "production/StationBook.h"
#include "update/TransferPace.h"

// What the station's window shows of each module, one tile a module: where it
// is, who it is, what is being done to it and how it ended. The station's book
// says which modules there are and how far each has come; the line's hooks
// add the step, the transfer and the end. Times are the caller's seconds on a
// steady clock, so that the rate needs no clock of its own.
namespace sb {

struct ModuleTile {
    int Module = 0;
    std::string Port;
    std::string UsbSerial;
    std::optional<std::string> SN;  // as the module answered GETSN
    ModuleStage Stage = ModuleStage::Waiting;
    bool Present = false;
    int Attempt = 0;
    std::string Step;    // what is done now, or how it ended
    std::string Detail;  // why it failed
    std::optional<XmodemProgress> Progress;
    double TransferStart = 0;    // when its blocks began
    double TransferSeconds = 0;  // from then to its last progress
};

class StationTiles {
public:
    // A transfer is timed from its first block where the progress shows
    // it, else from the start of its job.
    void Started(const ModuleJob& job, int attempt, double now);
    // Under a recipe: the module has begun that step ("identity", "verify", ...).
    void Begun(const ModuleJob& job, const std::string& step);
    void Progress(const ModuleJob& job, const XmodemProgress& progress, double now);
    void Ended(const ModuleJob& job, const ModuleRecord* record, bool ok);
    // The book's word on every module; call it behind every event.
    void Follow(const std::vector<BookEntry>& entries);

    const std::vector<ModuleTile>& Tiles() const { return tiles_; }

private:
    ModuleTile& Of(int module);
    std::vector<ModuleTile> tiles_;  // by module number, from 1
};

// The transfer's share, and its rate up to its last progress, as the tile
// shows them; nothing known before the first block.
TransferPace PaceOf(const ModuleTile& tile);

// The step words of the tile: "waiting", "boot", "download", and a result's.
std::string StepWord(JobStep step);

}  // namespace sb

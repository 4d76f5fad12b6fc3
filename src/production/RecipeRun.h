#pragma once
#include <functional>
#include <optional>
#include <string>

#include "link/SerialPort.h"
#include "link/StatusText.h"
#include "production/Recipe.h"
#include "update/UpdateRun.h"

// The steps of one module in its boot loader under a recipe, on its port:
// identity (GETSN read and kept, GETNAME against the recipe's PName),
// download (the update run, one try), configure (the catalog read, the
// image's fit checked, SETAPPCFG), verify (GETAPPCFG compared with what was
// written), record (the production record) and run (RUN). GETSN is asked
// again behind the download and each later step: a module whose answer
// changes is not the one that was identified, and fails there. The first
// step that fails ends the run; the port is closed on every road.
//
// The USB serial against the order's list and the switch into the boot
// loader are the production line's: it knows the port's identity, and does
// both before a module gets here.
namespace sb {

struct RecipeOutcome {
    std::optional<RecipeStep> Failed;  // none: every step passed
    std::string Detail;                // why it failed, for the log
    std::optional<std::string> SN, PName;
    std::optional<UpdateOutcome> Update;  // of the download, where it ran
    std::optional<ProductionRecord> Record;  // where one was attempted
};

class RecipeRun {
public:
    // firmwarePath: the bytes the download sends, which must have the
    // recipe's SHA-256 (a sealed copy of the recipe's firmware, or the file
    // itself). hooks: ShowMessage and Progress for the download; it is
    // tried once. entered (may be empty) is told as each step begins.
    RecipeRun(SerialPort& port, StatusText& status, const Recipe& recipe, UpdateHooks hooks,
              std::function<void(RecipeStep)> entered = {});

    RecipeOutcome Run(const std::string& portName, const std::string& firmwarePath, const std::string& iniPath);

private:
    void Enter(RecipeStep step);
    void Identity();
    void Download(const std::string& firmwarePath);
    void Configure();
    void Verify();
    void Record(const std::string& iniPath);
    void StartFirmware();
    void Open();
    std::string Ask(std::string_view command);
    void SameModule(RecipeStep step, const std::string& sn);

    SerialPort& port_;
    StatusText& status_;
    const Recipe& recipe_;
    UpdateHooks hooks_;
    std::function<void(RecipeStep)> entered_;
    std::string portName_;
    std::optional<DeviceInfo> catalog_;  // the module's, read for the configuration
    RecipeOutcome outcome_;
    RecipeStep step_ = RecipeStep::Identity;
};

}  // namespace sb

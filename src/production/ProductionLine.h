#pragma once
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "production/ChildSupervisor.h"
#include "production/FirmwareFile.h"
#include "production/ModuleRecord.h"
#include "production/ProductionLog.h"
#include "production/Recipe.h"
#include "update/Xmodem.h"

// Many modules at once: each job (a switch into the boot loader, or a
// download) runs as a program of its own, so the bound state of the terminal
// and the sender stays with its module, and a module that hangs or kills its
// program costs only itself. The line logs each attempt when it starts and
// when it ends, before anyone else hears of it, and keeps the ends for the
// summary. A log that fails does not stop a module: the line that it could
// not take is handed on instead.
namespace sb {

enum class JobStep { EnterBoot, Flash };

struct ModuleJob {
    JobStep Step = JobStep::Flash;
    std::string Port;
    std::string UsbSerial;
    // The caller's number of the module: its attempts are counted under it,
    // whatever port and serial it shows.
    int Module = 0;
};

struct LineSettings {
    const FirmwareFile* Firmware = nullptr;
    ProductionLog* Log = nullptr;  // none: no log
    RunIdentity Run;
    // A download that failed (not downloaded, hung, crashed) is tried again
    // up to so many times, each try an attempt of its own.
    int Retries = 0;
    // A healthy download is silent for a minute at most: the first block may
    // wait 30 s for its ACK and 24 resends of 1 s; the handshake takes 16 s,
    // a production record six exchanges of 5 s.
    ChildLimits Limits{.Silence = std::chrono::seconds(120)};
    // The program line that carries out a job. A download reads the firmware
    // from Firmware->CopyPath() and prints ProgressLine lines and its result
    // line (ChildReport.h) on standard output.
    std::function<std::vector<std::string>(const ModuleJob&)> Command;
    // none: no recipe. A module whose USB serial is not on its order is
    // refused before anything is started for it; the jobs carry out its steps.
    const sb::Recipe* Recipe = nullptr;
};

struct LineHooks {
    // A job's program has started, in the module's attempt of that number.
    std::function<void(const ModuleJob&, int attempt)> Started;
    std::function<void(const ModuleJob&, const XmodemProgress&)> Progress;
    // A job has ended for good (a download that is tried again has not).
    // record is the one just logged, or null for a switch into the boot
    // loader that succeeded; ok tells success either way.
    std::function<void(const ModuleJob&, const ModuleRecord* record, bool ok)> Ended;
    // A line that the log could not take, as it would have stood there.
    std::function<void(const std::string& line)> Unlogged;
    // Under a recipe: a job's module has begun that step.
    std::function<void(const ModuleJob&, RecipeStep)> Step;
};

class ProductionLine {
public:
    ProductionLine(LineSettings settings, LineHooks hooks);

    // Starts the job's program; a program that cannot be started ends the job
    // at once as crashed. A module that the recipe's order does not hold ends
    // at once as refused, at the identity step. A download behind a successful switch into the boot
    // loader goes on with the attempt that the switch began.
    void Start(const ModuleJob& job);
    // Ends the attempt of a module that was sent into its boot loader and
    // will not be downloaded: it is logged as not downloaded, for that reason.
    void Drop(const ModuleJob& job, const std::string& why);
    // A line of the station itself, of no module.
    void LogStationLine(ModuleResult result, const std::string& detail);
    // Stops the jobs in progress; each ends as interrupted.
    void StopAll() { children_.StopAll(); }
    size_t Running() const { return children_.Running(); }

    // The end of every attempt of the run, in the order they ended.
    const std::vector<ModuleRecord>& Records() const { return records_; }
    // Why the log failed first, if it did.
    const std::optional<std::string>& LogFailure() const { return logFailure_; }

    // For the caller's poll loop (ChildSupervisor).
    ChildSupervisor& Children() { return children_; }

private:
    struct Job {
        ModuleJob job;
        int triesLeft = 0;
        std::string lastLine;  // the result line is the last of them
        std::optional<XmodemProgress> progress;
    };
    void Launch(const ModuleJob& job, int triesLeft);
    void Refuse(const ModuleJob& job);
    void Line(ChildSupervisor::Id id, const std::string& line);
    void Ended(ChildSupervisor::Id id, const ChildEnd& end);
    void End(const ModuleJob& job, ModuleRecord& record, int triesLeft);
    ModuleRecord NewRecord(const ModuleJob& job);
    void Log(ModuleRecord& record);

    LineSettings settings_;
    LineHooks hooks_;
    ChildSupervisor children_;
    std::map<ChildSupervisor::Id, Job> running_;
    std::map<int, int> attempts_;  // by module
    std::set<int> inBoot_;         // modules whose attempt goes on behind their switch into the boot loader
    std::vector<ModuleRecord> records_;
    std::optional<std::string> logFailure_;
};

}  // namespace sb

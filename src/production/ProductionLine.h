#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "production/ChildSupervisor.h"
#include "production/FirmwareFile.h"
#include "production/ModuleRecord.h"
#include "production/ProductionLog.h"
#include "update/Xmodem.h"

// Many modules at once: each job (a switch into the boot loader, or a
// download) runs as a program of its own, so the bound state of the terminal
// and the sender stays with its module, and a module that hangs or kills its
// program costs only itself. The line turns each ended download into a
// record, writes it to the log before anyone else hears of it, and keeps it
// for the summary.
namespace sb {

enum class JobStep { EnterBoot, Flash };

struct ModuleJob {
    JobStep Step = JobStep::Flash;
    std::string Port;
    std::string UsbSerial;
};

struct LineSettings {
    const FirmwareFile* Firmware = nullptr;
    ProductionLog* Log = nullptr;  // none: no log
    std::string ProgramVersion;
    // A healthy download is silent for a minute at most: the first block may
    // wait 30 s for its ACK and 24 resends of 1 s; the handshake takes 16 s,
    // a production record six exchanges of 5 s.
    ChildLimits Limits{.Silence = std::chrono::seconds(120)};
    // The program line that carries out a job. A download reads the firmware
    // from Firmware->CopyPath() and prints ProgressLine lines and its result
    // line (ChildReport.h) on standard output.
    std::function<std::vector<std::string>(const ModuleJob&)> Command;
};

struct LineHooks {
    std::function<void(const ModuleJob&, const XmodemProgress&)> Progress;
    // A job has ended. record is the one just logged, or null for a switch
    // into the boot loader that succeeded; ok tells success either way.
    std::function<void(const ModuleJob&, const ModuleRecord* record, bool ok)> Ended;
};

class ProductionLine {
public:
    ProductionLine(LineSettings settings, LineHooks hooks);

    // Starts the job's program; a program that cannot be started ends the job
    // at once as crashed. Throws LogError when its record cannot be logged.
    void Start(const ModuleJob& job);
    // Stops the jobs in progress; each ends as interrupted.
    void StopAll() { children_.StopAll(); }
    size_t Running() const { return children_.Running(); }
    bool Busy(const std::string& usbSerial) const;

    // Every record of the run, in the order they ended.
    const std::vector<ModuleRecord>& Records() const { return records_; }

    // For the caller's poll loop (ChildSupervisor). Service throws LogError
    // when a record cannot be logged.
    ChildSupervisor& Children() { return children_; }

private:
    struct Job {
        ModuleJob job;
        std::string lastLine;  // the result line is the last of them
        std::optional<XmodemProgress> progress;
    };
    void Line(ChildSupervisor::Id id, const std::string& line);
    void Ended(ChildSupervisor::Id id, const ChildEnd& end);
    ModuleRecord NewRecord(const ModuleJob& job);
    void Finish(const ModuleJob& job, ModuleRecord* record, bool ok);

    LineSettings settings_;
    LineHooks hooks_;
    ChildSupervisor children_;
    std::map<ChildSupervisor::Id, Job> running_;
    std::map<std::string, int> attempts_;
    std::vector<ModuleRecord> records_;
};

}  // namespace sb

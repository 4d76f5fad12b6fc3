#pragma once
#include <cstdint>
#include <optional>
#include <string>

// What the production line knows of one attempt at one module: where, which
// module, which firmware, how it ended. The log keeps a line of it when the
// attempt starts and one when it ends; the summary is made from the ends.
namespace sb {

enum class ModuleResult {
    Started,         // the attempt has begun; its end comes in a line of its own
    Programmed,      // downloaded (and, with the production flag, the record written)
    NotConfirmed,    // downloaded, but the production record was not written
    NotDownloaded,   // the transfer failed, or the port failed or vanished
    NoBoot,          // the running module did not come back in its boot loader
    FirmwareRefused, // the download program could not read the firmware
    Hung,            // said nothing for too long, and was stopped
    Crashed,         // the download program died, or ended without a result
    Interrupted,     // stopped on request (Ctrl-C) before it had ended
    FirmwareChanged, // a line of the station itself: its firmware file changed
    // Under a recipe, with the step that failed:
    Refused,         // at the identity step: not the module the recipe is for
    StepFailed,      // at the configure, verify or run step
};

// The word that stands for a result in the log and the summary.
const char* ResultName(ModuleResult result);

// Who wrote a line: the same for every line of one run.
struct RunIdentity {
    std::string Id;       // new for each run
    std::string Host;     // the machine's name
    std::string Station;  // as the line's operator named it; the host's name unless told
    std::string Program;  // name and version of this program
};

struct ModuleRecord {
    std::string Time;  // UTC, ISO 8601, when the attempt started or ended
    // The line's own number of the module, followed from port to port while
    // it re-enumerates; not logged. Zero on a line of the station itself.
    int Module = 0;
    std::string Port;       // empty on a line of the station itself
    std::string UsbSerial;  // the serial of the USB identity; empty when it has none
    int Attempt = 1;        // of this module while the line runs
    // As the module answered GETSN, GETNAME, GETVER; only where they were read.
    std::optional<std::string> SN, PName, PVer;
    std::string FirmwareFile;  // absolute
    int64_t FirmwareSize = 0;
    std::string FirmwareSha256;
    ModuleResult Result = ModuleResult::Crashed;
    std::string Detail;                   // the reason in words, when it failed
    std::string Report;                   // what the module sent behind its last transfer
    std::optional<int32_t> XmodemResult;  // of the last transfer, where one ran
    int64_t BytesProgrammed = 0;
    std::optional<int64_t> BytesAcknowledged;  // by the module, at an attempt's end
    double Seconds = 0;
    std::optional<int32_t> RecordNumber;  // of the production record, where one was written
    RunIdentity Run;
    // Under a recipe (whose path is empty otherwise): the step that failed,
    // and what was carried out.
    std::optional<std::string> Step{};
    std::string RecipeFile{};  // absolute
    std::string RecipeSha256{};
    std::optional<std::string> ConfigurationSha256{};
};

// A run id that no other run shares, and this machine's name. An empty
// station name stands for the host's.
RunIdentity NewRunIdentity(std::string station, std::string program);

bool Succeeded(const ModuleRecord& record);

// A moment as "2024-05-17T08:15:02.345Z".
std::string UtcTimeText(int64_t millisecondsSinceEpoch);
std::string UtcNowText();

// The record as one JSON object on one line, with its line end. Module
// answers are bytes (Latin-1) and are carried as the characters they stand for.
std::string LogLine(const ModuleRecord& record);

}  // namespace sb

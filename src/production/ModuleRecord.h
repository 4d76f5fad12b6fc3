#pragma once
#include <cstdint>
#include <optional>
#include <string>

// What the production line knows of one attempt at one module: where, which
// module, which firmware, how it ended. The log keeps one line of it per
// module and attempt; the summary is made from them.
namespace sb {

enum class ModuleResult {
    Programmed,      // downloaded (and, with the production flag, the record written)
    NotConfirmed,    // downloaded, but the production record was not written
    NotDownloaded,   // the transfer failed, or the port failed or vanished
    NoBoot,          // the running module did not come back in its boot loader
    FirmwareRefused, // the download program could not read the firmware
    Hung,            // said nothing for too long, and was stopped
    Crashed,         // the download program died, or ended without a result
    Interrupted,     // stopped on request (Ctrl-C) before it had ended
};

// The word that stands for a result in the log and the summary.
const char* ResultName(ModuleResult result);

struct ModuleRecord {
    std::string Time;  // UTC, ISO 8601, when the attempt ended
    std::string Port;
    std::string UsbSerial;  // the serial of the USB identity; empty when it has none
    int Attempt = 1;        // of this module while the line runs
    // As the module answered GETSN, GETNAME, GETVER; only where they were read.
    std::optional<std::string> SN, PName, PVer;
    std::string FirmwareFile;
    int64_t FirmwareSize = 0;
    std::string FirmwareSha256;
    ModuleResult Result = ModuleResult::Crashed;
    std::string Detail;                   // the reason in words, when it failed
    std::optional<int32_t> XmodemResult;  // of the last transfer, where one ran
    int64_t BytesProgrammed = 0;
    double Seconds = 0;
    std::optional<int32_t> RecordNumber;  // of the production record, where one was written
    std::string ProgramVersion;
};

bool Succeeded(const ModuleRecord& record);

// A moment as "2024-05-17T08:15:02.345Z".
std::string UtcTimeText(int64_t millisecondsSinceEpoch);
std::string UtcNowText();

// The record as one JSON object on one line, with its line end. Module
// answers are bytes (Latin-1) and are carried as the characters they stand for.
std::string LogLine(const ModuleRecord& record);

}  // namespace sb

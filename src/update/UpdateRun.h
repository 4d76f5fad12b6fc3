#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "link/SerialPort.h"
#include "link/StatusText.h"
#include "ui/MessageBox.h"
#include "update/ProductionRecord.h"
#include "update/Xmodem.h"

// One firmware update, from the press of the start control to its end: the
// file check, the port choice, the opening at 300 baud, CR "BOOT" CR, the
// XMODEM transfer, the report that the module sends behind it, and at the
// technician's wish a retry; after a successful download with the production
// flag, the production record. The update screen and servicebay-cli both run
// it; what differs between them comes in through the hooks.
//
// Up to the choice of the port a failure ends the run with its message. From
// then on a failing port operation is skipped and the run goes on with the
// next step: a port that cannot be opened, or that vanishes, ends up in the
// retry question with the report it has. On every road the port is closed
// and the start control enabled again at the end.
namespace sb {

inline constexpr const char* kUpdateNoFile = "Binary file does not exist!";
inline constexpr const char* kUpdateNoBootDevice = "Cant find device in boot mode";
inline constexpr const char* kUpdateReadError = "Error when reading binary file!";
inline constexpr const char* kUpdateNotDownloaded = "Binary File was not downloaded";
inline constexpr const char* kUpdateCompleted = "Update completed succesfully";

struct UpdateHooks {
    // The path of the firmware file as the screen holds it now; asked at the
    // check and again at each try, for the file may be chosen anew between
    // two tries.
    std::function<std::string()> FileName;
    // Scans, lets the technician choose a module in boot mode and answers the
    // chosen port's name; empty (or "Not Found") when none was chosen.
    std::function<std::string()> ChoosePort;
    // A message with OK, or with OK and Cancel (the retry question).
    std::function<ui::MessageAnswer(const std::string& text, ui::MessageButtons buttons)> ShowMessage;
    // The start control: disabled for the whole run, enabled at its end.
    std::function<void(bool enabled)> EnableStart;
    // Told at the start of each transfer's blocks and at each acknowledged
    // block; may be empty.
    XmodemProgressHook Progress;
};

// How a run ended, each with its own message.
enum class UpdateEnd {
    NoFile,          // "Binary file does not exist!"
    NoPort,          // "Cant find device in boot mode"
    FileUnreadable,  // "Error when reading binary file!"
    Abandoned,       // the download failed and the retry was declined
    Programmed,      // "Update completed succesfully"
};

struct UpdateOutcome {
    UpdateEnd End = UpdateEnd::NoFile;
    int Tries = 0;
    int32_t FileSize = 0;  // as read for the last try
    int32_t Result = 0;    // of the last XmodemTransmit that returned
    std::string Report;    // what the module sent in the second behind the transfer
    // The failure of the last attempt to open the port, if it failed.
    std::optional<PortError> OpenFailure;
    // The first port operation that failed and was skipped.
    std::optional<PortError> PortFailure;
    // After a successful download with the production flag.
    std::optional<ProductionRecord> Record;
};

class UpdateRun {
public:
    // The waits of a run.
    static constexpr double kAfterOpeningMs = 500;
    static constexpr double kAfterBootMs = 500;
    static constexpr double kBeforeReportMs = 1000;

    UpdateRun(SerialPort& comPort, StatusText& status, UpdateHooks hooks);

    // One press of the start control. The production record goes into
    // iniPath (sniffer.ini).
    UpdateOutcome Run(bool production, const std::string& iniPath);

private:
    UpdateEnd Steps(bool production, const std::string& iniPath);
    void Open(const std::function<void()>& opening);
    void Try();
    bool OfferRetry();
    void Finish(bool production, const std::string& iniPath);
    void ClosePort();
    void Say(const std::string& text);
    template <class Step>
    void Skip(Step&& step);

    SerialPort& port_;
    StatusText& status_;
    UpdateHooks hooks_;
    UpdateOutcome outcome_;
    std::string file_;
};

// The file test of a run: a regular file (a link to one counts) whose name
// does not begin with a dot; a directory, a device or a hidden file fails it.
bool IsNormalFile(const std::string& path);

}  // namespace sb

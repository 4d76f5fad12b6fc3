#pragma once
#include <map>
#include <string>

// What the module says about itself and how it takes firmware: read from a
// profile file of KEY = VALUE lines (the format is described at the top of
// data/SampleModule.profile and in --help).
namespace sb::module {

enum class XmodemCheck { Crc, Checksum };

struct ModuleProfile {
    // Answers that stand as they are, by command word: GETSN, GETVER, GETNAME,
    // GETPDATE, GETVIN, GETAPPNAME, GETAPPVER, GETHWVER, GETAPPINFO and any
    // other word a profile adds.
    std::map<std::string, std::string> FixedAnswers;
    std::string ConfigHex;              // the image GETAPPCFG starts with, upper-case hex
    std::string Uid;                    // GETUID, and what CLROTP must be given
    std::string ClearOtpAnswer = "OK";  // CLROTP with the right UID
    std::string CatalogFile;            // served by GETINFOFILE; empty: none
    XmodemCheck Xmodem = XmodemCheck::Crc;
    std::string ReportOk = "Flash OK\r\n";         // sent behind a transfer that ended well
    std::string ReportFailed = "Flash ERROR\r\n";  // and behind one that did not
    std::string RunAnswer = "RUN\r\n";             // said to RUN before the firmware starts
    std::string FirmwareOut;                       // where a received image is written; empty: nowhere
    std::string UsbSerial;                         // the serial number in both USB identities
    std::string ProductId = "1742";                // USB product id of the running firmware
    std::string Description = "ServiceBay virtual module";
};

// Paths in the file are taken relative to the file's folder. A line that
// cannot be read throws std::runtime_error naming the file and the line.
ModuleProfile LoadProfile(const std::string& path);

// The module without a profile file: an identity, no catalog, no image.
ModuleProfile BuiltInProfile();

}  // namespace sb::module

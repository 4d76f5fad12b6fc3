#pragma once
#include <string>
#include <vector>

#include "support/SystemView.h"

// udev rule files as the doctor reads them: which of them are installed, and
// whether a line of one matches a USB identity.
namespace sb::support {

struct RuleFile {
    std::string Path;
    std::string Text;
};

// The rule files in udev's folders (/etc, /run, /usr/lib, /lib), by name
// order within a folder.
std::vector<RuleFile> InstalledRules(const SystemView& system);

struct UsbIdentity {
    std::string Vendor;   // lower-case hex, four digits: "0483"
    std::string Product;  // "5740"
    const char* Name;     // "boot loader"
};

// The module's two faces; the running one stands for its whole family 17xx.
inline const UsbIdentity kRunningUsb{"c252", "1700", "running firmware"};
inline const UsbIdentity kBootUsb{"0483", "5740", "boot loader"};

// Whether the device is one of the module's faces, and which.
const UsbIdentity* ModuleIdentity(const SerialDevice& device);

// The first line of the text that matches the identity by its vendor (and
// by its product where the line names one), through ATTRS{idVendor},
// ATTRS{idProduct}, ENV{ID_VENDOR_ID}, ENV{ID_MODEL_ID} or ENV{PRODUCT};
// 0 when none does. Comments do not count.
int MatchingLine(const std::string& text, const std::string& vendor, const std::string& product);

}  // namespace sb::support

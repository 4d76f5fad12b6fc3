#pragma once
#include <string>

// The file chooser's remembered place, section FRMLOAD of sniffer.ini:
//
//   [FRMLOAD]   DIR    the directory list's path
//               DRIVE  the drive list's drive: on this platform the mount
//                      point that holds the directory ("/" or "/media/usb")
//               PATH   the file list's path
namespace sb {

inline constexpr const char* kChooserSection = "FRMLOAD";
inline constexpr const char* kChooserDirKey = "DIR";
inline constexpr const char* kChooserDriveKey = "DRIVE";
inline constexpr const char* kChooserPathKey = "PATH";

struct ChooserPlace {
    std::string Dir;
    std::string Drive;
    std::string Path;
};

// A key that is missing takes fallback (the program's directory).
ChooserPlace ReadChooserPlace(const std::string& iniPath, const std::string& fallback);

// DIR, DRIVE and PATH in this order, in one replacement of the file.
bool WriteChooserPlace(const ChooserPlace& place, const std::string& iniPath);

}  // namespace sb

#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "config/Types.h"
#include "configfiles/UtcTime.h"

// A module's configuration as a self-describing document: who answered,
// the catalog exactly as the module delivered it, and the image. Everything
// needed to decode it again travels with it, so a file decodes on any
// machine with no module attached.
namespace sb {

inline constexpr const char* kConfigFormat = "servicebay-configuration";
inline constexpr int kConfigVersion = 1;
inline constexpr const char* kConfigExtension = ".sbconf";

// The module's identity as it answered; empty where unknown (offline).
struct ModuleIdentity {
    std::string SN;
    std::string PVer;
    std::string PName;
    std::string PDate;
    std::string VIN;
    std::string FWName;
    std::string FWVer;
    std::string HWVer;

    bool operator==(const ModuleIdentity&) const = default;
};

ModuleIdentity IdentityOf(const DeviceInfo& device);
void ApplyIdentity(const ModuleIdentity& identity, DeviceInfo& device);

// One option as the tree shows it, for people and diff tools reading the
// file; the reader takes the image and the catalog as the truth instead.
struct ShownOption {
    int32_t Index = 0;
    std::string Name;
    std::string Value;  // raw value
    std::string Shown;
};

struct ConfigDocument {
    std::string Format = kConfigFormat;
    int Version = kConfigVersion;
    std::string SavedAt;  // UTC, ISO 8601
    std::string Program;  // name and version of the program that saved it
    ModuleIdentity Module;
    std::string InfoFile;  // the catalog document, byte for byte
    std::string Image;     // upper-case hex text
    std::string Id;        // the image's Id, 8 hex digits
    std::vector<ShownOption> Options;  // those the image's configuration shows
};

// The document of image under device's catalog (loaded from
// device.InfoFile) and identity, saved by this program at savedAt.
ConfigDocument MakeConfigDocument(const DeviceInfo& device, const std::string& image,
                                  TimePoint savedAt = std::chrono::system_clock::now());

}  // namespace sb

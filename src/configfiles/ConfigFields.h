#pragma once
#include <array>
#include <utility>

#include "configfiles/ConfigDocument.h"

// The member names of the configuration document, shared by its writer and
// its reader.
namespace sb::fields {

inline constexpr const char* kFormat = "format";
inline constexpr const char* kVersion = "version";
inline constexpr const char* kSavedAt = "saved_at";
inline constexpr const char* kProgram = "program";
inline constexpr const char* kModule = "module";
inline constexpr const char* kId = "id";
inline constexpr const char* kImage = "image";
inline constexpr const char* kOptions = "options";
inline constexpr const char* kCatalog = "catalog";

// Of each entry of the options.
inline constexpr const char* kIndex = "index";
inline constexpr const char* kName = "name";
inline constexpr const char* kValue = "value";
inline constexpr const char* kShown = "shown";

// The identity's fields under their names in the document, in the order of
// the module's answers.
inline constexpr std::array<std::pair<const char*, std::string ModuleIdentity::*>, 8> kModuleFields{{
    {"SN", &ModuleIdentity::SN},
    {"PVer", &ModuleIdentity::PVer},
    {"PName", &ModuleIdentity::PName},
    {"PDate", &ModuleIdentity::PDate},
    {"VIN", &ModuleIdentity::VIN},
    {"FWName", &ModuleIdentity::FWName},
    {"FWVer", &ModuleIdentity::FWVer},
    {"HWVer", &ModuleIdentity::HWVer},
}};

}  // namespace sb::fields

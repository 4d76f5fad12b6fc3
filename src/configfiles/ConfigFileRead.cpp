#include <algorithm>
#include <cctype>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "configfiles/ConfigFields.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/DocumentJson.h"
#include "configfiles/JsonBytes.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"
#include "helpers/ShortText.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

// Far beyond the largest catalog with its image (a module serves a few
// KB, 5,000 options are half a MB), and small enough that loading the
// catalog, at about fifteen bytes of memory a byte, stays within a few
// hundred MB.
constexpr int64_t kLongestFile = int64_t{16} << 20;

[[noreturn]] void Refuse(ConfigFault fault, const std::string& source, const std::string& what) {
    throw ConfigFileError(fault, source, what);
}

std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

// A value of the file in a message, as JSON, cut short when it is long.
std::string Shown(const Json& value) { return ShortText(value.dump(-1, ' ', true)); }

void CheckFormat(const Json& json, const std::string& source) {
    const auto format = json.is_object() ? json.find(fields::kFormat) : json.end();
    if (format == json.end() || !format->is_string())
        Refuse(ConfigFault::OtherFormat, source, "not a configuration file: it names no format");
    if (*format != kConfigFormat)
        Refuse(ConfigFault::OtherFormat, source,
               "not a configuration file: its format is " + Shown(*format) + ", not " + Quoted(kConfigFormat));
    const auto version = json.find(fields::kVersion);
    if (version == json.end())
        Refuse(ConfigFault::OtherVersion, source, "the file names no version of its format");
    if (*version != kConfigVersion)
        Refuse(ConfigFault::OtherVersion, source,
               "the file is of version " + Shown(*version) + "; this program reads version " +
                   std::to_string(kConfigVersion));
}

// within names the object in messages when it is not the document itself.
std::string TextField(const Json& object, const std::string& member, const std::string& source,
                      const std::string& within = "") {
    const std::string name = within.empty() ? member : within + "." + member;
    const auto field = object.find(member);
    if (field == object.end()) Refuse(ConfigFault::BadField, source, "the field " + Quoted(name) + " is missing");
    std::optional<std::string> bytes = BytesOfJson(*field);
    if (!bytes)
        Refuse(ConfigFault::BadField, source,
               "the field " + Quoted(name) + " is no text of bytes (characters U+0000 to U+00FF)");
    return *bytes;
}

ModuleIdentity ModuleField(const Json& json, const std::string& source) {
    const auto module = json.find(fields::kModule);
    if (module == json.end() || !module->is_object())
        Refuse(ConfigFault::BadField, source, "the field " + Quoted(fields::kModule) + " is missing or no object");
    ModuleIdentity identity;
    for (const auto& [name, field] : fields::kModuleFields)
        identity.*field = TextField(*module, name, source, fields::kModule);
    return identity;
}

// Upper-case hex text of whole bytes; the empty image fails on its length.
std::string ImageField(const Json& json, const std::string& source) {
    std::string image = TextField(json, fields::kImage, source);
    if (!image.empty() && !IsHexText(image))
        Refuse(ConfigFault::NotHex, source, "the image is no hex text");
    if (image.size() % 2 != 0)
        Refuse(ConfigFault::NotHex, source,
               "the image is no whole number of bytes: " + std::to_string(image.size()) + " hex digits");
    std::transform(image.begin(), image.end(), image.begin(), [](unsigned char c) { return std::toupper(c); });
    return image;
}

// The module record of a catalog and an image of hex digits: the catalog
// must load and the image must have its CfgLen.
DeviceInfo LoadChecked(const ModuleIdentity& identity, const std::string& infoFile, const std::string& imageHex,
                       const std::string& source) {
    DeviceInfo device;
    ApplyIdentity(identity, device);
    device.InfoFile = infoFile;
    std::string reason;
    bool loaded = false;
    try {
        loaded = LoadCatalog(device, reason);
    } catch (const OverflowError&) {
    }
    if (!loaded)
        Refuse(ConfigFault::CatalogRefused, source,
               "the catalog is refused" + (reason.empty() ? std::string() : ": " + reason));
    const size_t digits = 2 * static_cast<size_t>(device.Options.CfgLen);
    if (imageHex.size() != digits)
        Refuse(ConfigFault::WrongImageLength, source,
               "the image has " + std::to_string(imageHex.size()) + " hex digits; the catalog's configurations have " +
                   std::to_string(device.Options.CfgLen) + " bytes (" + std::to_string(digits) + " digits)");
    device.AppConfig = imageHex;
    device.CfgImage = HexToBytes(imageHex);
    return device;
}

}  // namespace

ConfigDocument ParseConfigDocument(const std::string& text, const std::string& source) {
    const Json json = ParseDocumentJson(text, source);
    CheckFormat(json, source);
    ConfigDocument document;
    document.SavedAt = TextField(json, fields::kSavedAt, source);
    document.Program = TextField(json, fields::kProgram, source);
    document.Module = ModuleField(json, source);
    document.Id = TextField(json, fields::kId, source);
    document.Image = ImageField(json, source);
    document.InfoFile = TextField(json, fields::kCatalog, source);
    return document;
}

LoadedConfig ReadConfigText(const std::string& text, const std::string& source) {
    LoadedConfig config;
    config.Document = ParseConfigDocument(text, source);
    const ConfigDocument& document = config.Document;
    config.Device = LoadChecked(document.Module, document.InfoFile, document.Image, source);
    const std::string id = ImageId(config.Device.CfgImage);
    if (document.Id != id)
        Refuse(ConfigFault::BadField, source,
               "the field " + Quoted(fields::kId) + " holds " + Quoted(ShortText(document.Id)) +
                   ", but the image's Id is " + id);
    return config;
}

LoadedConfig ReadConfigFile(const std::string& path) {
    std::string text;
    switch (ReadWholeFile(path, text, kLongestFile)) {
        case WholeFileRead::Complete: break;
        case WholeFileRead::Missing: Refuse(ConfigFault::Unreadable, path, "no such file");
        case WholeFileRead::NotAFile: Refuse(ConfigFault::Unreadable, path, "not a file");
        case WholeFileRead::TooLarge: Refuse(ConfigFault::Unreadable, path, "too large for a configuration file");
        default: Refuse(ConfigFault::Unreadable, path, "the file cannot be read");
    }
    return ReadConfigText(text, path);
}

LoadedConfig LoadModuleConfig(const DeviceInfo& read, const std::string& source, TimePoint savedAt) {
    LoadedConfig config;
    config.Device = LoadChecked(IdentityOf(read), read.InfoFile, NormalizeHex(read.AppConfig), source);
    config.Device.AppInfo = read.AppInfo;
    config.Document = MakeConfigDocument(config.Device, config.Device.CfgImage, savedAt);
    return config;
}

}  // namespace sb

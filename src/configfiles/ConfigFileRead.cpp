#include <algorithm>
#include <cctype>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "configfiles/ConfigFields.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/JsonBytes.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

// Far beyond the largest catalog with its image, small enough to parse.
constexpr int64_t kLongestFile = int64_t{64} << 20;

[[noreturn]] void Refuse(ConfigFault fault, const std::string& source, const std::string& what) {
    throw ConfigFileError(fault, source, what);
}

std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

// The parser's words without its "[json.exception...] " tag.
std::string ParserWords(const Json::parse_error& e) {
    const std::string what = e.what();
    const size_t tag = what.find("] ");
    return tag == std::string::npos ? what : what.substr(tag + 2);
}

Json ParsedJson(const std::string& text, const std::string& source) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        Refuse(ConfigFault::NotJson, source, "the file is empty");
    // The list of options is for people; dropping it while parsing saves
    // building thousands of values that nobody reads.
    const auto dropOptions = [](int depth, Json::parse_event_t event, Json& parsed) {
        return !(depth == 1 && event == Json::parse_event_t::key && parsed == fields::kOptions);
    };
    try {
        return Json::parse(text, dropOptions);
    } catch (const Json::parse_error& e) {
        // The parser counts the end of the input as one more character read.
        if (e.byte > text.size())
            Refuse(ConfigFault::CutShort, source, "the file is cut short: it ends inside the document");
        Refuse(ConfigFault::NotJson, source, "not a JSON document: " + ParserWords(e));
    }
}

void CheckFormat(const Json& json, const std::string& source) {
    const auto format = json.is_object() ? json.find(fields::kFormat) : json.end();
    if (format == json.end() || !format->is_string())
        Refuse(ConfigFault::OtherFormat, source, "not a configuration file: it names no format");
    if (*format != kConfigFormat)
        Refuse(ConfigFault::OtherFormat, source,
               "not a configuration file: its format is " + format->dump(-1, ' ', true) + ", not " + Quoted(kConfigFormat));
    const auto version = json.find(fields::kVersion);
    if (version == json.end())
        Refuse(ConfigFault::OtherVersion, source, "the file names no version of its format");
    if (*version != kConfigVersion)
        Refuse(ConfigFault::OtherVersion, source,
               "the file is of version " + version->dump(-1, ' ', true) + "; this program reads version " +
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
    const Json json = ParsedJson(text, source);
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

LoadedConfig ReadConfigFile(const std::string& path) {
    std::string text;
    switch (ReadWholeFile(path, text, kLongestFile)) {
        case WholeFileRead::Complete: break;
        case WholeFileRead::Missing: Refuse(ConfigFault::Unreadable, path, "no such file");
        case WholeFileRead::NotAFile: Refuse(ConfigFault::Unreadable, path, "not a file");
        case WholeFileRead::TooLarge: Refuse(ConfigFault::Unreadable, path, "too large for a configuration file");
        default: Refuse(ConfigFault::Unreadable, path, "the file cannot be read");
    }
    LoadedConfig config;
    config.Document = ParseConfigDocument(text, path);
    const ConfigDocument& document = config.Document;
    config.Device = LoadChecked(document.Module, document.InfoFile, document.Image, path);
    const std::string id = ImageId(config.Device.CfgImage);
    if (document.Id != id)
        Refuse(ConfigFault::BadField, path,
               "the field " + Quoted(fields::kId) + " holds " + Quoted(document.Id) + ", but the image's Id is " + id);
    return config;
}

LoadedConfig LoadModuleConfig(const DeviceInfo& read, const std::string& source, TimePoint savedAt) {
    LoadedConfig config;
    config.Device = LoadChecked(IdentityOf(read), read.InfoFile, NormalizeHex(read.AppConfig), source);
    config.Device.AppInfo = read.AppInfo;
    config.Document = MakeConfigDocument(config.Device, config.Device.CfgImage, savedAt);
    return config;
}

}  // namespace sb

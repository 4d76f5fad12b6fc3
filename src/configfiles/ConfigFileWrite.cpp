#include <cerrno>
#include <cstring>

#include "configfiles/ConfigFields.h"
#include "configfiles/ConfigFile.h"
#include "configfiles/JsonBytes.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

Json ModuleJson(const ModuleIdentity& identity) {
    Json module = Json::object();
    for (const auto& [name, field] : fields::kModuleFields) module[name] = JsonBytes(identity.*field);
    return module;
}

Json OptionsJson(const std::vector<ShownOption>& options) {
    Json list = Json::array();
    for (const ShownOption& option : options)
        list.push_back({{fields::kIndex, option.Index},
                        {fields::kName, JsonBytes(option.Name)},
                        {fields::kValue, JsonBytes(option.Value)},
                        {fields::kShown, JsonBytes(option.Shown)}});
    return list;
}

}  // namespace

std::string ConfigDocumentText(const ConfigDocument& document) {
    // The catalog stands last: it is long, and people read the rest.
    Json json = {{fields::kFormat, document.Format},
                 {fields::kVersion, document.Version},
                 {fields::kSavedAt, JsonBytes(document.SavedAt)},
                 {fields::kProgram, JsonBytes(document.Program)},
                 {fields::kModule, ModuleJson(document.Module)},
                 {fields::kId, JsonBytes(document.Id)},
                 {fields::kImage, JsonBytes(document.Image)},
                 {fields::kOptions, OptionsJson(document.Options)},
                 {fields::kCatalog, JsonBytes(document.InfoFile)}};
    return json.dump(2) + "\n";
}

void WriteConfigFile(const std::string& path, const ConfigDocument& document) {
    const std::string text = ConfigDocumentText(document);
    errno = 0;
    if (ReplaceFileAtomically(path, text)) return;
    const int error = errno;
    throw ConfigFileError(ConfigFault::CannotWrite, path,
                          std::string("cannot write the file") + (error ? std::string(": ") + std::strerror(error) : ""));
}

}  // namespace sb

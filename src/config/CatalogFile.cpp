#include "config/CatalogFile.h"

#include <array>

#include "config/CatalogDocument.h"

namespace sb {
namespace {

constexpr std::array<const char*, 3> kConfigurations = {"CFG", "PDF", "C"};

// The attribute's text is compared as written: "00" is not "0".
pugi::xml_node ModuleConfiguration(pugi::xml_node top) {
    pugi::xml_node found;
    ForEachElement(top, kConfigurations, [&](pugi::xml_node element) {
        if (AttributeText(element, "I") != "0") return true;
        found = element;
        return false;
    });
    return found;
}

}  // namespace

CatalogFile LoadCatalogFile(const std::string& path) {
    CatalogFile file;
    CatalogDocument document;
    if (!document.LoadFile(path)) {
        file.Reason = document.Reason();
        return file;
    }
    file.Loaded = true;
    if (const pugi::xml_node element = ModuleConfiguration(document.Top())) file.AppConfig = ElementText(element);
    file.Xml = document.Xml();
    return file;
}

}  // namespace sb

#pragma once
#include <string>

namespace sb {

// What the offline run takes from a catalog file (ConfigOptions.xml): the
// document as text, which then goes through LoadCatalog like a module's
// answer, and the module's configuration, the text of the first
// /CFG/PDF/C whose attribute I is written exactly "0".
struct CatalogFile {
    bool Loaded = false;
    std::string Reason;     // the parser's reason when the file could not be loaded
    std::string Xml;        // the whole document as text
    std::string AppConfig;  // hex text as the module would report it; empty when no C has I "0"
};

CatalogFile LoadCatalogFile(const std::string& path);

}  // namespace sb

#pragma once
#include <string>

#include "config/Types.h"
#include "configfiles/ConfigDocument.h"
#include "configfiles/ConfigFileError.h"

// Configuration files (*.sbconf): the document as JSON, written atomically
// and read back with every check a file from elsewhere needs. All failures
// are ConfigFileError, naming the file and what is wrong.
namespace sb {

std::string ConfigDocumentText(const ConfigDocument& document);

// Replaces the file at path in one step: a crash leaves the old file or the
// new one, never half of it.
void WriteConfigFile(const std::string& path, const ConfigDocument& document);

// The document in the text, checked for its form alone: JSON, of this
// format and version, with every field of its kind, the texts bytes
// (U+0000 to U+00FF), the image hex text of whole bytes. source names the
// text in messages. Its list of options is not read.
ConfigDocument ParseConfigDocument(const std::string& text, const std::string& source);

// A configuration ready to work on: the document, and the module record it
// stands for, with the identity, the catalog loaded from InfoFile, AppConfig
// the image's hex text and CfgImage the image, as after a read of the module.
struct LoadedConfig {
    ConfigDocument Document;
    DeviceInfo Device;
};

// Parses the text and checks its content too: a catalog that LoadCatalog
// takes, an image of its CfgLen and an Id that is the image's.
LoadedConfig ReadConfigText(const std::string& text, const std::string& source);

// The same for the file at path, of at most 16 MiB.
LoadedConfig ReadConfigFile(const std::string& path);

// The same for a module's answers (as the read of the module leaves them
// in read): the catalog must load and AppConfig, normalized, must hold
// CfgLen bytes. The document is the one to save of it, at savedAt.
LoadedConfig LoadModuleConfig(const DeviceInfo& read, const std::string& source,
                              TimePoint savedAt = std::chrono::system_clock::now());

}  // namespace sb

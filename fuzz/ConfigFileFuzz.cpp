// The configuration-file reader on any text: nothing may crash, hang or
// grow without bound; a refusal is a ConfigFileError whose message names
// the source and stays short whatever the text holds; a file that is
// taken is saved again and read back to the same image, module and
// catalog.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "configfiles/ConfigFile.h"

namespace {

constexpr const char* kSource = "fuzz.sbconf";
constexpr size_t kLongestMessage = 1024;  // the source, what is wrong and a few texts cut short

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckSavedAgain(const sb::LoadedConfig& config) {
    const sb::ConfigDocument document = sb::MakeConfigDocument(config.Device, config.Device.CfgImage);
    const sb::LoadedConfig again = sb::ReadConfigText(sb::ConfigDocumentText(document), kSource);
    Require(again.Device.CfgImage == config.Device.CfgImage && again.Document.Module == config.Document.Module &&
            again.Document.InfoFile == config.Document.InfoFile);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    sb::LoadedConfig config;
    try {
        config = sb::ReadConfigText(std::string(reinterpret_cast<const char*>(data), size), kSource);
    } catch (const sb::ConfigFileError& e) {
        const std::string what = e.what();
        Require(what.rfind(std::string(kSource) + ": ", 0) == 0 && what.size() < kLongestMessage);
        return 0;
    }
    CheckSavedAgain(config);
    return 0;
}

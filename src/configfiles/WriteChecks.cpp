#include "configfiles/WriteChecks.h"

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "helpers/HexText.h"

namespace sb {

FitCheck CheckFit(const DeviceInfo& module, const std::string& image) {
    const auto cfgLen = static_cast<size_t>(module.Options.CfgLen);
    if (image.size() != cfgLen)
        return {Fit::WrongLength, "The configuration has " + std::to_string(image.size()) +
                                      " bytes; this module's configurations have " + std::to_string(cfgLen)};
    const std::string id = ImageId(image);
    if (FindPredefCfgById(module, id) < 0)
        return {Fit::UnknownId, "This module's catalog knows no configuration with the Id " + id};
    return {};
}

VerifyResult VerifyWrite(const DeviceInfo& module, const std::string& sent, const std::string& appConfigAnswer) {
    VerifyResult result;
    const std::string hex = NormalizeHex(appConfigAnswer);
    if (hex.size() != 2 * static_cast<size_t>(module.Options.CfgLen)) return result;
    const std::string held = HexToBytes(hex);
    result.ReadBack = true;
    result.Holds = held == sent;
    result.Differences = CompareConfigurations(module, sent, module, held);
    return result;
}

std::string VerifyMessage(const VerifyResult& result, std::string (*lineForm)(std::string_view)) {
    if (result.Holds) return {};
    if (!result.ReadBack) return "The module's configuration could not be read back after the write";
    std::string message = "The module holds another configuration than the one written";
    if (result.Differences.Options.empty()) return message + ", in bits that no option covers";
    message += ":";
    for (const std::string& line : ComparisonLines(result.Differences, "written", "read back"))
        message += "\n" + (lineForm ? lineForm(line) : line);
    return message;
}

}  // namespace sb

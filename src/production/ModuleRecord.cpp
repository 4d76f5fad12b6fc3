#include "production/ModuleRecord.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <random>

#include "config/Latin1Text.h"

namespace sb {
namespace {

nlohmann::json Text(const std::optional<std::string>& text) {
    return text ? nlohmann::json(Latin1ToUtf8(*text)) : nlohmann::json(nullptr);
}

template <class T>
nlohmann::json Number(const std::optional<T>& number) {
    return number ? nlohmann::json(*number) : nlohmann::json(nullptr);
}

}  // namespace

const char* ResultName(ModuleResult result) {
    switch (result) {
        case ModuleResult::Started: return "started";
        case ModuleResult::Programmed: return "programmed";
        case ModuleResult::NotConfirmed: return "not confirmed";
        case ModuleResult::NotDownloaded: return "not downloaded";
        case ModuleResult::NoBoot: return "no boot";
        case ModuleResult::FirmwareRefused: return "firmware refused";
        case ModuleResult::Hung: return "hung";
        case ModuleResult::Crashed: return "crashed";
        case ModuleResult::Interrupted: return "interrupted";
        case ModuleResult::FirmwareChanged: return "firmware changed";
        case ModuleResult::Refused: return "refused";
        case ModuleResult::StepFailed: return "step failed";
    }
    return "";
}

RunIdentity NewRunIdentity(std::string station, std::string program) {
    char host[256] = {};
    ::gethostname(host, sizeof host - 1);
    std::random_device entropy;
    char id[17];
    std::snprintf(id, sizeof id, "%08x%08x", entropy(), entropy());
    return {id, host, station.empty() ? host : std::move(station), std::move(program)};
}

bool Succeeded(const ModuleRecord& record) { return record.Result == ModuleResult::Programmed; }

std::string UtcTimeText(int64_t millisecondsSinceEpoch) {
    const std::time_t seconds = static_cast<std::time_t>(millisecondsSinceEpoch / 1000);
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    char text[40];
    const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(millisecondsSinceEpoch % 1000));
    return text;
}

std::string UtcNowText() {
    using namespace std::chrono;
    return UtcTimeText(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

std::string LogLine(const ModuleRecord& r) {
    // Keys in this order, so that a person reading the file finds the module first.
    nlohmann::ordered_json line;
    // A line of the station itself has no module.
    const bool module = !r.Port.empty();
    line["time"] = r.Time;
    line["port"] = module ? nlohmann::json(r.Port) : nlohmann::json(nullptr);
    line["usb_serial"] = module ? nlohmann::json(Latin1ToUtf8(r.UsbSerial)) : nlohmann::json(nullptr);
    line["attempt"] = module ? nlohmann::json(r.Attempt) : nlohmann::json(nullptr);
    line["SN"] = Text(r.SN);
    line["PName"] = Text(r.PName);
    line["PVer"] = Text(r.PVer);
    line["firmware_file"] = r.FirmwareFile;
    line["firmware_size"] = r.FirmwareSize;
    line["firmware_sha256"] = r.FirmwareSha256;
    line["result"] = ResultName(r.Result);
    line["detail"] = Latin1ToUtf8(r.Detail);
    line["report"] = Latin1ToUtf8(r.Report);
    line["xmodem_result"] = Number(r.XmodemResult);
    line["bytes_programmed"] = r.BytesProgrammed;
    line["bytes_acknowledged"] = Number(r.BytesAcknowledged);
    line["seconds"] = std::round(r.Seconds * 1000) / 1000;
    line["record_number"] = Number(r.RecordNumber);
    line["program"] = r.Run.Program;
    line["run_id"] = r.Run.Id;
    line["host"] = r.Run.Host;
    line["station"] = r.Run.Station;
    // Lines without a recipe stay as they were.
    if (!r.RecipeFile.empty()) {
        line["step"] = Text(r.Step);
        line["recipe"] = r.RecipeFile;
        line["recipe_sha256"] = r.RecipeSha256;
        line["configuration_sha256"] = Text(r.ConfigurationSha256);
    }
    // A file name need not be UTF-8; it must not cost the line.
    return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

}  // namespace sb

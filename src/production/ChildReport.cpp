#include "production/ChildReport.h"

#include <string.h>

#include <nlohmann/json.hpp>

#include "config/Latin1Text.h"
#include "production/Recipe.h"

namespace sb {
namespace {

using nlohmann::json;

std::optional<json> ParseObject(const std::string& line) {
    json value = json::parse(line, nullptr, false);
    if (value.is_discarded() || !value.is_object()) return std::nullopt;
    return value;
}

template <class T>
T Field(const json& object, const char* key, T otherwise) {
    const auto found = object.find(key);
    if (found == object.end()) return otherwise;
    try {
        return found->get<T>();
    } catch (const json::exception&) {
        return otherwise;
    }
}

// The module's texts travel one character a byte; here they are bytes again.
std::optional<std::string> TextField(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) return std::nullopt;
    return Utf8ToLatin1(found->get<std::string>());
}

// The last line of standard error that holds anything: the program's own
// word on why it failed.
std::string LastLine(const std::string& text) {
    size_t end = text.find_last_not_of("\r\n \t");
    if (end == std::string::npos) return {};
    const size_t start = text.find_last_of('\n', end);
    return text.substr(start == std::string::npos ? 0 : start + 1, end + 1 - (start == std::string::npos ? 0 : start + 1));
}

std::string Seconds(double seconds) { return std::to_string(static_cast<long>(seconds)) + " s"; }

// The ends that are not the program's own: stopped, killed, silent.
bool TakeForcedEnd(ModuleRecord& record, const ChildEnd& end) {
    switch (end.Kind) {
        case ChildEndKind::Silent:
            record.Result = ModuleResult::Hung;
            record.Detail = "said nothing for too long and was stopped after " + Seconds(end.Seconds);
            return true;
        case ChildEndKind::Overdue:
            record.Result = ModuleResult::Hung;
            record.Detail = "was still at work after " + Seconds(end.Seconds) + " and was stopped";
            return true;
        case ChildEndKind::Stopped:
            record.Result = ModuleResult::Interrupted;
            record.Detail = "stopped before its end";
            return true;
        case ChildEndKind::Signalled:
            record.Result = ModuleResult::Crashed;
            record.Detail = std::string("died: ") + ::strsignal(end.Signal);
            return true;
        case ChildEndKind::Exited: break;
    }
    return false;
}

ModuleResult ResultOfEnd(const FlashResult& result) {
    if (result.End == "programmed")
        return result.RecordEnd.empty() || result.RecordWritten ? ModuleResult::Programmed : ModuleResult::NotConfirmed;
    if (result.End == "no file" || result.End == "file unreadable") return ModuleResult::FirmwareRefused;
    return ModuleResult::NotDownloaded;
}

// A step of a recipe failed. A download that failed ends as one without a
// recipe does; the others have results of their own.
void TakeStepEnd(ModuleRecord& record, const FlashResult& result) {
    record.Step = result.Step;
    const std::optional<RecipeStep> step = StepOfName(*result.Step);
    if (!result.Detail.empty()) record.Detail = result.Detail;
    if (step == RecipeStep::Download) {
        if (record.Result == ModuleResult::Programmed) record.Result = ModuleResult::StepFailed;
        return;
    }
    record.Result = step == RecipeStep::Identity ? ModuleResult::Refused
                    : step == RecipeStep::Record ? ModuleResult::NotConfirmed
                                                 : ModuleResult::StepFailed;
}

}  // namespace

std::string ProgressLine(const XmodemProgress& progress) {
    const json line = {{"progress", {{"blocks", progress.Blocks}, {"bytes", progress.Bytes}, {"total", progress.Total}}}};
    return line.dump() + '\n';
}

std::optional<XmodemProgress> ParseProgressLine(const std::string& line) {
    const auto object = ParseObject(line);
    if (!object || !object->contains("progress") || !(*object)["progress"].is_object()) return std::nullopt;
    const json& p = (*object)["progress"];
    XmodemProgress progress;
    progress.Blocks = Field<int32_t>(p, "blocks", 0);
    progress.Bytes = Field<int32_t>(p, "bytes", 0);
    progress.Total = Field<int32_t>(p, "total", 0);
    return progress;
}

std::string StepLine(RecipeStep step) { return json{{"step_begins", StepName(step)}}.dump() + '\n'; }

std::optional<RecipeStep> ParseStepLine(const std::string& line) {
    const auto object = ParseObject(line);
    const auto name = object ? TextField(*object, "step_begins") : std::nullopt;
    return name ? StepOfName(*name) : std::nullopt;
}

std::optional<FlashResult> ParseFlashResult(const std::string& line) {
    const auto object = ParseObject(line);
    if (!object) return std::nullopt;
    const auto end = TextField(*object, "end");
    if (!end) return std::nullopt;
    FlashResult result;
    result.End = *end;
    result.Result = Field<int32_t>(*object, "result", 0);
    result.Programmed = Field<int32_t>(*object, "programmed", 0);
    result.Tries = Field<int>(*object, "tries", 0);
    result.Report = TextField(*object, "report").value_or("");
    const auto record = object->find("record");
    if (record != object->end() && record->is_object()) {
        result.SN = TextField(*record, "SN");
        result.Name = TextField(*record, "Name");
        result.Ver = TextField(*record, "Ver");
        result.RecordWritten = Field<bool>(*record, "written", false);
        if (result.RecordWritten) result.RecordNumber = Field<int32_t>(*record, "number", 0);
        result.RecordEnd = TextField(*record, "end").value_or("");
    }
    // A recipe's run reads the identity itself, before any record.
    if (const auto sn = TextField(*object, "SN")) result.SN = sn;
    if (const auto name = TextField(*object, "PName")) result.Name = name;
    result.Step = TextField(*object, "step");
    result.Detail = TextField(*object, "detail").value_or("");
    return result;
}

void TakeFlashEnd(ModuleRecord& record, const ChildEnd& end, const std::optional<FlashResult>& result,
                  const std::optional<XmodemProgress>& lastProgress) {
    if (!TakeForcedEnd(record, end) && !result) {
        record.Result = ModuleResult::Crashed;
        record.Detail = "ended without a result (exit status " + std::to_string(end.ExitStatus) + ")";
    }
    if (!result || end.Kind != ChildEndKind::Exited) {
        if (const std::string said = LastLine(end.ErrorTail); !said.empty()) record.Detail += ": " + said;
        if (lastProgress)
            record.Detail += "; " + std::to_string(lastProgress->Bytes) + " of " + std::to_string(lastProgress->Total) +
                             " bytes were acknowledged";
        return;
    }
    record.Result = ResultOfEnd(*result);
    if (result->Tries > 0) record.XmodemResult = result->Result;
    record.BytesProgrammed = result->Programmed;
    record.Report = result->Report;
    record.SN = result->SN;
    record.PName = result->Name;
    record.PVer = result->Ver;
    record.RecordNumber = result->RecordNumber;
    if (record.Result == ModuleResult::NotConfirmed) record.Detail = "no production record: " + result->RecordEnd;
    else if (record.Result != ModuleResult::Programmed) record.Detail = LastLine(end.ErrorTail);
    if (record.Detail.empty() && record.Result != ModuleResult::Programmed)
        record.Detail = result->End + ", XMODEM result " + std::to_string(result->Result);
    if (result->Step) TakeStepEnd(record, *result);
}

bool TakeBootEnd(ModuleRecord& record, const ChildEnd& end) {
    if (end.Kind == ChildEndKind::Exited && end.ExitStatus == 0) return true;
    if (!TakeForcedEnd(record, end)) record.Result = ModuleResult::NoBoot;
    const std::string said = LastLine(end.ErrorTail);
    if (!said.empty()) record.Detail += (record.Detail.empty() ? "" : ": ") + said;
    return false;
}

}  // namespace sb

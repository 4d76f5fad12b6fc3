#pragma once
#include <optional>
#include <string>

#include "production/ChildSupervisor.h"
#include "production/ModuleRecord.h"
#include "production/Recipe.h"
#include "update/Xmodem.h"

// What a download program tells the production line, one JSON object a line
// on its standard output: a progress line at each acknowledged block, and at
// its end the result of its update run as `servicebay-cli flash --json`
// prints it. Lines of any other shape are passed over.
namespace sb {

// {"progress": {"blocks": 3, "bytes": 3072, "total": 10000}}
std::string ProgressLine(const XmodemProgress& progress);
std::optional<XmodemProgress> ParseProgressLine(const std::string& line);

// Under a recipe, as each step begins: {"step_begins": "configure"}
std::string StepLine(RecipeStep step);
std::optional<RecipeStep> ParseStepLine(const std::string& line);

struct FlashResult {
    std::string End;  // "programmed", "not downloaded", "no port", "no file", "file unreadable"
    int32_t Result = 0;      // of the last XMODEM transfer
    int32_t Programmed = 0;  // bytes, as the update run reports them
    int Tries = 0;
    std::string Report;  // what the module sent behind the transfer
    // From the production record, where one was attempted.
    std::optional<std::string> SN, Name, Ver;
    bool RecordWritten = false;
    std::optional<int32_t> RecordNumber;
    std::string RecordEnd;  // why no record was written
    // Under a recipe: the step that failed, and why.
    std::optional<std::string> Step;
    std::string Detail;
};
std::optional<FlashResult> ParseFlashResult(const std::string& line);

// How a download ended, into the record: by the program's end and its
// result line, and by the progress it had made when it ended without one.
void TakeFlashEnd(ModuleRecord& record, const ChildEnd& end, const std::optional<FlashResult>& result,
                  const std::optional<XmodemProgress>& lastProgress);

// How a switch into the boot loader ended. True when it succeeded: then there
// is nothing to record.
bool TakeBootEnd(ModuleRecord& record, const ChildEnd& end);

}  // namespace sb

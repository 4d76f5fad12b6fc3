#pragma once
#include <string>
#include <vector>

#include "production/ModuleRecord.h"

// The table at the end of a production run: one row per module with the
// result of its last attempt, and the modules that failed named again below.
namespace sb {

struct SummaryRow {
    ModuleRecord Last;  // the module's last attempt
    int Attempts = 0;
};

struct Summary {
    std::vector<SummaryRow> Rows;  // in the order the modules first ended
    bool AllSucceeded() const;     // also true without any module
    std::vector<const SummaryRow*> Failed() const;
    std::string Table() const;
};

Summary Summarize(const std::vector<ModuleRecord>& records);

}  // namespace sb

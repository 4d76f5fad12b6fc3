#pragma once
#include <string>
#include <vector>

#include "production/ModuleRecord.h"

// The table at the end of a production run: one row per module (as the line
// numbers them, never by serial) with the result of its last attempt and its
// number of attempts, and the modules that failed named again below.
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

// The ends of attempts, as ProductionLine::Records holds them.
Summary Summarize(const std::vector<ModuleRecord>& records);

// A module as the operator finds it: "SB0001 (ttyACM3)", or the port alone.
std::string ModuleName(const std::string& port, const std::string& usbSerial);

}  // namespace sb

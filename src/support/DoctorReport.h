#pragma once
#include <string>
#include <vector>

#include "configfiles/JsonBytes.h"
#include "support/Doctor.h"

// The doctor's findings as people and scripts read them, the same on the
// command line, in the window and in a support bundle.
namespace sb::support {

// One finding a line, "ok" or "PROBLEM" before it, the fix indented below a
// problem, and a last line that counts the problems.
std::string FindingsText(const std::vector<Finding>& findings);

// {"problems": n, "findings": [{"check", "problem", "what", "fix"}...]}
Json FindingsJson(const std::vector<Finding>& findings);

// The files and folders the programs write: the module registry, the
// configuration history and sniffer.ini.
std::vector<std::string> ProgramFiles();

}  // namespace sb::support

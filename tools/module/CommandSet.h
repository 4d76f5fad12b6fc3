#pragma once
#include <string>

#include "Faults.h"
#include "Profile.h"

namespace sb::module {

// The boot loader's framed commands: one command line in, the answer text
// out (without echo and prompt). It keeps the configuration image that
// SETAPPCFG writes and GETAPPCFG reads.
class CommandSet {
public:
    CommandSet(const ModuleProfile& profile, const AnswerFaults& faults);

    // The line without its CR. Unknown commands, and known ones with an
    // argument they do not take, answer "Error!".
    std::string Answer(const std::string& line);

    const std::string& ImageHex() const { return imageHex_; }

private:
    std::string Configuration() const;
    std::string Catalog() const;
    std::string ReportedUid() const;
    std::string SetConfiguration(const std::string& hex);
    std::string ClearOtp(const std::string& uid) const;

    const ModuleProfile& profile_;
    const AnswerFaults& faults_;
    std::string imageHex_;
};

}  // namespace sb::module

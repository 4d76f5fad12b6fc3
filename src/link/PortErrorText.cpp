#include "link/PortErrorText.h"

namespace sb {

std::string PortErrorText(const std::string& caption, const PortError& failure) {
    std::string second = failure.what();
    if (!failure.reason.empty()) second += ": " + failure.reason;
    return caption + "\r\n" + second + " (see README, \"" + kAccessSection + "\"; " + kDoctorPointer + ")";
}

}  // namespace sb

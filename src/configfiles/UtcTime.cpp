#include "configfiles/UtcTime.h"

#include <cstdio>
#include <ctime>

namespace sb {
namespace {

std::tm Utc(TimePoint when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(when));
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    return utc;
}

std::string Formatted(TimePoint when, const char* format) {
    const std::tm utc = Utc(when);
    char text[32];
    const size_t length = std::strftime(text, sizeof text, format, &utc);
    return std::string(text, length);
}

}  // namespace

std::string IsoUtcText(TimePoint when) { return Formatted(when, "%Y-%m-%dT%H:%M:%SZ"); }

std::string IsoUtcFileStamp(TimePoint when) {
    const auto second = std::chrono::floor<std::chrono::seconds>(when);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(when - second).count();
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%03dZ", static_cast<int>(ms));
    return Formatted(when, "%Y%m%dT%H%M%S") + fraction;
}

}  // namespace sb

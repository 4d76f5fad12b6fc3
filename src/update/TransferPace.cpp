#include "update/TransferPace.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace sb {

TransferPace PaceOf(const XmodemProgress& progress, double elapsedSeconds) {
    TransferPace pace;
    pace.Share = progress.Total > 0 ? std::min(1.0, static_cast<double>(progress.Bytes) / progress.Total) : 1.0;
    if (elapsedSeconds <= 0 || progress.Bytes <= 0) return pace;
    pace.BytesPerSecond = progress.Bytes / elapsedSeconds;
    pace.SecondsLeft = std::max(0, progress.Total - progress.Bytes) / pace.BytesPerSecond;
    return pace;
}

std::string RateText(double bytesPerSecond) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f kB/s", bytesPerSecond / 1000);
    return text;
}

std::string TimeLeftText(double seconds) {
    const long whole = std::lround(std::max(0.0, seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld left", whole / 60, whole % 60);
    return text;
}

}  // namespace sb

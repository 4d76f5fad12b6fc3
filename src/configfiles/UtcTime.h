#pragma once
#include <chrono>
#include <string>

namespace sb {

using TimePoint = std::chrono::system_clock::time_point;

// 2024-01-31T23:59:59Z: ISO 8601, UTC, to the second.
std::string IsoUtcText(TimePoint when);

// 20240131T235959.123Z: ISO 8601's basic form to the millisecond, without
// the colons that some file systems refuse; names sort by time.
std::string IsoUtcFileStamp(TimePoint when);

}  // namespace sb

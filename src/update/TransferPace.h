#pragma once
#include <string>

#include "update/Xmodem.h"

// How fast a transfer moves and how long it still takes, from its progress
// and the seconds since its blocks began: what a technician reads beside a
// progress bar.
namespace sb {

struct TransferPace {
    double Share = 0;           // 0 to 1 of the file acknowledged
    double BytesPerSecond = 0;  // 0 while nothing is known yet
    double SecondsLeft = -1;    // below 0 while nothing is known yet
};

TransferPace PaceOf(const XmodemProgress& progress, double elapsedSeconds);

// "12.3 kB/s" (1 kB = 1000 bytes).
std::string RateText(double bytesPerSecond);

// "1:05 left", minutes and seconds, rounded to the second.
std::string TimeLeftText(double seconds);

}  // namespace sb

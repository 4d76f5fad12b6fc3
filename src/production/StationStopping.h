#pragma once
#include <functional>
#include <string>

#include "production/Station.h"

// How a station is stopped by its operator: the first request lets the
// modules in progress end, the second stops them too. A log that fails
// stops the station as the first request does. Whoever drives the station
// hands every request over, and asks again after each turn for the log.
namespace sb {

class StationStopping {
public:
    // again: what the operator does once more to stop the modules in
    // progress ("Ctrl-C", "Stop"); note: what the operator reads.
    StationStopping(std::string again, std::function<void(const std::string&)> note)
        : again_(std::move(again)), note_(std::move(note)) {}

    void Take(Station& station, int stops);
    // Stopping, by a request or by the log.
    bool Begun() const { return begun_; }
    // Asked twice: the modules in progress are being stopped.
    bool Aborted() const { return stops_ > 1; }

private:
    void Begin(Station& station, const std::string& why);

    std::string again_;
    std::function<void(const std::string&)> note_;
    int stops_ = 0;
    bool begun_ = false;
};

}  // namespace sb

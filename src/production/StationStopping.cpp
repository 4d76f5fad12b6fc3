#include "production/StationStopping.h"

namespace sb {

void StationStopping::Take(Station& station, int stops) {
    for (int i = 0; i < stops; ++i) {
        if (++stops_ > 1)
            station.Abort();
        else
            Begin(station, "Stopping: the modules in progress are finished first (" + again_ + " again to stop them).");
    }
    if (station.Line().LogFailure() && !begun_)
        Begin(station, "Stopping: the log cannot be written; the modules in progress are finished first.");
}

void StationStopping::Begin(Station& station, const std::string& why) {
    if (!begun_ && note_) note_(why);
    begun_ = true;
    station.Stop();
}

}  // namespace sb

#include "production/ProgressBatch.h"

#include <utility>

namespace sb {

std::optional<XmodemProgress> ProgressBatch::Take(const XmodemProgress& progress, Clock::time_point now) {
    const bool due = !passed_ || now - *passed_ >= every_;
    if (progress.Blocks == 0 || progress.Bytes >= progress.Total || due) {
        passed_ = now;
        held_.reset();
        return progress;
    }
    held_ = progress;
    return std::nullopt;
}

std::optional<XmodemProgress> ProgressBatch::Rest() { return std::exchange(held_, std::nullopt); }

}  // namespace sb

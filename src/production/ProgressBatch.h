#pragma once
#include <chrono>
#include <optional>

#include "update/Xmodem.h"

// A download program tells its line of its progress a few times a second,
// not at each block: one write on the port a block, and few on the pipe. The
// start of a transfer and its last block always pass, so the line sees each
// try begin and the bytes that were acknowledged in the end.
namespace sb {

class ProgressBatch {
public:
    using Clock = std::chrono::steady_clock;
    explicit ProgressBatch(std::chrono::milliseconds every) : every_(every) {}

    // The progress to pass on now, if any; the rest is held back.
    std::optional<XmodemProgress> Take(const XmodemProgress& progress, Clock::time_point now);
    // What was held back since the last one passed on: the transfer has ended.
    std::optional<XmodemProgress> Rest();

private:
    std::chrono::milliseconds every_;
    std::optional<Clock::time_point> passed_;
    std::optional<XmodemProgress> held_;
};

}  // namespace sb

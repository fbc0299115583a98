#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "oska/json/result.h"
#include "oska/platform/quenlo_common.h"

namespace viewer {

/// A sample and when it is due, from the beginning of its walk. One that is stamped earlier than one before
/// it is due with that.
struct TimedSample {
    std::chrono::milliseconds due{};
    oska::platform::ReceivedForce sample;
};

/// A recording in memory.
struct Walk {
    std::vector<TimedSample> samples;  ///< ascending by `due`; never empty
    std::size_t actions = 0;  ///< lines on what the recording's host did; the viewer's user decides instead

    [[nodiscard]] std::chrono::milliseconds duration() const { return samples.back().due; }
};

/// A recording is JSON Lines: one object a line, a sample with "mobile_time" and "rfs" or an action with
/// "mobile_time" and "action"; blank lines do not count. The error names file and line. Walks that span more
/// than a day are refused.
[[nodiscard]] oska::Result<Walk, std::string> loadWalk(const std::string& path);

}  // namespace viewer

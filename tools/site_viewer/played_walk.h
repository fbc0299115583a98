#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "oska/json/result.h"
#include "oska/platform/quenlo_common.h"

namespace viewer {

/// A sample, and when it is played: the time since the beginning of the walk. A sample with an earlier time
/// than one before it is played together with that.
struct TimedSample {
    std::chrono::milliseconds due{};
    oska::platform::ReceivedForce sample;
};

/// The samples of a recording, in memory.
struct PlayedWalk {
    std::vector<TimedSample> samples;  ///< ascending by `due`; at least one
    std::size_t actions = 0;           ///< lines that are actions of a host, which the viewer does not repeat

    [[nodiscard]] std::chrono::milliseconds duration() const { return samples.back().due; }
};

/// Reads the recording at `path`. The error names file and line. A recording without samples, and one of more
/// than a day, are errors.
[[nodiscard]] oska::Result<PlayedWalk, std::string> loadWalk(const std::string& path);

}  // namespace viewer

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/resources/level_map_index.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// A place where a walk was reported to be, for a while.
struct TraceStop {
    std::size_t level = 0;  ///< in the site
    MapPoint point{};       ///< on the level's map
    std::int64_t from = 0;  ///< milliseconds since the run began
    std::int64_t until = 0;
};

/// A ward that a selection held when it was delivered.
struct TraceDetection {
    std::size_t level = 0;
    MapPoint point{};
    std::int64_t number = 0;  ///< of the delivery, from 1
    std::int64_t at = 0;
};

/// What a host heard on a walk, as far as it can be drawn. Grows with what changed, not with how often it was
/// reported.
struct WalkTrace {
    std::vector<TraceStop> stops;            ///< Pelio's positions in their order
    std::vector<TraceDetection> detections;  ///< Dapo's deliveries in theirs
    std::int64_t deliveries = 0;
    std::int64_t end = 0;  ///< of the last event
};

/// Follows a run by its event lines.
class WalkTracer {
public:
    explicit WalkTracer(const Site& site) : site_(site) {}

    /// A line of the events; those that tell of no place are left aside.
    void note(std::string_view eventLine);

    [[nodiscard]] const WalkTrace& trace() const { return trace_; }

private:
    const Site& site_;
    WalkTrace trace_;
};

}  // namespace oska::tool

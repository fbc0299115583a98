#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/oska/drawing/walk_trace.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// All that happened at one place of a level.
struct Marks {
    MapPoint point{};
    std::vector<std::int64_t> numbers;      ///< of the stops, or of the deliveries, in ascending order
    std::int64_t milliseconds = 0;          ///< time spent there
    std::optional<std::int64_t> first;      ///< when a ward there was first detected, in milliseconds
    std::vector<std::string> levelChanges;  ///< where the walk went from there: "12 on 2F"
};

/// By x and y.
using Places = std::map<std::pair<double, double>, Marks>;

/// The places of a level that can be drawn: those that Pelio reported, and those of the wards that Dapo
/// detected.
[[nodiscard]] Places stopsOn(const Site& site, std::size_t level, const WalkTrace& trace);
[[nodiscard]] Places detectionsOn(std::size_t level, const WalkTrace& trace);

/// Ascending numbers as "1, 4-6": a row of neighbours is a range. At most three of these, then " ...".
[[nodiscard]] std::string numbersText(const std::vector<std::int64_t>& numbers);

}  // namespace oska::tool

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "oska/json/result.h"
#include "tools/oska/simulating/route.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// Metres in the common ground plan of a site's buildings; z is up.
struct Point3 {
    double x = 0;
    double y = 0;
    double z = 0;
};

/// Where the levels of a site are in space. The levels of a building are one above the other, in document
/// order. The first building is at the origin, the others are where the route places them.
class GroundPlan {
public:
    GroundPlan(const Site& site, const Route& route);

    /// False for the levels of a building that the route does not place; wards there cannot be heard from
    /// another building, nor the other way round.
    [[nodiscard]] bool isPlaced(std::size_t level) const { return levels_[level].isPlaced; }

    [[nodiscard]] double floorHeight() const { return floorHeight_; }                         ///< metres
    [[nodiscard]] double height(std::size_t level) const { return levels_[level].origin.z; }  ///< metres

    /// A point of a level in space. A level without a place is taken to be in a building at the origin.
    [[nodiscard]] Point3 toGround(std::size_t level, double x, double y) const;

    /// Bundle units of the level.
    [[nodiscard]] double xOnLevel(std::size_t level, const Point3& point) const;
    [[nodiscard]] double yOnLevel(std::size_t level, const Point3& point) const;

private:
    struct Place {
        Point3 origin;
        bool isPlaced = false;
    };

    double unitsPerMetre_;
    double floorHeight_;
    std::vector<Place> levels_;  // as in the site
};

/// Where the phone is.
struct Position {
    std::size_t level = 0;
    Point3 point;
};

/// A route in time.
class PlannedWalk {
public:
    /// The walk, or the reason why the route does not fit the site: `waypoints[3].level_id: the bundle has no
    /// level 9; there are 1 ("Tower", "1F")`.
    [[nodiscard]] static Result<PlannedWalk, std::string> plan(const Route& route, const Site& site,
                                                               const GroundPlan& ground);

    [[nodiscard]] std::int64_t milliseconds() const { return legs_.back().end; }

    /// `time`: milliseconds from 0 to milliseconds(), never less than in the call before. When the walk
    /// changes the level, the phone is on the new one from half of the way on.
    [[nodiscard]] Position at(std::int64_t time);

private:
    struct Leg {
        std::int64_t end = 0;  // milliseconds; it begins where the one before ends
        Position from;
        Position to;
    };

    class Planner;

    std::vector<Leg> legs_;
    std::size_t current_ = 0;
};

}  // namespace oska::tool

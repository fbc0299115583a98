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

/// Where the levels of a site lie in space: those of a building one above the other in document order. The
/// first building stands at the origin, any other where the route places it, if it does.
class GroundPlan {
public:
    GroundPlan(const Site& site, const Route& route);

    /// Unknown for the levels of a building without a place: nothing of it can be heard from another
    /// building.
    [[nodiscard]] bool isPlaced(std::size_t level) const { return levels_[level].isPlaced; }

    [[nodiscard]] double floorHeight() const { return floorHeight_; }                         ///< metres
    [[nodiscard]] double height(std::size_t level) const { return levels_[level].origin.z; }  ///< metres

    /// Of a level without a place: as if its building stood at the origin.
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
    /// Or why the route does not fit the site: `waypoints[3].level_id: the bundle has no level 9; there are 1
    /// ("Tower", "1F")`.
    [[nodiscard]] static Result<PlannedWalk, std::string> plan(const Route& route, const Site& site,
                                                               const GroundPlan& ground);

    [[nodiscard]] std::int64_t milliseconds() const { return legs_.back().end; }

    /// `time`: milliseconds from 0 to milliseconds(), never less than the time before. A phone that changes
    /// its level does so half way.
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

#include "tools/oska/simulating/planned_walk.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "tools/oska/cli/wording.h"

namespace oska::tool {
namespace {

constexpr double CENTIMETRES = 100;                // bundle units in a metre, unless the route says otherwise
constexpr double FLOOR_HEIGHT = 3.5;               // metres
constexpr double WALKING_SPEED = 1.2;              // metres a second
constexpr double LONGEST_WALK = 30.0 * 24 * 3600;  // seconds

const BuildingPlace* placeOf(const Route& route, std::int64_t buildingId) {
    if (!route.buildings) return nullptr;
    for (const auto& place : *route.buildings) {
        if (place.id == buildingId) return &place;
    }
    return nullptr;
}

std::string levelsOf(const Site& site) {
    if (site.levels.empty()) return "there is none";
    std::string list;
    for (const auto& level : site.levels) {
        list += (list.empty() ? "there are " : ", ") + std::to_string(level.id) + " (" +
                inQuotes(level.buildingName) + ", " + inQuotes(level.name) + ")";
    }
    return list;
}

double distance(const Point3& a, const Point3& b) {
    const double x = b.x - a.x;
    const double y = b.y - a.y;
    return std::sqrt(x * x + y * y);
}

/// The level of each waypoint, or what is the matter with it.
Result<std::size_t, std::string> levelOf(const Waypoint& waypoint, const Site& site,
                                         std::optional<std::size_t> before) {
    if (!waypoint.level_id) {
        if (waypoint.building_id) return std::string(R"(: has "building_id" without "level_id")");
        if (before) return *before;
        return std::string(R"(: the first waypoint needs "level_id")");
    }
    if (const auto level = site.findLevel(*waypoint.level_id, waypoint.building_id)) return *level;
    const auto where =
        waypoint.building_id ? "building " + std::to_string(*waypoint.building_id) : "the bundle";
    return ".level_id: " + where + " has no level " + std::to_string(*waypoint.level_id) + "; " +
           levelsOf(site);
}

bool hasBuilding(const Site& site, std::int64_t id) {
    return std::any_of(site.levels.begin(), site.levels.end(),
                       [id](const SiteLevel& level) { return level.buildingId == id; });
}

std::optional<std::string> faultOfPlaces(const Route& route, const Site& site) {
    if (!route.buildings) return std::nullopt;
    for (std::size_t i = 0; i < route.buildings->size(); ++i) {
        const auto& place = (*route.buildings)[i];
        const auto where = "buildings[" + std::to_string(i) + "].id: ";
        const auto id = std::to_string(place.id);
        if (!hasBuilding(site, place.id)) return where + "the bundle has no level of a building " + id;
        if (placeOf(route, place.id) != &place) return where + "building " + id + " has a place already";
    }
    return std::nullopt;
}

}  // namespace

GroundPlan::GroundPlan(const Site& site, const Route& route)
    : unitsPerMetre_(route.units_per_metre.value_or(CENTIMETRES)),
      floorHeight_(route.floor_height.value_or(FLOOR_HEIGHT)) {
    for (const auto& level : site.levels) {
        const auto* const given = placeOf(route, level.buildingId);
        const bool isFirst = level.buildingId == site.levels.front().buildingId;
        const auto place = given != nullptr ? *given : BuildingPlace{};
        const double height = place.height.value_or(0) + static_cast<double>(level.floor) * floorHeight_;
        levels_.push_back(
            {{place.x / unitsPerMetre_, place.y / unitsPerMetre_, height}, given != nullptr || isFirst});
    }
}

Point3 GroundPlan::toGround(std::size_t level, double x, double y) const {
    const auto& origin = levels_[level].origin;
    return {origin.x + x / unitsPerMetre_, origin.y + y / unitsPerMetre_, origin.z};
}

double GroundPlan::xOnLevel(std::size_t level, const Point3& point) const {
    return (point.x - levels_[level].origin.x) * unitsPerMetre_;
}

double GroundPlan::yOnLevel(std::size_t level, const Point3& point) const {
    return (point.y - levels_[level].origin.y) * unitsPerMetre_;
}

/// Adds one leg after the other. The text of a fault is what follows the place of the waypoint.
class PlannedWalk::Planner {
public:
    Planner(const Route& route, const Site& site, const GroundPlan& ground)
        : speed_(route.speed.value_or(WALKING_SPEED)), site_(site), ground_(ground) {}

    std::optional<std::string> visit(const Waypoint& waypoint) {
        const auto level = levelOf(waypoint, site_, levelNow());
        if (!level) return level.error();
        const Position to{*level, ground_.toGround(*level, waypoint.x, waypoint.y)};
        if (legs_.empty()) {
            legs_.push_back({0, to, to});
        } else {
            if (auto fault = faultOfWay(waypoint, *level)) return fault;
            add(secondsOfWay(waypoint, to.point), to);
        }
        add(waypoint.pause.value_or(0), to);
        return isTooLong_ ? std::optional(": the walk takes more than 30 days to here") : std::nullopt;
    }

    std::vector<Leg> takeLegs() { return std::move(legs_); }

private:
    [[nodiscard]] std::optional<std::size_t> levelNow() const {
        return legs_.empty() ? std::nullopt : std::optional(legs_.back().to.level);
    }

    [[nodiscard]] std::optional<std::string> faultOfWay(const Waypoint& waypoint, std::size_t level) const {
        const auto before = *levelNow();
        if (level == before) return std::nullopt;
        if (!waypoint.seconds) return R"(: a change of level needs "seconds")";
        const bool isOneBuilding = site_.levels[before].buildingId == site_.levels[level].buildingId;
        if (isOneBuilding || (ground_.isPlaced(before) && ground_.isPlaced(level))) return std::nullopt;
        return R"(: a way between two buildings needs their places in "buildings")";
    }

    [[nodiscard]] double secondsOfWay(const Waypoint& waypoint, const Point3& to) const {
        if (waypoint.seconds) return *waypoint.seconds;
        return distance(legs_.back().to.point, to) / waypoint.speed.value_or(speed_);
    }

    void add(double seconds, const Position& to) {
        const auto begin = legs_.back().end;
        isTooLong_ = isTooLong_ || !(seconds <= LONGEST_WALK - static_cast<double>(begin) / 1000);
        if (!isTooLong_) legs_.push_back({begin + std::llround(seconds * 1000), legs_.back().to, to});
    }

    double speed_;
    const Site& site_;
    const GroundPlan& ground_;
    std::vector<Leg> legs_;
    bool isTooLong_ = false;
};

Result<PlannedWalk, std::string> PlannedWalk::plan(const Route& route, const Site& site,
                                                   const GroundPlan& ground) {
    if (const auto fault = faultOfPlaces(route, site)) return *fault;
    Planner planner(route, site, ground);
    for (std::size_t i = 0; i < route.waypoints.size(); ++i) {
        if (const auto fault = planner.visit(route.waypoints[i])) {
            return "waypoints[" + std::to_string(i) + "]" + *fault;
        }
    }
    PlannedWalk walk;
    walk.legs_ = planner.takeLegs();
    return walk;
}

Position PlannedWalk::at(std::int64_t time) {
    while (current_ + 1 < legs_.size() && legs_[current_].end < time) ++current_;
    const auto& [end, from, to] = legs_[current_];
    const auto begin = current_ == 0 ? 0 : legs_[current_ - 1].end;
    if (time >= end) return to;
    const double share = static_cast<double>(time - begin) / static_cast<double>(end - begin);
    const auto mixed = [share](double a, double b) { return a + (b - a) * share; };
    return {
        share < 0.5 ? from.level : to.level,
        {mixed(from.point.x, to.point.x), mixed(from.point.y, to.point.y), mixed(from.point.z, to.point.z)}};
}

}  // namespace oska::tool

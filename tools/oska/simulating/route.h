#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/result.h"

/// A route through a site, as `oska simulate --help` describes it: a JSON document written by hand, so a key
/// that is not known is an error.
namespace oska::tool {

/// A stop of the route, and how the phone comes there.
struct Waypoint {
    std::optional<std::int64_t> building_id;  ///< needed only where two buildings share a level id
    std::optional<std::int64_t> level_id;     ///< nullopt: that of the waypoint before
    double x = 0;                             ///< bundle units
    double y = 0;
    std::optional<double> speed;    ///< metres a second, of the way here
    std::optional<double> seconds;  ///< that the way here takes; instead of a speed
    std::optional<double> pause;    ///< seconds spent here
    std::vector<std::string> unknown_keys;
};

/// Where a building is on the ground that all buildings share.
struct BuildingPlace {
    std::int64_t id = 0;
    double x = 0;  ///< bundle units: where its origin is
    double y = 0;
    std::optional<double> height;  ///< metres: of its first level
    std::vector<std::string> unknown_keys;
};

/// How radio waves behave. For the defaults see radio_model.h; they are those of an office.
struct RadioSettings {
    std::optional<double> strength_at_1m;    ///< dBm
    std::optional<double> exponent;          ///< 2 in free space, more indoors
    std::optional<double> shadowing;         ///< dB: deviation caused by obstacles
    std::optional<double> shadowing_length;  ///< metres over which that changes
    std::optional<double> fading;            ///< dB: deviation from one reading to the next
    std::optional<double> floor_loss;        ///< dB for each floor in between
    std::optional<double> wall_loss;         ///< dB for the outer walls between two buildings
    std::optional<double> missed;            ///< share of readings that are missed though strong enough
    std::vector<std::string> unknown_keys;
};

struct Route {
    std::optional<std::int64_t> start_time;  ///< mobile time of the first sample, milliseconds
    std::optional<double> units_per_metre;   ///< bundle units
    std::optional<double> floor_height;      ///< metres
    std::optional<double> speed;             ///< metres a second
    std::optional<RadioSettings> radio;
    std::optional<std::vector<BuildingPlace>> buildings;
    std::vector<Waypoint> waypoints;
    std::vector<std::string> unknown_keys;
};

/// The route in `document`, with every number in its range; or the reason why it is no route, with `file` and
/// the place in front.
[[nodiscard]] Result<Route, std::string> parseRoute(const std::string& file, std::string_view document);

}  // namespace oska::tool

#include "tools/oska/simulating/route.h"

#include "oska/json/json.h"
#include "tools/oska/cli/wording.h"

namespace oska::tool {

namespace json = json;

template <class Visit>
void fields(Visit& f, Waypoint& waypoint) {
    f("building_id", waypoint.building_id);
    f("level_id", waypoint.level_id);
    f("x", waypoint.x);
    f("y", waypoint.y);
    f("speed", waypoint.speed);
    f("seconds", waypoint.seconds);
    f("pause", waypoint.pause);
}

template <class Visit>
void fields(Visit& f, BuildingPlace& place) {
    f("id", place.id);
    f("x", place.x);
    f("y", place.y);
    f("height", place.height);
}

template <class Visit>
void fields(Visit& f, RadioSettings& radio) {
    f("strength_at_1m", radio.strength_at_1m);
    f("exponent", radio.exponent);
    f("shadowing", radio.shadowing);
    f("shadowing_length", radio.shadowing_length);
    f("fading", radio.fading);
    f("floor_loss", radio.floor_loss);
    f("wall_loss", radio.wall_loss);
    f("missed", radio.missed);
}

template <class Visit>
void fields(Visit& f, Route& route) {
    f("start_time", route.start_time);
    f("units_per_metre", route.units_per_metre);
    f("floor_height", route.floor_height);
    f("speed", route.speed);
    f("radio", route.radio);
    f("buildings", route.buildings);
    f("waypoints", route.waypoints);
}

// Reads a record like any other, but keeps the keys that it does not know.
template <Record Value>
requires requires(Value& record) { record.unknown_keys; }
bool read(json::Reader& reader, Value& record) {
    const auto offset = reader.offset();
    if (!reader.beginObject()) return false;
    json::FieldSet seen;
    for (std::string_view key; reader.nextKey(key);) {
        json::FieldOfName ofName{reader, seen, key};
        fields(ofName, record);
        if (ofName.isTaken) continue;
        record.unknown_keys.emplace_back(key);
        reader.skipMember();
    }
    json::RequiredFields required{reader, seen, offset};
    fields(required, record);
    return !reader.failed();
}

namespace {

constexpr double FARTHEST = 1e9;  // bundle units; ten thousand kilometres in centimetres
constexpr double LATEST = 1e15;   // milliseconds: thirty thousand years
constexpr double LONGEST = 1e6;   // seconds of a pause or a way: eleven days

std::string element(std::string_view array, std::size_t index) {
    return std::string(array) + "[" + std::to_string(index) + "]";
}

/// Looks at every number of a route and keeps the first fault.
class RouteCheck {
public:
    std::optional<std::string> inspect(const Route& route) {
        lookAtKeys("", route.unknown_keys);
        if (route.start_time) within("start_time", static_cast<double>(*route.start_time), -LATEST, LATEST);
        within("units_per_metre", route.units_per_metre, 0.001, 1e6);
        within("floor_height", route.floor_height, 0.1, 1000);
        positive("speed", route.speed);
        if (route.radio) lookAt("radio", *route.radio);
        if (route.buildings) lookAtAll("buildings", *route.buildings);
        lookAtAll("waypoints", route.waypoints);
        if (route.waypoints.empty()) found("waypoints", "is empty; a route needs one at least");
        return fault_;
    }

private:
    template <class Value>
    void lookAtAll(std::string_view array, const std::vector<Value>& values) {
        for (std::size_t i = 0; i < values.size(); ++i) lookAt(element(array, i), values[i]);
    }

    void lookAt(const std::string& place, const RadioSettings& radio) {
        lookAtKeys(place, radio.unknown_keys);
        within(place + ".strength_at_1m", radio.strength_at_1m, -200, 100);
        within(place + ".exponent", radio.exponent, 0, 10);
        within(place + ".shadowing", radio.shadowing, 0, 100);
        within(place + ".shadowing_length", radio.shadowing_length, 0.01, 1e6);
        within(place + ".fading", radio.fading, 0, 100);
        within(place + ".floor_loss", radio.floor_loss, 0, 1000);
        within(place + ".wall_loss", radio.wall_loss, 0, 1000);
        within(place + ".missed", radio.missed, 0, 1);
    }

    void lookAt(const std::string& place, const BuildingPlace& building) {
        lookAtKeys(place, building.unknown_keys);
        within(place + ".x", building.x, -FARTHEST, FARTHEST);
        within(place + ".y", building.y, -FARTHEST, FARTHEST);
        within(place + ".height", building.height, -FARTHEST, FARTHEST);
    }

    void lookAt(const std::string& place, const Waypoint& waypoint) {
        lookAtKeys(place, waypoint.unknown_keys);
        within(place + ".x", waypoint.x, -FARTHEST, FARTHEST);
        within(place + ".y", waypoint.y, -FARTHEST, FARTHEST);
        positive(place + ".speed", waypoint.speed);
        within(place + ".seconds", waypoint.seconds, 0, LONGEST);
        within(place + ".pause", waypoint.pause, 0, LONGEST);
        if (waypoint.speed && waypoint.seconds) found(place, R"(has both "speed" and "seconds")");
    }

    void lookAtKeys(const std::string& place, const std::vector<std::string>& unknown) {
        if (!unknown.empty())
            found(place.empty() ? "document" : place, "unknown key " + inQuotes(unknown.front()));
    }

    void within(const std::string& place, std::optional<double> value, double least, double most) {
        if (!value || (*value >= least && *value <= most)) return;
        found(place, decimal(*value) + " is not between " + decimal(least) + " and " + decimal(most));
    }

    void positive(const std::string& place, std::optional<double> value) {
        if (value && *value <= 0) found(place, decimal(*value) + " is not above 0");
    }

    void found(const std::string& place, const std::string& problem) {
        if (!fault_) fault_ = place + ": " + problem;
    }

    static std::string decimal(double value) {
        std::string text;
        static_cast<void>(json::appendReal(text, value));  // JSON brings finite numbers only
        return text;
    }

    std::optional<std::string> fault_;
};

}  // namespace

Result<Route, std::string> parseRoute(const std::string& file, std::string_view document) {
    auto route = json::decode<Route>(document);
    if (!route) return faultLine(file, route.error());
    if (const auto fault = RouteCheck().inspect(*route)) return file + ": " + *fault;
    return *std::move(route);
}

}  // namespace oska::tool

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace oska {

/// The map image of one level, with the building and level that it belongs to. Both services hand it to
/// hosts, each under a name of its own.
struct LevelMap {
    static constexpr std::string_view TYPE_NAME = "LevelMap";
    std::int64_t building_id = 0;
    std::string building_name;
    std::int64_t level_id = 0;
    std::string level_name;
    std::string url;          ///< where the image is downloaded from; the kit does not fetch it
    double image_width = 0;   ///< pixels
    double image_height = 0;  ///< pixels
    double scale_x = 0;       ///< map units to image units
    double scale_y = 0;
    double offset_x = 0;  ///< added after scaling
    double offset_y = 0;
};

template <class Visit>
void fields(Visit& f, LevelMap& map) {
    f("building_id", map.building_id);
    f("building_name", map.building_name);
    f("level_id", map.level_id);
    f("level_name", map.level_name);
    f("url", map.url);
    f("image_width", map.image_width);
    f("image_height", map.image_height);
    f("scale_x", map.scale_x);
    f("scale_y", map.scale_y);
    f("offset_x", map.offset_x);
    f("offset_y", map.offset_y);
}

[[nodiscard]] bool operator==(const LevelMap& a, const LevelMap& b);

}  // namespace oska

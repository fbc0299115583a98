#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace oska {

/// The map image of one level, with the building and level that it belongs to. Both services hand it to hosts
/// once for each level, while they initialise, each under a name of its own: DapoMapImage, PelioMapImage.
///
/// A ward at (x, y) of the bundle lies on the map at (scale_x * x + offset_x, scale_y * y + offset_y). The
/// positions that the services report are converted already.
struct LevelMap {
    static constexpr std::string_view TYPE_NAME = "LevelMap";  ///< in descriptions

    std::int64_t building_id = 0;    ///< of the bundle
    std::string building_name = {};  ///< of the bundle
    std::int64_t level_id = 0;       ///< of the bundle
    std::string level_name = {};     ///< of the bundle
    std::string url = {};            ///< of the image, as the bundle has it; the kit does not fetch it
    double image_width = 0;          ///< pixels
    double image_height = 0;         ///< pixels
    double scale_x = 0;              ///< map pixels for one bundle unit, along x
    double scale_y = 0;              ///< the same along y; negative where the two axes run opposite
    double offset_x = 0;             ///< map pixels, added after scaling
    double offset_y = 0;             ///< map pixels, added after scaling
};

/// The record's fields under their JSON keys, in the order of the document (see oska/json/record.h).
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

/// Field by field.
[[nodiscard]] bool operator==(const LevelMap& a, const LevelMap& b);

}  // namespace oska

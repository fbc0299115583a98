#pragma once

#include <vector>

#include "tools/oska/site/site.h"

namespace oska::tool {

/// The widest that a level's map is drawn, in pixels of the drawing.
inline constexpr double PANEL_WIDTH = 620;

/// Whether a place is near enough to be drawn: at most 1e9 map pixels from the origin.
[[nodiscard]] bool isDrawable(const MapPoint& point);

/// The wards of a level that can be drawn. They are the site's.
[[nodiscard]] std::vector<const SiteWard*> drawableWardsOn(const Site& site, std::size_t level);

/// The part of a level's map that is drawn, in map pixels.
struct MapArea {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    /// Widens the area.
    void include(const MapPoint& point);
};

/// The rectangle of a drawing that shows a level's map, in pixels of the drawing.
struct Frame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double scale = 1;  ///< drawing pixels for one map pixel
    MapArea area;

    /// From the map to the drawing.
    [[nodiscard]] MapPoint place(const MapPoint& point) const {
        return {x + (point.x - area.left) * scale, y + (point.y - area.top) * scale};
    }
};

/// A frame at the origin that shows the map image and all of the wards; without an image the wards with some
/// room around them.
[[nodiscard]] Frame frameFor(const LevelMap& map, const std::vector<const SiteWard*>& wards);

}  // namespace oska::tool

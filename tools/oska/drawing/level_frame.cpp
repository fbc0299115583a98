#include "tools/oska/drawing/level_frame.h"

#include <algorithm>
#include <cmath>

namespace oska::tool {
namespace {

constexpr double MAP_HEIGHT_AT_MOST = 620;  // pixels of the drawing
constexpr double FARTHEST = 1e9;            // map pixels

MapArea widened(const MapArea& area) {
    const double room = std::max({1.0, (area.right - area.left) * 0.1, (area.bottom - area.top) * 0.1});
    return {area.left - room, area.top - room, area.right + room, area.bottom + room};
}

MapArea areaOf(const LevelMap& map, const std::vector<const SiteWard*>& wards) {
    const MapPoint corner{map.image_width, map.image_height};
    const bool hasImage = corner.x > 0 && corner.y > 0 && isDrawable(corner);
    const auto first = wards.empty() ? MapPoint{0, 0} : wards.front()->place;
    auto area = hasImage ? MapArea{0, 0, corner.x, corner.y} : MapArea{first.x, first.y, first.x, first.y};
    for (const auto* const ward : wards) area.include(ward->place);
    return hasImage ? area : widened(area);
}

}  // namespace

bool isDrawable(const MapPoint& point) {
    return std::abs(point.x) <= FARTHEST && std::abs(point.y) <= FARTHEST;
}

std::vector<const SiteWard*> drawableWardsOn(const Site& site, std::size_t level) {
    auto wards = site.wardsOn(level);
    std::erase_if(wards, [](const SiteWard* ward) { return !isDrawable(ward->place); });
    return wards;
}

void MapArea::include(const MapPoint& point) {
    left = std::min(left, point.x);
    right = std::max(right, point.x);
    top = std::min(top, point.y);
    bottom = std::max(bottom, point.y);
}

Frame frameFor(const LevelMap& map, const std::vector<const SiteWard*>& wards) {
    Frame frame{.area = areaOf(map, wards)};
    const double width = frame.area.right - frame.area.left;
    const double height = frame.area.bottom - frame.area.top;
    frame.scale = std::min(PANEL_WIDTH / width, MAP_HEIGHT_AT_MOST / height);
    frame.width = width * frame.scale;
    frame.height = height * frame.scale;
    return frame;
}

}  // namespace oska::tool

#include "oska/resources/level_maps.h"

namespace oska {

std::optional<LevelMap> LevelMaps::find(std::int64_t levelId) const {
    const auto found = byLevelId_.find(levelId);
    return found == byLevelId_.end() ? std::nullopt : std::optional(found->second);
}

// Compiled with -ffp-contract=off: product and sum are two operations, each rounded.
MapPoint LevelMaps::convertWardCoordinate(std::int64_t levelId, std::int64_t x, std::int64_t y,
                                          const Log& log) const {
    const MapPoint ward{static_cast<double>(x), static_cast<double>(y)};
    const auto found = byLevelId_.find(levelId);
    if (found == byLevelId_.end()) {
        log.warn("convertWardCoordinate", "map_image not found", {{"levelId", levelId}});
        return ward;
    }
    const auto& map = found->second;
    return {map.scale_x * ward.x + map.offset_x, map.scale_y * ward.y + map.offset_y};
}

}  // namespace oska

#include "oska/resources/level_map_index.h"

namespace oska {

std::optional<LevelMap> LevelMapIndex::find(std::int64_t levelId) const {
    const auto found = byLevelId_.find(levelId);
    return found == byLevelId_.end() ? std::nullopt : std::optional(found->second);
}

// Compiled with -ffp-contract=off: product and sum are two operations, each rounded.
std::optional<MapPoint> LevelMapIndex::convertWardCoordinate(std::int64_t levelId, std::int64_t x,
                                                             std::int64_t y) const {
    const auto found = byLevelId_.find(levelId);
    if (found == byLevelId_.end()) return std::nullopt;
    const auto& map = found->second;
    return MapPoint{map.scale_x * static_cast<double>(x) + map.offset_x,
                    map.scale_y * static_cast<double>(y) + map.offset_y};
}

}  // namespace oska

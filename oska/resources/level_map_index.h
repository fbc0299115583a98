#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "oska/resources/level_map.h"

namespace oska {

struct MapPoint {
    double x;
    double y;
};

/// The map images of a site by level id; of levels that share an id the later one counts. A value, from a
/// bundle of either kind.
class LevelMapIndex {
public:
    LevelMapIndex() = default;
    template <class Building>
    explicit LevelMapIndex(const std::vector<Building>& buildings);

    [[nodiscard]] const std::map<std::int64_t, LevelMap>& byLevelId() const { return byLevelId_; }
    [[nodiscard]] std::optional<LevelMap> find(std::int64_t levelId) const;

    /// A ward's place on the map image of its level, from bundle units: scale times coordinate, rounded, then
    /// plus offset. Nullopt when the level has no map image; services then use the coordinates unchanged.
    [[nodiscard]] std::optional<MapPoint> convertWardCoordinate(std::int64_t levelId, std::int64_t x,
                                                                std::int64_t y) const;

private:
    std::map<std::int64_t, LevelMap> byLevelId_;
};

template <class Building>
LevelMapIndex::LevelMapIndex(const std::vector<Building>& buildings) {
    for (const auto& building : buildings) {
        for (const auto& level : building.levels) {
            const auto& image = level.map_image;
            byLevelId_.insert_or_assign(
                level.id,
                LevelMap{building.id, building.name, level.id, level.name, image.url, image.image_width,
                         image.image_height, image.scale_x, image.scale_y, image.offset_x, image.offset_y});
        }
    }
}

}  // namespace oska

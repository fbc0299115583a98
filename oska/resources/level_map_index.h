#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "oska/resources/level_map.h"

namespace oska {

/// A place on a level's map, as the services report it.
struct MapPoint {
    double x;  ///< map pixels
    double y;  ///< map pixels
};

/// The map images of a site by level id, from a bundle of either kind. Where several levels have the same id,
/// the last one counts.
///
/// A value: it keeps copies of the maps and does not refer to the bundle. Threads: any, while nobody assigns
/// to it. Errors: none; what has no map has none here.
class LevelMapIndex {
public:
    /// Without maps.
    LevelMapIndex() = default;

    /// Indexes the levels of `buildings`, those of a DapoBundle or a PelioBundle: each level's map image with
    /// the ids and names of level and building.
    template <class Building>
    explicit LevelMapIndex(const std::vector<Building>& buildings);

    /// All maps, by ascending level id.
    [[nodiscard]] const std::map<std::int64_t, LevelMap>& byLevelId() const { return byLevelId_; }

    /// The map of a level, or nullopt when the bundle has no such level.
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

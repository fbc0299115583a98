#pragma once

#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_map_index.h"

/// What hosts see of a Dapo bundle: pure functions of it. Threads: any.
namespace oska {

/// The links of a ward that are URLs, the others left out, ascending by number; equal numbers keep the
/// bundle's order.
[[nodiscard]] std::vector<WardContents> wardContents(const DapoLevelWard& ward);

struct DapoSectorDescription {
    DapoSectorInfo info;
    /// One entry for each ward whose level has no map image, in bundle order: the id of that level. The x and
    /// y of such a ward are in bundle units.
    std::vector<std::int64_t> levelsWithoutMap;
};

/// The sector as a tree, with each ward at its place on the map and `detected_rssi` 0.
[[nodiscard]] DapoSectorDescription describeSector(const DapoBundle& bundle, const LevelMapIndex& maps);

}  // namespace oska

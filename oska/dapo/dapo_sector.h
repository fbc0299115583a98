#pragma once

#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_map_index.h"

/// The parts of a Dapo bundle that a host receives: pure functions of the bundle. Threads: any. Errors: none.
namespace oska {

/// The content links of a ward, ascending by number; equal numbers keep the bundle's order. Links whose
/// address is no URL are left out.
[[nodiscard]] std::vector<WardContents> wardContents(const DapoLevelWard& ward);

/// A sector's description, and what its caller has to log.
struct DapoSectorDescription {
    DapoSectorInfo info;  ///< in bundle order
    /// One entry for each ward whose level has no map image, in bundle order: the id of that level. The x and
    /// y of such a ward are in bundle units.
    std::vector<std::int64_t> levelsWithoutMap;
};

/// The sector as a tree, with each ward at its place on the map and `detected_rssi` 0. `maps` must be the
/// index of the same bundle.
[[nodiscard]] DapoSectorDescription describeSector(const DapoBundle& bundle, const LevelMapIndex& maps);

}  // namespace oska

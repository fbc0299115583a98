#pragma once

#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_maps.h"

/// What hosts see of a Dapo bundle: pure functions of it. Threads: any.
namespace oska {

/// The links of a ward that are URLs, the others left out, ascending by number; equal numbers keep the
/// bundle's order.
[[nodiscard]] std::vector<WardContents> wardContents(const DapoLevelWard& ward);

/// The sector as a tree, with every ward at its place on the map and detected at 0 dBm.
[[nodiscard]] DapoSectorInfo sectorInfo(const DapoBundle& bundle, const LevelMaps& maps, const Log& log);

}  // namespace oska

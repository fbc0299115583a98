#pragma once

#include <string>

#include "oska/foundation/network_constants.h"
#include "tools/oska/drawing/walk_trace.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// A walk as an SVG document: one panel a level, with the level's wards, the positions that Pelio reported,
/// numbered in their order, and the wards that Dapo delivered, numbered by delivery. Colours are those of the
/// Okabe-Ito palette, and shapes differ as well. The same input gives the same bytes. What lies beyond 1e9
/// map pixels is left out.
[[nodiscard]] std::string drawWalk(const Site& site, const WalkTrace& trace, OskaService service);

}  // namespace oska::tool

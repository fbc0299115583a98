#include "tools/site_viewer/world.h"

#include <string>
#include <utility>

#include "adapters/virtual/fixed_token.h"
#include "oska/platform/platform.h"
#include "oska/platform/quenlo_common.h"

namespace viewer {

World::World()
    : qt_({.auth = std::make_shared<oska::virtual_world::FixedToken>(std::string("site-viewer")),
           .makeRFDGenerator = source_.factory()}),
      time_(std::make_shared<WalkTime>(qt_.platform().mainQueue, oska::platform::WallTime{})) {
    auto platform = qt_.platform();
    platform.mainQueue = time_;
    platform.clock = time_;
    oska::platform::install(std::move(platform));
    oska::platform::TovanReplayer::shared().setReplayMode(true);
}

}  // namespace viewer

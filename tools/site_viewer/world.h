#pragma once

#include <memory>

#include "adapters/qt/qt_platform.h"
#include "adapters/virtual/replay_generator.h"
#include "tools/site_viewer/walk_time.h"

namespace viewer {

/// The kit's surroundings: a Qt application, but in the time of a walk and with its samples for a radio.
///
/// Threads: made on the application's. Lifetime: making one installs it for the life of the process, so there
/// is one; destroying it ends its network and its loop.
class World {
public:
    World();

    [[nodiscard]] WalkTime& time() { return *time_; }
    [[nodiscard]] oska::virtual_world::ReplaySource& source() { return source_; }

private:
    oska::virtual_world::ReplaySource source_;
    oska::qt::QtPlatform qt_;
    const std::shared_ptr<WalkTime> time_;
};

}  // namespace viewer

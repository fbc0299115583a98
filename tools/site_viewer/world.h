#pragma once

#include <memory>

#include "adapters/qt/qt_platform.h"
#include "adapters/virtual/replay_generator.h"
#include "tools/site_viewer/walk_time.h"

namespace viewer {

/// The kit's platform in the viewer: that of a Qt application, but with the time of the walk, and with its
/// samples instead of a radio.
///
/// Threads: created on the main thread. Lifetime: the constructor installs the platform for the whole
/// process, so create one only; the destructor ends its network and its loop.
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

#pragma once

#include <memory>
#include <string>

#include "adapters/virtual/virtual_platform.h"

namespace oska::tool {

/// A virtual world with one site in it: whatever sector's bundle is asked for, its server answers with the
/// one given. Threads: the main thread. Lifetime: one in a process, since the kit can be told of one world
/// only.
class VirtualSite {
public:
    VirtualSite(std::string bundle, platform::WallTime start);

    [[nodiscard]] virtual_world::VirtualMainQueue& time() { return world_.time(); }
    [[nodiscard]] virtual_world::ReplaySource& source() { return world_.source(); }
    [[nodiscard]] std::shared_ptr<const platform::WallClock> clock() const { return world_.platform().clock; }

private:
    virtual_world::VirtualPlatform world_;
};

}  // namespace oska::tool

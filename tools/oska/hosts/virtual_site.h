#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/virtual/virtual_platform.h"

namespace oska::tool {

/// A virtual world with one site in it: whatever sector's bundle is asked for, its server answers with the
/// one given; and it takes uploads. Threads: the main thread. Lifetime: one in a process, since the kit can
/// be told of one world only.
class VirtualSite {
public:
    VirtualSite(std::string bundle, platform::WallTime start);

    /// Called with each batch that reaches the server. Set it before there are any.
    void onUpload(std::function<void(const std::vector<platform::ReceivedForce>&)> receive);

    [[nodiscard]] virtual_world::VirtualMainQueue& time() { return world_.time(); }
    [[nodiscard]] virtual_world::ReplaySource& source() { return world_.source(); }
    [[nodiscard]] std::shared_ptr<const platform::WallClock> clock() const { return world_.platform().clock; }

private:
    virtual_world::VirtualPlatform world_;
};

}  // namespace oska::tool

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/virtual/virtual_platform.h"

namespace oska::tool {

/// A virtual world with one site. Its server returns the given bundle for any sector, and takes uploads.
/// Threads: the main thread. Lifetime: one in a process, since a platform can be installed only once.
class VirtualSite {
public:
    VirtualSite(std::string bundle, platform::WallTime start);

    /// `receive` is called with each batch that reaches the server. Set it before the first.
    void onUpload(std::function<void(const std::vector<platform::ReceivedForce>&)> receive);

    [[nodiscard]] virtual_world::VirtualMainQueue& time() { return world_.time(); }
    [[nodiscard]] virtual_world::ReplaySource& source() { return world_.source(); }
    [[nodiscard]] std::shared_ptr<const platform::WallClock> clock() const { return world_.platform().clock; }

private:
    virtual_world::VirtualPlatform world_;
};

}  // namespace oska::tool

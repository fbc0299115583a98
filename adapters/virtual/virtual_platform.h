#pragma once

#include <memory>

#include "adapters/virtual/fixed_token.h"
#include "adapters/virtual/memory_server.h"
#include "adapters/virtual/replay_generator.h"
#include "adapters/virtual/settable_bluetooth.h"
#include "adapters/virtual/virtual_main_queue.h"
#include "oska/platform/platform.h"

namespace oska::virtual_world {

/// A whole world in memory: everything that the kit needs from its surroundings, and the strings to pull it
/// by.
///
/// Threads: made and destroyed on the main thread. The token provider answers "token" inside the call until
/// told otherwise.
/// Lifetime: destroying it shuts the server down, then stops the queue; the parts that an installed platform
/// holds live on, idle.
/// Order of use: `platform::install(world.platform())` first thing, then pull.
class VirtualPlatform {
public:
    explicit VirtualPlatform(platform::WallTime start);
    ~VirtualPlatform();
    VirtualPlatform(const VirtualPlatform&) = delete;
    VirtualPlatform& operator=(const VirtualPlatform&) = delete;

    [[nodiscard]] platform::Platform platform() const;

    [[nodiscard]] VirtualMainQueue& time() { return *time_; }
    [[nodiscard]] MemoryServer& server() { return *server_; }
    [[nodiscard]] ReplaySource& source() { return source_; }
    [[nodiscard]] FixedToken& auth() { return *auth_; }
    [[nodiscard]] SettableBluetooth& bluetooth() { return *bluetooth_; }

private:
    const std::shared_ptr<VirtualMainQueue> time_;
    const std::shared_ptr<MemoryServer> server_;
    const std::shared_ptr<FixedToken> auth_;
    const std::shared_ptr<SettableBluetooth> bluetooth_;
    ReplaySource source_;
};

}  // namespace oska::virtual_world

#pragma once

#include <memory>

#include "adapters/virtual/fixed_token.h"
#include "adapters/virtual/memory_server.h"
#include "adapters/virtual/replay_generator.h"
#include "adapters/virtual/settable_bluetooth.h"
#include "adapters/virtual/virtual_main_queue.h"
#include "oska/platform/platform.h"

namespace oska::virtual_world {

/// A whole world in memory: everything that the kit needs from its surroundings, under the control of a test
/// or a simulation.
///
///     oska::virtual_world::VirtualPlatform world({1'700'000'000'000, 0});
///     oska::platform::install(world.platform());
///     world.server().onPath("/bundle", always(reply(200, document)));
///     ... start a service ...
///     world.time().advanceBy(std::chrono::seconds(10));
///
/// Threads: constructed and destroyed on the main thread; for the parts, see their headers.
/// Lifetime: destroying it shuts the server down, then stops the queue. The parts that an installed platform
/// holds live on, but do nothing.
class VirtualPlatform {
public:
    /// `start`: what the clock shows at first. The token is "token", given inside the call; Bluetooth is
    /// allowed; the server answers 404; no generator hears anything.
    explicit VirtualPlatform(platform::WallTime start);
    ~VirtualPlatform();
    VirtualPlatform(const VirtualPlatform&) = delete;
    VirtualPlatform& operator=(const VirtualPlatform&) = delete;

    /// The value to install. It has no view peers: views live in memory only.
    [[nodiscard]] platform::Platform platform() const;

    /// The main queue and the clock.
    [[nodiscard]] VirtualMainQueue& time() { return *time_; }
    /// The server behind every URL.
    [[nodiscard]] MemoryServer& server() { return *server_; }
    /// What every generator hears.
    [[nodiscard]] ReplaySource& source() { return source_; }
    /// The token provider.
    [[nodiscard]] FixedToken& auth() { return *auth_; }
    /// The Bluetooth authorisation.
    [[nodiscard]] SettableBluetooth& bluetooth() { return *bluetooth_; }

private:
    const std::shared_ptr<VirtualMainQueue> time_;
    const std::shared_ptr<MemoryServer> server_;
    const std::shared_ptr<FixedToken> auth_;
    const std::shared_ptr<SettableBluetooth> bluetooth_;
    ReplaySource source_;
};

}  // namespace oska::virtual_world

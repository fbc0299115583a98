#pragma once

#include <memory>
#include <string_view>

#include "oska/platform/bluetooth.h"
#include "oska/platform/clock.h"
#include "oska/platform/http_session.h"
#include "oska/platform/main_queue.h"
#include "oska/platform/quenlo_auth.h"
#include "oska/platform/quenlo_common.h"
#include "oska/platform/quenlo_navigation.h"
#include "oska/platform/view_peer.h"

namespace oska::platform {

/// Everything that the kit needs from its surroundings while it runs: one part of each kind. A host installs
/// it once, first thing in `main`. Each adapter under adapters/ makes one; a host may replace any part before
/// it installs it. Lifetime: the parts live until the process ends.
struct Platform {
    std::shared_ptr<MainQueue> mainQueue = {};               ///< required
    std::shared_ptr<WallClock> clock = {};                   ///< required
    std::shared_ptr<HttpSessionFactory> http = {};           ///< required
    std::shared_ptr<BluetoothAuthorization> bluetooth = {};  ///< required
    std::shared_ptr<QuenloAuthManager> auth = {};            ///< required

    /// Required. Called at each start of a service, so that every run has a generator of its own.
    RFDGeneratorFactory makeRFDGenerator = {};

    /// May be empty: the navigation service then fails with a text that says so.
    NavigationManagerFactory makeNavigationManager = {};

    /// May be empty: views then exist in memory only, where a test can look at them and no user can.
    ViewPeerFactory makeViewPeer = {};
};

/// Installs the platform for the life of the process. Must be called before any other use of the kit; threads
/// that start later see it. To install twice, or a platform without a required part, is a programming error.
void install(Platform platform);

/// The installed platform, which stays the same until the process ends. To call it before `install` is a
/// programming error. Threads: any.
[[nodiscard]] const Platform& current();

/// Ends the process, by abort, after one line on standard error: "QuenloOska: " and `text`. It is for
/// mistakes in the program, such as a missing platform; what data, servers or providers do wrong never ends
/// the process. Threads: any.
[[noreturn]] void programmingError(std::string_view text);

}  // namespace oska::platform

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

/// Everything that the kit needs from its surroundings while it runs: one of each. A host installs it once,
/// first thing in `main`; the adapters under adapters/ each make one, and a host may replace any part of it.
struct Platform {
    std::shared_ptr<MainQueue> mainQueue;
    std::shared_ptr<WallClock> clock;
    std::shared_ptr<HttpSessionFactory> http;
    std::shared_ptr<BluetoothAuthorization> bluetooth;
    std::shared_ptr<QuenloAuthManager> auth;
    RFDGeneratorFactory makeRFDGenerator;
    NavigationManagerFactory makeNavigationManager = {};  ///< may be left empty
    ViewPeerFactory makeViewPeer =
        {};  ///< may be left out: views are then a tree in memory that nothing shows
};

/// Installs the platform for the life of the process. Installing twice, or one with a part missing, is a
/// programming error. Call it before any other use of the kit; threads started later see it.
void install(Platform platform);

/// The installed platform; a programming error when there is none. Threads: any.
[[nodiscard]] const Platform& current();

/// Stops the process with one line on standard error: for mistakes in the program, never for what data or
/// servers do.
[[noreturn]] void programmingError(std::string_view text);

}  // namespace oska::platform

#pragma once

#include <string>
#include <string_view>

#include "oska/foundation/network_constants.h"
#include "oska/resources/bundle.h"

namespace oska {

/// How loading a Dapo bundle differs from loading a Pelio bundle: in names, and in what is logged. All else
/// is the same code (see bundle_load.h).
struct DapoKind {
    using Bundle = DapoBundle;
    static constexpr std::string_view NAME = "Dapo";
    static std::string bundleUrlTemplate() { return OskaOnPremiseNetworkConstants::getUserDapoURL(); }

    /// Whether each of these has a line of its own: no descriptor, a failed download, a bundle that does not
    /// decode, a cached bundle used instead. The Pelio kind logs one line for all failures of a download.
    static constexpr bool LOGS_EACH_STEP = true;
};

/// The same for the Pelio kind.
struct PelioKind {
    using Bundle = PelioBundle;
    static constexpr std::string_view NAME = "Pelio";
    static std::string bundleUrlTemplate() { return OskaOnPremiseNetworkConstants::getUserPelioURL(); }
    static constexpr bool LOGS_EACH_STEP = false;
};

}  // namespace oska

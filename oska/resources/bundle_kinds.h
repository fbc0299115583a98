#pragma once

#include <string>
#include <string_view>

#include "oska/foundation/network_constants.h"
#include "oska/resources/bundle.h"

namespace oska {

/// Everything in which loading the two kinds of bundle differs. The road is the same; the Dapo kind tells
/// more on it.
struct DapoKind {
    using Bundle = DapoBundle;
    static constexpr std::string_view NAME = "Dapo";
    static std::string bundleUrlTemplate() { return OskaOnPremiseNetworkConstants::getUserDapoURL(); }

    /// Logs that the endpoint gave nothing, and has lines of its own for a download that failed, a bundle
    /// that does not decode and a cached bundle used instead. The Pelio kind logs one line for all failures
    /// of a download.
    static constexpr bool LOGS_EACH_STEP = true;
};

struct PelioKind {
    using Bundle = PelioBundle;
    static constexpr std::string_view NAME = "Pelio";
    static std::string bundleUrlTemplate() { return OskaOnPremiseNetworkConstants::getUserPelioURL(); }
    static constexpr bool LOGS_EACH_STEP = false;
};

}  // namespace oska

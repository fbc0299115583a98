#pragma once

#include <memory>

#include "oska/platform/quenlo_navigation.h"

namespace oska {

/// Returns a navigation service of the installed platform's factory, never null.
///
/// Where there is no factory, or the factory returns null or throws, the result is a substitute: each of its
/// operations fails with a text that names the missing framework, and its getters return nullopt. It reports
/// the failed initialisation later, on the main queue, so that a delegate set after creation receives it; it
/// reports everything else inside the call. Threads: any.
[[nodiscard]] std::shared_ptr<platform::NavigationManager> makeNavigationManager(
    const platform::NavigationOptions& options);

}  // namespace oska

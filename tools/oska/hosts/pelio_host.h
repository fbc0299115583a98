#pragma once

#include <memory>

#include "oska/pelio/pelio_service_manager.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/host.h"

namespace oska::tool {

/// `options.forceUpdate` is replaced by that of each initialisation. `events` must outlive the host.
[[nodiscard]] std::shared_ptr<Host> makePelioHost(PelioServiceManager::Options options, const Events& events);

}  // namespace oska::tool

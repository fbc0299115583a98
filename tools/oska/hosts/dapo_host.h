#pragma once

#include <memory>
#include <optional>

#include "oska/dapo/dapo_view.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/host.h"

namespace oska::tool {

struct DapoHostOptions {
    /// Of each initialisation; `forceUpdate` does not count: each brings its own.
    DapoView::Initialization initialization;
    std::optional<double> outputInterval;  ///< seconds; none: the view's own
};

/// The usual host: the view lies over a view of a phone's size. `events` must outlive the host.
[[nodiscard]] std::shared_ptr<Host> makeDapoHost(DapoHostOptions options, const Events& events);

}  // namespace oska::tool

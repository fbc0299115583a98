#pragma once

#include <memory>
#include <optional>

#include "oska/dapo/dapo_view.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/host.h"

namespace oska::tool {

struct DapoHostOptions {
    /// What each initialisation gets; `forceUpdate` is replaced by that of the call.
    DapoView::Initialization initialization;
    std::optional<double> outputInterval;  ///< seconds; nullopt: the view's own
};

/// An application with the view placed over a view of a phone's size. `events` must outlive it.
[[nodiscard]] std::shared_ptr<Host> makeDapoHost(DapoHostOptions options, const Events& events);

}  // namespace oska::tool

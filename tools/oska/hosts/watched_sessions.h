#pragma once

#include <functional>
#include <memory>

#include "oska/platform/http_session.h"

namespace oska::tool {

/// Called with each request that is sent, on the thread that sends it. Returns the completion to send it
/// with: the one given, or one that calls it. Threads: any.
using WatchRequest = std::function<platform::HttpSession::Completion(
    const platform::HttpRequest& request, platform::HttpSession::Completion completion)>;

/// A factory whose sessions are those of `factory` and pass each request to `watch` first. Lifetime: its
/// sessions keep `watch`.
[[nodiscard]] std::shared_ptr<platform::HttpSessionFactory> watchedSessions(
    std::shared_ptr<platform::HttpSessionFactory> factory, WatchRequest watch);

}  // namespace oska::tool

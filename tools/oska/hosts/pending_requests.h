#pragma once

#include <cstddef>
#include <memory>

#include "oska/platform/http_session.h"
#include "oska/platform/main_queue.h"

namespace oska::tool {

/// Counts the requests that have not ended: from the moment when a request is sent until the main queue has
/// run what its completion posted there. Jobs that this job posts are not counted. Threads: any. Lifetime:
/// the factories keep what they need.
class PendingRequests {
public:
    PendingRequests();

    /// A factory whose sessions are those of `factory`, counted.
    [[nodiscard]] std::shared_ptr<platform::HttpSessionFactory> countIn(
        std::shared_ptr<platform::HttpSessionFactory> factory,
        std::shared_ptr<platform::MainQueue> mainQueue) const;

    [[nodiscard]] std::size_t count() const;
    [[nodiscard]] std::size_t uploads() const;  ///< those of them that bring something

private:
    struct Counts;

    const std::shared_ptr<Counts> counts_;
};

}  // namespace oska::tool

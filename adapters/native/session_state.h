#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "oska/platform/http_session.h"

namespace oska::native {

/// What the requests of a session share. Requests may outlive the session. Threads: any.
struct SessionState {
    SessionState(const platform::HttpSessionConfiguration& limits,
                 std::shared_ptr<platform::HttpSessionDelegate> judge)
        : configuration(limits), delegate(std::move(judge)) {}

    const platform::HttpSessionConfiguration configuration;
    const std::shared_ptr<platform::HttpSessionDelegate> delegate;
    std::atomic<bool> hasEnded{false};
};

}  // namespace oska::native

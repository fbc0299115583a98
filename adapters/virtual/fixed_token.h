#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "oska/platform/main_queue.h"
#include "oska/platform/quenlo_auth.h"

namespace oska::virtual_world {

/// A token provider that gives every caller the same result.
///
///     FixedToken signedIn(std::string("token"));
///     FixedToken signedOut(platform::TokenFailure{.reason = platform::TokenFailureReason::notSignedIn});
/// For tests, and for programs that need no sign-in.
/// Threads: any.
class FixedToken final : public platform::QuenloAuthManager {
public:
    /// `result`: a token, or why there is none.
    explicit FixedToken(platform::TokenResult result);

    /// Replaces the result for later requests. A request that waits on the queue keeps the old one.
    void setResult(platform::TokenResult result);

    /// From now on completions run in a job of `queue`; with null, as at the beginning, inside
    /// `getAccessToken`.
    void answerOn(std::shared_ptr<platform::MainQueue> queue);

    /// Calls `completion` once with the result. `update` has no effect: there is nothing to refresh.
    /// Errors: if the queue stops first, `completion` gets a failure with the reason `unknown`, inside the
    /// queue's `stop`.
    void getAccessToken(bool update, std::function<void(platform::TokenResult)> completion) override;

private:
    std::mutex mutex_;
    platform::TokenResult result_;
    std::shared_ptr<platform::MainQueue> queue_;
};

}  // namespace oska::virtual_world

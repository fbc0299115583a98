#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "oska/platform/main_queue.h"
#include "oska/platform/quenlo_auth.h"

namespace oska::virtual_world {

/// A token provider with one answer.
/// Threads: any.
/// Errors: an answer that waits on the queue when that stops becomes a failure of reason `unknown`.
class FixedToken final : public platform::QuenloAuthManager {
public:
    explicit FixedToken(platform::TokenResult result);

    /// Requests from now on get this answer.
    void setResult(platform::TokenResult result);

    /// Answers in a job of `queue` from now on; with null, as at the beginning, inside the call.
    void answerOn(std::shared_ptr<platform::MainQueue> queue);

    void getAccessToken(bool update, std::function<void(platform::TokenResult)> completion) override;

private:
    std::mutex mutex_;
    platform::TokenResult result_;
    std::shared_ptr<platform::MainQueue> queue_;
};

}  // namespace oska::virtual_world

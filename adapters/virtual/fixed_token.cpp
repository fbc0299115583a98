#include "adapters/virtual/fixed_token.h"

#include <utility>

#include "adapters/virtual/owed_completion.h"

namespace oska::virtual_world {

using platform::TokenFailureReason;
using platform::TokenResult;

FixedToken::FixedToken(TokenResult result) : result_(std::move(result)) {}

void FixedToken::setResult(TokenResult result) {
    const std::lock_guard lock(mutex_);
    result_ = std::move(result);
}

void FixedToken::answerOn(std::shared_ptr<platform::MainQueue> queue) {
    const std::lock_guard lock(mutex_);
    queue_ = std::move(queue);
}

void FixedToken::getAccessToken(bool, std::function<void(TokenResult)> completion) {
    std::unique_lock lock(mutex_);
    auto result = result_;
    const auto queue = queue_;
    lock.unlock();
    if (!queue) return completion(std::move(result));
    const auto owed = std::make_shared<OwedCompletion<TokenResult>>(
        std::move(completion),
        platform::TokenFailure{TokenFailureReason::unknown, {}, "the main queue has stopped"});
    queue->async([owed, result] { owed->complete(result); });
}

}  // namespace oska::virtual_world

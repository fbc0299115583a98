#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace oska {

/// Wraps `receive`, a callback that a provider must call exactly once. The first call of any copy reaches
/// `receive`, which is destroyed after it; further calls do nothing. Threads: any, also at the same time.
template <class... Args>
std::function<void(Args...)> once(std::function<void(Args...)> receive) {
    struct Owed {
        std::function<void(Args...)> receive;
        std::atomic<bool> isAnswered{false};
    };
    const auto owed = std::make_shared<Owed>();
    owed->receive = std::move(receive);
    return [owed](Args... args) {
        if (owed->isAnswered.exchange(true)) return;
        const auto receiver = std::exchange(owed->receive, nullptr);
        receiver(std::move(args)...);
    };
}

}  // namespace oska

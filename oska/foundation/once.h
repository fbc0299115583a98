#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace oska {

/// `receive` behind a guard for answers that a provider owes exactly once: the first call reaches it, and
/// what it holds goes with that call; later ones, of any copy, do nothing. Threads: any, at the same time,
/// too.
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

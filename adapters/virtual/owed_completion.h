#pragma once

#include <functional>
#include <utility>

namespace oska::virtual_world {

/// A completion that runs exactly once: with the first result it is given, or with the one fixed at its
/// making when it is destroyed before that. Whatever drops the job that was to complete, its waiter hears of
/// it.
/// Threads: any, one at a time. The completion runs where the result is given, or where this is destroyed.
template <class Result>
class OwedCompletion {
public:
    OwedCompletion(std::function<void(Result)> completion, Result unlessCompleted)
        : completion_(std::move(completion)), unlessCompleted_(std::move(unlessCompleted)) {}
    ~OwedCompletion() { complete(std::move(unlessCompleted_)); }
    OwedCompletion(const OwedCompletion&) = delete;
    OwedCompletion& operator=(const OwedCompletion&) = delete;

    void complete(Result result) {
        if (const auto completion = std::exchange(completion_, nullptr)) completion(std::move(result));
    }

private:
    std::function<void(Result)> completion_;
    Result unlessCompleted_;
};

}  // namespace oska::virtual_world

#pragma once

#include <functional>
#include <utility>

namespace oska::virtual_world {

/// A completion that runs exactly once: with the first result that `complete` gets or, when this is destroyed
/// before, with the result given to the constructor. So a caller gets a result even when a queue destroys the
/// job that should have brought it.
/// Threads: any, one at a time. The completion runs inside `complete`, or inside the destructor.
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

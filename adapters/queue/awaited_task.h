#pragma once

#include <future>
#include <memory>
#include <utility>

#include "oska/platform/main_queue.h"

namespace oska::queue {

/// A task that another thread waits for. The waiting thread goes on once the task was destroyed, whether it
/// ran or not. Threads: any, one at a time.
class AwaitedTask {
public:
    explicit AwaitedTask(platform::Task task) : task_(std::move(task)) {}
    ~AwaitedTask() {
        task_ = nullptr;
        hasRun_.set_value(wasCalled_);
    }
    AwaitedTask(const AwaitedTask&) = delete;
    AwaitedTask& operator=(const AwaitedTask&) = delete;

    /// Becomes ready when the task was destroyed; whether it ran before. May be called once.
    [[nodiscard]] std::future<bool> hasRun() { return hasRun_.get_future(); }

    void run() {
        task_();
        wasCalled_ = true;
    }

private:
    platform::Task task_;
    std::promise<bool> hasRun_;
    bool wasCalled_ = false;
};

/// Runs `task` as a job of `queue` and waits. False when the queue destroyed the task without running it.
/// Requires: not called on the thread that runs the queue's jobs.
inline bool runAndWait(platform::MainQueue& queue, platform::Task task) {
    auto awaited = std::make_shared<AwaitedTask>(std::move(task));
    auto hasRun = awaited->hasRun();
    queue.async([awaited = std::move(awaited)] { awaited->run(); });
    return hasRun.get();
}

}  // namespace oska::queue

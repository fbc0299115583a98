#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "adapters/queue/awaited_task.h"
#include "adapters/queue/job_queue.h"
#include "oska/platform/main_queue.h"
#include "oska/platform/platform.h"

namespace oska::queue {

/// The handle of a job. It may outlive the queue.
template <class Time>
class QueuedWork final : public platform::ScheduledWork {
public:
    using Queue = JobQueue<Time>;

    QueuedWork(const std::shared_ptr<Queue>& queue, std::shared_ptr<typename Queue::QueuedJob> job)
        : queue_(queue), job_(std::move(job)) {}
    ~QueuedWork() override {
        if (const auto queue = queue_.lock()) queue->end(*job_);
    }
    QueuedWork(const QueuedWork&) = delete;
    QueuedWork& operator=(const QueuedWork&) = delete;

private:
    const std::weak_ptr<Queue> queue_;
    const std::shared_ptr<typename Queue::QueuedJob> job_;
};

/// The operations of a main queue over its jobs; see `platform::MainQueue` for their contract. What runs the
/// jobs, and when, is left to the class that owns the scheduler.
/// Threads: the thread that constructs it is the main thread; all operations may be called on any thread.
template <class Time>
class Scheduler {
public:
    using Queue = JobQueue<Time>;

    /// `onEarlier` is called, on the thread that schedules and without a lock held, when a job becomes the
    /// first one.
    explicit Scheduler(Time time = {}, std::function<void()> onEarlier = {})
        : queue_(std::make_shared<Queue>(std::move(time))), onEarlier_(std::move(onEarlier)) {}

    [[nodiscard]] Queue& jobs() { return *queue_; }
    [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == mainThread_; }

    void async(platform::Task task) { (void)add(std::move(task), {}, {}); }

    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> after(std::chrono::nanoseconds delay,
                                                                 platform::Task task) {
        return std::make_unique<QueuedWork<Time>>(queue_, add(std::move(task), delay, {}));
    }

    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> every(std::chrono::nanoseconds interval,
                                                                 platform::Task task) {
        if (interval.count() <= 0)
            platform::programmingError("a repeating timer needs an interval above zero");
        return std::make_unique<QueuedWork<Time>>(queue_, add(std::move(task), {}, interval));
    }

    /// `queue` is the main queue that owns the scheduler.
    [[nodiscard]] bool sync(platform::MainQueue& queue, platform::Task task) const {
        if (isMainThread()) platform::programmingError("MainQueue::sync was called on the main thread");
        return runAndWait(queue, std::move(task));
    }

private:
    std::shared_ptr<typename Queue::QueuedJob> add(platform::Task task, std::chrono::nanoseconds delay,
                                                   std::chrono::nanoseconds interval) {
        auto [job, isFirst] = queue_->add(std::move(task), delay, interval);
        if (isFirst && onEarlier_) onEarlier_();
        return job;
    }

    const std::thread::id mainThread_ = std::this_thread::get_id();
    const std::shared_ptr<Queue> queue_;  // the handles hold it weakly
    const std::function<void()> onEarlier_;
};

}  // namespace oska::queue

#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "oska/platform/main_queue.h"

namespace oska::queue {

/// One scheduled task. Its members are guarded by the queue's lock, except the task: while the job runs, the
/// task belongs to the main thread.
template <class Instant>
class Job {
public:
    using Key = std::pair<Instant, std::uint64_t>;  // deadline, then order of scheduling

    Job(platform::Task task, std::chrono::nanoseconds interval)
        : task_(std::move(task)), interval_(interval) {}

private:
    template <class>
    friend class JobQueue;

    platform::Task task_;
    const std::chrono::nanoseconds interval_;  // zero: runs once
    Key key_;
    bool isQueued_ = false;
    bool isRunning_ = false;
};

/// The jobs of a main queue in the order of their deadlines, and the clock that the deadlines are read on.
/// Both main queues of the kit use it; they differ in `Time`, which must have:
///
///     using Instant = ...;                             // a point of time, ordered
///     Instant now() const;
///     static Instant after(Instant, nanoseconds);      // a sum beyond the last instant never comes
///     static nanoseconds span(Instant from, Instant to);
///     Instant arriveAt(Instant due, Instant limit);    // a job due at `due` is about to run: the time it
///     runs at void pass(Instant limit);                        // no job is due until `limit`
///
/// Ticks of a repeating job that lie before the time at which it runs are merged into one; where time moves
/// from deadline to deadline there are none.
/// Threads: any; `runNext` and `skipTicks` on the main thread only. No task is called or destroyed under the
/// lock: what is dropped is declared before the lock, so that it is destroyed after the lock was released.
template <class Time>
class JobQueue {
public:
    using Instant = typename Time::Instant;
    using QueuedJob = Job<Instant>;
    struct Added {
        std::shared_ptr<QueuedJob> job;
        bool isFirst;  ///< its deadline is now the earliest
    };

    explicit JobQueue(Time time = {}) : time_(std::move(time)) {}

    /// After `stop` the task is destroyed instead.
    Added add(platform::Task task, std::chrono::nanoseconds delay, std::chrono::nanoseconds interval);

    /// Runs the first job that is due by `limit` and was added before the number `end`. False when there is
    /// none.
    bool runNext(Instant limit, std::uint64_t end = std::numeric_limits<std::uint64_t>::max());

    /// The job does not start any more. Its task is destroyed here or, when it is running, after it ran.
    void end(QueuedJob& job);

    /// Destroys all jobs that are not running; from now on `add` destroys what it is given.
    void stop();

    /// Whether a repeating job, due by `limit`, is all that waits.
    [[nodiscard]] bool isLoneTimerDue(Instant limit) const;

    /// Skips the ticks of that job up to `limit`. False when another thread has added a job meanwhile, or
    /// ended this one.
    bool skipTicks(Instant limit);

    [[nodiscard]] bool isStopped() const;
    [[nodiscard]] Instant now() const;
    /// The number that the next job gets.
    [[nodiscard]] std::uint64_t nextNumber() const;
    /// Nullopt when no job waits.
    [[nodiscard]] std::optional<Instant> nextDeadline() const;

private:
    using Jobs = std::map<typename QueuedJob::Key, std::shared_ptr<QueuedJob>>;

    static Instant nextTick(Instant tick, std::chrono::nanoseconds interval, Instant now);
    void put(typename Jobs::node_type node, Instant deadline);
    [[nodiscard]] std::shared_ptr<QueuedJob> takeDue(Instant limit, std::uint64_t end);
    void finish(QueuedJob& job);
    [[nodiscard]] bool hasLoneTimerDue(Instant limit) const;

    mutable std::mutex mutex_;
    Time time_;
    Jobs jobs_;
    std::uint64_t nextNumber_ = 0;
    bool isStopped_ = false;
};

template <class Time>
auto JobQueue<Time>::add(platform::Task task, std::chrono::nanoseconds delay,
                         std::chrono::nanoseconds interval) -> Added {
    const auto job = std::make_shared<QueuedJob>(std::move(task), interval);
    Jobs single;
    single.emplace(job->key_, job);
    {
        const std::lock_guard lock(mutex_);
        if (!isStopped_) {
            put(single.extract(single.begin()), Time::after(time_.now(), delay));
            return {job, jobs_.begin()->second == job};
        }
    }
    job->task_ = nullptr;
    return {job, false};
}

template <class Time>
void JobQueue<Time>::put(typename Jobs::node_type node, Instant deadline) {
    auto& job = *node.mapped();
    job.key_ = {deadline, nextNumber_++};
    job.isQueued_ = true;
    node.key() = job.key_;
    jobs_.insert(std::move(node));
}

/// The first instant of the grid after `now`. A span holds three centuries at most: a longer way takes
/// several steps.
template <class Time>
auto JobQueue<Time>::nextTick(Instant tick, std::chrono::nanoseconds interval, Instant now) -> Instant {
    for (;;) {
        const auto way = Time::span(tick, now);
        if (way < interval) return Time::after(tick, interval);
        tick = Time::after(tick, way - way % interval);
    }
}

template <class Time>
bool JobQueue<Time>::runNext(Instant limit, std::uint64_t end) {
    const auto job = takeDue(limit, end);
    if (!job) return false;
    job->task_();
    finish(*job);
    return true;
}

/// A repeating job is queued again before it runs, so that its next tick comes before what it schedules.
template <class Time>
auto JobQueue<Time>::takeDue(Instant limit, std::uint64_t end) -> std::shared_ptr<QueuedJob> {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty() || jobs_.begin()->first.first > limit || jobs_.begin()->first.second >= end) {
        time_.pass(limit);
        return nullptr;
    }
    auto node = jobs_.extract(jobs_.begin());
    const auto job = node.mapped();
    const auto due = node.key().first;
    const auto now = time_.arriveAt(due, limit);
    job->isQueued_ = false;
    job->isRunning_ = true;
    if (job->interval_.count() > 0) put(std::move(node), nextTick(due, job->interval_, now));
    return job;
}

template <class Time>
void JobQueue<Time>::finish(QueuedJob& job) {
    platform::Task dead;
    const std::lock_guard lock(mutex_);
    job.isRunning_ = false;
    if (!job.isQueued_) dead.swap(job.task_);
}

template <class Time>
void JobQueue<Time>::end(QueuedJob& job) {
    typename Jobs::node_type removed;
    platform::Task dead;
    const std::lock_guard lock(mutex_);
    if (!job.isQueued_) return;
    job.isQueued_ = false;
    removed = jobs_.extract(job.key_);
    if (!job.isRunning_) dead.swap(job.task_);
}

template <class Time>
void JobQueue<Time>::stop() {
    Jobs jobs;
    std::vector<platform::Task> dead;
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    jobs.swap(jobs_);
    for (const auto& [key, job] : jobs) {
        job->isQueued_ = false;
        if (!job->isRunning_) dead.push_back(std::move(job->task_));
    }
}

template <class Time>
bool JobQueue<Time>::hasLoneTimerDue(Instant limit) const {
    if (jobs_.size() != 1) return false;
    const auto& [key, job] = *jobs_.begin();
    return job->interval_.count() > 0 && key.first <= limit;
}

template <class Time>
bool JobQueue<Time>::isLoneTimerDue(Instant limit) const {
    const std::lock_guard lock(mutex_);
    return hasLoneTimerDue(limit);
}

template <class Time>
bool JobQueue<Time>::skipTicks(Instant limit) {
    const std::lock_guard lock(mutex_);
    if (!hasLoneTimerDue(limit)) return false;
    auto node = jobs_.extract(jobs_.begin());
    const auto next = nextTick(node.key().first, node.mapped()->interval_, limit);
    put(std::move(node), next);
    return true;
}

template <class Time>
bool JobQueue<Time>::isStopped() const {
    const std::lock_guard lock(mutex_);
    return isStopped_;
}

template <class Time>
auto JobQueue<Time>::now() const -> Instant {
    const std::lock_guard lock(mutex_);
    return time_.now();
}

template <class Time>
std::uint64_t JobQueue<Time>::nextNumber() const {
    const std::lock_guard lock(mutex_);
    return nextNumber_;
}

template <class Time>
auto JobQueue<Time>::nextDeadline() const -> std::optional<Instant> {
    const std::lock_guard lock(mutex_);
    return jobs_.empty() ? std::nullopt : std::optional(jobs_.begin()->first.first);
}

}  // namespace oska::queue

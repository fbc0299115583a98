#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "oska/platform/main_queue.h"

namespace oska::native {

using JobClock = std::chrono::steady_clock;

/// One scheduled task. Its members belong to the queue's lock, except the task, which belongs to whoever
/// took the job out of the queue or, while it runs, to the thread that runs it.
class Job {
public:
    using Key = std::pair<JobClock::time_point, std::uint64_t>;  // deadline, then order of scheduling

    Job(std::chrono::nanoseconds interval, platform::Task task)
        : interval_(interval), task_(std::move(task)) {}

    void run() const { task_(); }

private:
    friend class JobQueue;

    Key key_;
    const std::chrono::nanoseconds interval_;  // zero: runs once
    bool isQueued_ = false;
    bool isRunning_ = false;
    platform::Task task_;
};

/// Jobs in the order of their deadlines. No task is called or destroyed under the lock.
/// Threads: any; `takeDue`, `finish` and `waitUntilDue` on one thread only, the one that runs the jobs.
class JobQueue {
public:
    /// True when the job is the first now. After `stop` the job's task is destroyed instead.
    bool add(const std::shared_ptr<Job>& job, JobClock::time_point deadline);

    /// The first job, if it is due at `now` and was added before the number `end`; it must be finished. A
    /// repeating one is back in the queue at once, at the next instant of its grid that lies ahead.
    [[nodiscard]] std::shared_ptr<Job> takeDue(JobClock::time_point now, std::uint64_t end);

    /// To be called when the job has run; destroys its task unless it repeats.
    void finish(Job& job);

    /// The job does not run again; its task is destroyed, by `finish` when it is running.
    void end(Job& job);

    void stop();

    [[nodiscard]] bool isStopped() const;
    [[nodiscard]] std::uint64_t nextNumber() const;
    [[nodiscard]] std::optional<JobClock::time_point> nextDeadline() const;

    /// Until the first job is due, or the queue has stopped.
    void waitUntilDue();

private:
    void insert(const std::shared_ptr<Job>& job, JobClock::time_point deadline);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<Job::Key, std::shared_ptr<Job>> jobs_;
    std::uint64_t nextNumber_ = 0;
    bool isStopped_ = false;
};

}  // namespace oska::native

#include "adapters/native/job_queue.h"

#include <vector>

namespace oska::native {

using platform::Task;
using std::chrono::nanoseconds;

namespace {

/// The first instant of the grid after `now`: late ticks are merged, and none moves the grid.
JobClock::time_point nextTick(JobClock::time_point tick, nanoseconds interval, JobClock::time_point now) {
    const auto steps = (now - tick) / interval + 1;
    const bool isBeyondTime = interval > (JobClock::time_point::max() - tick) / steps;
    return isBeyondTime ? JobClock::time_point::max() : tick + interval * steps;
}

}  // namespace

bool JobQueue::add(const std::shared_ptr<Job>& job, JobClock::time_point deadline) {
    {
        const std::lock_guard lock(mutex_);
        if (!isStopped_) {
            insert(job, deadline);
            const bool isFirst = jobs_.begin()->second == job;
            if (isFirst) changed_.notify_all();
            return isFirst;
        }
    }
    job->task_ = nullptr;
    return false;
}

void JobQueue::insert(const std::shared_ptr<Job>& job, JobClock::time_point deadline) {
    job->key_ = {deadline, nextNumber_++};
    job->isQueued_ = true;
    jobs_.emplace(job->key_, job);
}

std::shared_ptr<Job> JobQueue::takeDue(JobClock::time_point now, std::uint64_t end) {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty()) return nullptr;
    const auto [deadline, number] = jobs_.begin()->first;
    if (deadline > now || number >= end) return nullptr;
    auto job = std::move(jobs_.extract(jobs_.begin()).mapped());
    job->isQueued_ = false;
    job->isRunning_ = true;
    if (job->interval_ > nanoseconds::zero()) insert(job, nextTick(deadline, job->interval_, now));
    return job;
}

// What is dropped below is declared before the lock, so that it is destroyed after the lock has gone.

void JobQueue::finish(Job& job) {
    Task dead;
    const std::lock_guard lock(mutex_);
    job.isRunning_ = false;
    if (!job.isQueued_) dead.swap(job.task_);
}

void JobQueue::end(Job& job) {
    std::shared_ptr<Job> removed;
    Task dead;
    const std::lock_guard lock(mutex_);
    if (!job.isQueued_) return;
    job.isQueued_ = false;
    removed = std::move(jobs_.extract(job.key_).mapped());
    if (!job.isRunning_) dead.swap(job.task_);
}

void JobQueue::stop() {
    std::map<Job::Key, std::shared_ptr<Job>> jobs;
    std::vector<Task> dead;
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    jobs.swap(jobs_);
    for (const auto& [key, job] : jobs) {
        job->isQueued_ = false;
        if (!job->isRunning_) dead.push_back(std::move(job->task_));
    }
    changed_.notify_all();
}

bool JobQueue::isStopped() const {
    const std::lock_guard lock(mutex_);
    return isStopped_;
}

std::uint64_t JobQueue::nextNumber() const {
    const std::lock_guard lock(mutex_);
    return nextNumber_;
}

std::optional<JobClock::time_point> JobQueue::nextDeadline() const {
    const std::lock_guard lock(mutex_);
    return jobs_.empty() ? std::nullopt : std::optional(jobs_.begin()->first.first);
}

void JobQueue::waitUntilDue() {
    std::unique_lock lock(mutex_);
    while (!isStopped_) {
        if (jobs_.empty()) {
            changed_.wait(lock);
            continue;
        }
        const auto deadline = jobs_.begin()->first.first;
        if (deadline <= JobClock::now()) return;
        changed_.wait_until(lock, deadline);
    }
}

}  // namespace oska::native

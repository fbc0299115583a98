#include "adapters/native/run_loop.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "adapters/native/job_queue.h"
#include "oska/platform/platform.h"

namespace oska::native {

using platform::Task;
using std::chrono::nanoseconds;

namespace {

/// Now and `delay`; what lies beyond the clock's range is at its end, which never comes.
RunLoop::Clock::time_point deadlineAfter(nanoseconds delay) {
    const auto now = RunLoop::Clock::now();
    if (delay <= nanoseconds::zero()) return now;
    return delay > RunLoop::Clock::time_point::max() - now ? RunLoop::Clock::time_point::max() : now + delay;
}

class QueuedWork final : public platform::ScheduledWork {
public:
    QueuedWork(const std::shared_ptr<JobQueue>& queue, std::shared_ptr<Job> job)
        : queue_(queue), job_(std::move(job)) {}
    ~QueuedWork() override {
        if (const auto queue = queue_.lock()) queue->end(*job_);
    }
    QueuedWork(const QueuedWork&) = delete;
    QueuedWork& operator=(const QueuedWork&) = delete;

private:
    const std::weak_ptr<JobQueue> queue_;
    const std::shared_ptr<Job> job_;
};

/// The thread that waits in `sync`.
class Waiter {
public:
    void answer(bool hasRun) {
        const std::lock_guard lock(mutex_);
        hasRun_ = hasRun;
        answered_.notify_one();
    }

    bool wait() {
        std::unique_lock lock(mutex_);
        answered_.wait(lock, [this] { return hasRun_.has_value(); });
        return *hasRun_;
    }

private:
    std::mutex mutex_;
    std::condition_variable answered_;
    std::optional<bool> hasRun_;
};

/// A task somebody waits for: however the queue is rid of it, the waiter hears of it once it is destroyed.
class AwaitedTask {
public:
    AwaitedTask(Task task, std::shared_ptr<Waiter> waiter)
        : task_(std::move(task)), waiter_(std::move(waiter)) {}
    ~AwaitedTask() {
        task_ = nullptr;
        waiter_->answer(hasRun_);
    }
    AwaitedTask(const AwaitedTask&) = delete;
    AwaitedTask& operator=(const AwaitedTask&) = delete;

    void run() {
        task_();
        hasRun_ = true;
    }

private:
    Task task_;
    const std::shared_ptr<Waiter> waiter_;
    bool hasRun_ = false;
};

}  // namespace

RunLoop::RunLoop(std::function<void()> wake) : wake_(std::move(wake)), jobs_(std::make_shared<JobQueue>()) {}

RunLoop::~RunLoop() { stop(); }

std::optional<RunLoop::Clock::time_point> RunLoop::pump() {
    if (!isMainThread())
        platform::programmingError("RunLoop::pump was called on another thread than the main one");
    if (isPumping_) return std::nullopt;
    isPumping_ = true;
    const auto now = Clock::now();
    const auto end = jobs_->nextNumber();
    while (const auto job = jobs_->takeDue(now, end)) {
        job->run();
        jobs_->finish(*job);
    }
    isPumping_ = false;
    return jobs_->nextDeadline();
}

void RunLoop::run() {
    (void)runUntil([] { return false; });
}

bool RunLoop::runUntil(const std::function<bool()>& isDone) {
    if (isPumping_) platform::programmingError("RunLoop::run was called inside one of its jobs");
    while (!isDone()) {
        jobs_->waitUntilDue();
        if (jobs_->isStopped()) return false;
        pump();
    }
    return true;
}

void RunLoop::stop() { jobs_->stop(); }

bool RunLoop::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

std::shared_ptr<Job> RunLoop::schedule(Clock::time_point deadline, nanoseconds interval, Task task) {
    auto job = std::make_shared<Job>(interval, std::move(task));
    const bool isFirst = jobs_->add(job, deadline);
    const bool isWatched = isMainThread() && isPumping_;
    if (isFirst && !isWatched && wake_) wake_();
    return job;
}

void RunLoop::async(Task task) { schedule(Clock::now(), nanoseconds::zero(), std::move(task)); }

std::unique_ptr<platform::ScheduledWork> RunLoop::after(nanoseconds delay, Task task) {
    return std::make_unique<QueuedWork>(jobs_,
                                        schedule(deadlineAfter(delay), nanoseconds::zero(), std::move(task)));
}

std::unique_ptr<platform::ScheduledWork> RunLoop::every(nanoseconds interval, Task task) {
    if (interval <= nanoseconds::zero())
        platform::programmingError("a repeating timer needs an interval above zero");
    return std::make_unique<QueuedWork>(jobs_, schedule(Clock::now(), interval, std::move(task)));
}

bool RunLoop::sync(Task task) {
    if (isMainThread()) {
        platform::programmingError("sync was called on the main thread, which would wait for itself");
    }
    const auto waiter = std::make_shared<Waiter>();
    async([awaited = std::make_shared<AwaitedTask>(std::move(task), waiter)] { awaited->run(); });
    return waiter->wait();
}

}  // namespace oska::native

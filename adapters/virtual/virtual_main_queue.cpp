#include "adapters/virtual/virtual_main_queue.h"

#include <algorithm>
#include <cstdint>
#include <future>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "adapters/virtual/owed_completion.h"
#include "oska/platform/platform.h"

namespace oska::virtual_world {

using platform::ScheduledWork;
using platform::Task;
using platform::WallTime;
using std::chrono::nanoseconds;

namespace {

/// One nanosecond past the last instant, so no clock ever reaches it.
constexpr WallTime NEVER{std::numeric_limits<std::int64_t>::max(), 1'000'000};

/// A sum that stayed at the end of the range does not lead back.
WallTime instantAfter(WallTime time, nanoseconds delay) {
    if (delay <= nanoseconds::zero()) return time;
    const auto sum = time + delay;
    return sum + -delay == time ? sum : NEVER;
}

/// The last tick up to `target` of a timer whose next one is at `tick`, which is not later. A way of more
/// than three centuries is gone in several steps.
WallTime lastTickUntil(WallTime target, WallTime tick, nanoseconds interval) {
    for (;;) {
        const auto way = spanBetween(tick, target);
        if (way < interval) return tick;
        tick = tick + (way - way % interval);
    }
}

struct Turn {
    WallTime deadline;
    std::uint64_t sequence = 0;
    friend auto operator<=>(const Turn&, const Turn&) = default;
};

struct Job {
    Job(Task work, std::optional<nanoseconds> repetition) : task(std::move(work)), interval(repetition) {}

    enum class State { waiting, running, over };

    Task task;  // the schedule's while waiting; the main thread's while running; empty when over
    const std::optional<nanoseconds> interval;
    Turn turn;
    State state = State::over;
};

}  // namespace

/// The jobs in the order of their turns, and the clock. Tasks are destroyed by whoever ends their job, never
/// under the lock; the main thread destroys those that it ran.
class Schedule {
public:
    explicit Schedule(WallTime start) : now_(start) {}

    WallTime now() const {
        const std::lock_guard lock(mutex_);
        return now_;
    }

    std::shared_ptr<Job> add(Task task, nanoseconds delay, std::optional<nanoseconds> interval) {
        auto job = std::make_shared<Job>(std::move(task), interval);
        if (!enqueue(job, delay)) job->task = nullptr;
        return job;
    }

    void end(Job& job) {
        Task unwanted;
        const std::lock_guard lock(mutex_);
        if (job.state == Job::State::waiting) {
            unwanted.swap(job.task);
            waiting_.erase(job.turn);
        }
        job.state = Job::State::over;
    }

    /// Runs the first job that is due by `target`; without one, moves the clock there and answers false.
    bool runNext(WallTime target) {
        auto node = take(target);
        if (!node) return false;
        const auto job = node.mapped();
        job->task();
        if (!putBack(std::move(node))) job->task = nullptr;
        return true;
    }

    /// Whether a repeating timer, due by `target`, is all that waits.
    bool isLoneTimerDue(WallTime target) const {
        const std::lock_guard lock(mutex_);
        return hasLoneTimerDue(target);
    }

    /// Passes over the ticks of that timer up to `target`, which counts as having run them. False: another
    /// thread has submitted a job meanwhile, or ended the timer.
    bool skipTicks(WallTime target) {
        const std::lock_guard lock(mutex_);
        if (!hasLoneTimerDue(target)) return false;
        auto node = waiting_.extract(waiting_.begin());
        auto& job = *node.mapped();
        now_ = lastTickUntil(target, job.turn.deadline, *job.interval);
        job.turn = {instantAfter(now_, *job.interval), ++sequence_};
        node.key() = job.turn;
        waiting_.insert(std::move(node));
        return true;
    }

    void stop() {
        Jobs dropped;
        {
            const std::lock_guard lock(mutex_);
            isStopped_ = true;
            dropped.swap(waiting_);
            for (const auto& [turn, job] : dropped) job->state = Job::State::over;
        }
        for (const auto& [turn, job] : dropped) job->task = nullptr;
    }

private:
    using Jobs = std::map<Turn, std::shared_ptr<Job>>;

    bool enqueue(const std::shared_ptr<Job>& job, nanoseconds delay) {
        const std::lock_guard lock(mutex_);
        if (isStopped_) return false;
        job->turn = {instantAfter(now_, delay), ++sequence_};
        job->state = Job::State::waiting;
        waiting_.emplace(job->turn, job);
        return true;
    }

    bool hasLoneTimerDue(WallTime target) const {
        if (waiting_.size() != 1) return false;
        const auto& [turn, job] = *waiting_.begin();
        return job->interval && turn.deadline <= target;
    }

    Jobs::node_type take(WallTime target) {
        const std::lock_guard lock(mutex_);
        if (waiting_.empty() || waiting_.begin()->first.deadline > target) {
            now_ = std::max(now_, target);
            return {};
        }
        auto node = waiting_.extract(waiting_.begin());
        auto& job = *node.mapped();
        now_ = job.turn.deadline;
        job.state = Job::State::running;
        // The next tick takes its place in the order before the handler schedules anything.
        if (job.interval) job.turn = {instantAfter(now_, *job.interval), ++sequence_};
        return node;
    }

    bool putBack(Jobs::node_type node) {
        const std::lock_guard lock(mutex_);
        auto& job = *node.mapped();
        const bool goesOn = job.interval && !isStopped_ && job.state == Job::State::running;
        job.state = goesOn ? Job::State::waiting : Job::State::over;
        if (!goesOn) return false;
        node.key() = job.turn;
        waiting_.insert(std::move(node));
        return true;
    }

    mutable std::mutex mutex_;
    WallTime now_;
    std::uint64_t sequence_ = 0;
    bool isStopped_ = false;
    Jobs waiting_;
};

namespace {

class Handle final : public ScheduledWork {
public:
    Handle(std::shared_ptr<Schedule> schedule, std::shared_ptr<Job> job)
        : schedule_(std::move(schedule)), job_(std::move(job)) {}
    ~Handle() override { schedule_->end(*job_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

private:
    const std::shared_ptr<Schedule> schedule_;
    const std::shared_ptr<Job> job_;
};

/// Destroys the task, and what it holds, before the waiting thread goes on.
struct SyncJob {
    std::shared_ptr<OwedCompletion<bool>> hasRun;
    Task task;

    void operator()() {
        std::exchange(task, nullptr)();
        hasRun->complete(true);
    }
};

}  // namespace

VirtualMainQueue::VirtualMainQueue(WallTime start) : schedule_(std::make_shared<Schedule>(start)) {}

VirtualMainQueue::~VirtualMainQueue() { schedule_->stop(); }

void VirtualMainQueue::advanceTo(WallTime target) {
    beginMoving();
    const auto goal = std::max(target, now());
    while (schedule_->runNext(goal)) {
    }
    isRunningJobs_ = false;
}

void VirtualMainQueue::advanceTo(WallTime target, const std::function<bool()>& ticksAreIdle) {
    beginMoving();
    const auto goal = std::max(target, now());
    const auto skip = [&] {
        return schedule_->isLoneTimerDue(goal) && ticksAreIdle() && schedule_->skipTicks(goal);
    };
    while (skip() || schedule_->runNext(goal)) {
    }
    isRunningJobs_ = false;
}

void VirtualMainQueue::beginMoving() {
    if (!isMainThread())
        platform::programmingError("virtual time was moved on a thread other than the main one");
    if (isRunningJobs_) platform::programmingError("virtual time was moved from inside a job");
    isRunningJobs_ = true;
}

void VirtualMainQueue::advanceBy(nanoseconds span) { advanceTo(now() + span); }

void VirtualMainQueue::runDue() { advanceTo(now()); }

void VirtualMainQueue::stop() { schedule_->stop(); }

WallTime VirtualMainQueue::now() const { return schedule_->now(); }

bool VirtualMainQueue::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

void VirtualMainQueue::async(Task task) {
    schedule_->add(std::move(task), nanoseconds::zero(), std::nullopt);
}

std::unique_ptr<ScheduledWork> VirtualMainQueue::after(nanoseconds delay, Task task) {
    return std::make_unique<Handle>(schedule_, schedule_->add(std::move(task), delay, std::nullopt));
}

std::unique_ptr<ScheduledWork> VirtualMainQueue::every(nanoseconds interval, Task task) {
    if (interval <= nanoseconds::zero())
        platform::programmingError("a repeating timer needs an interval above zero");
    return std::make_unique<Handle>(schedule_,
                                    schedule_->add(std::move(task), nanoseconds::zero(), interval));
}

bool VirtualMainQueue::sync(Task task) {
    if (isMainThread()) platform::programmingError("MainQueue::sync was called on the main thread");
    const auto hasRun = std::make_shared<std::promise<bool>>();
    auto answer = hasRun->get_future();
    async(
        SyncJob{std::make_shared<OwedCompletion<bool>>([hasRun](bool ran) { hasRun->set_value(ran); }, false),
                std::move(task)});
    return answer.get();
}

}  // namespace oska::virtual_world

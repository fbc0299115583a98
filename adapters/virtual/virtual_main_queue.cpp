#include "adapters/virtual/virtual_main_queue.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "adapters/queue/scheduler.h"
#include "oska/platform/platform.h"

namespace oska::virtual_world {

using platform::ScheduledWork;
using platform::Task;
using platform::WallTime;
using std::chrono::nanoseconds;

namespace {

/// One nanosecond past the last instant, so no clock ever reaches it.
constexpr WallTime NEVER{std::numeric_limits<std::int64_t>::max(), 1'000'000};

/// A clock that stands still between the jobs, and never goes back.
class VirtualTime {
public:
    using Instant = WallTime;

    explicit VirtualTime(WallTime start) : now_(start) {}

    [[nodiscard]] WallTime now() const { return now_; }

    /// A sum that stayed at the end of the range does not lead back.
    static WallTime after(WallTime time, nanoseconds delay) {
        if (delay <= nanoseconds::zero()) return time;
        const auto sum = time + delay;
        return sum + -delay == time ? sum : NEVER;
    }

    static nanoseconds span(WallTime from, WallTime to) { return platform::spanBetween(from, to); }

    WallTime arriveAt(WallTime due, WallTime) { return now_ = due; }
    void pass(WallTime limit) { now_ = std::max(now_, limit); }

private:
    WallTime now_;
};

}  // namespace

class VirtualJobs final : public queue::Scheduler<VirtualTime> {
public:
    using Scheduler::Scheduler;
};

VirtualMainQueue::VirtualMainQueue(WallTime start)
    : jobs_(std::make_unique<VirtualJobs>(VirtualTime(start))) {}

VirtualMainQueue::~VirtualMainQueue() { stop(); }

void VirtualMainQueue::advanceTo(WallTime target) {
    beginMoving();
    const auto goal = std::max(target, now());
    while (jobs_->jobs().runNext(goal)) {
    }
    isRunningJobs_ = false;
}

void VirtualMainQueue::advanceTo(WallTime target, const std::function<bool()>& ticksAreIdle) {
    beginMoving();
    const auto goal = std::max(target, now());
    const auto skip = [&] {
        return jobs_->jobs().isLoneTimerDue(goal) && ticksAreIdle() && jobs_->jobs().skipTicks(goal);
    };
    while (skip() || jobs_->jobs().runNext(goal)) {
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

void VirtualMainQueue::stop() { jobs_->jobs().stop(); }

WallTime VirtualMainQueue::now() const { return jobs_->jobs().now(); }

bool VirtualMainQueue::isMainThread() const { return jobs_->isMainThread(); }

void VirtualMainQueue::async(Task task) { jobs_->async(std::move(task)); }

std::unique_ptr<ScheduledWork> VirtualMainQueue::after(nanoseconds delay, Task task) {
    return jobs_->after(delay, std::move(task));
}

std::unique_ptr<ScheduledWork> VirtualMainQueue::every(nanoseconds interval, Task task) {
    return jobs_->every(interval, std::move(task));
}

bool VirtualMainQueue::sync(Task task) { return jobs_->sync(*this, std::move(task)); }

}  // namespace oska::virtual_world

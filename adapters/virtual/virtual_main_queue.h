#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "oska/platform/clock.h"
#include "oska/platform/main_queue.h"

namespace oska::virtual_world {

/// Main queue and clock in one, whose time moves only when it is told to, and then as fast as the jobs allow.
///
/// Time: `advanceTo` and `advanceBy` run every job due up to and including their instant, in the order of the
/// deadlines and, at one deadline, in the order of scheduling; each job finds the clock at its own deadline.
/// The clock never goes back: an earlier target means now. A timer is never late here, so no ticks are
/// merged: a jump over months costs every tick on the way, unless the caller of `advanceTo` can tell that
/// they do nothing. Any 64-bit millisecond is a valid instant; what would come due beyond the last one never
/// does.
/// Threads: the thread that makes the queue is its main thread, and it alone moves time, never from inside a
/// job; anything else is a programming error. `stop`, `now` and the operations of `MainQueue` may be called
/// on any thread. What other threads submit is due at the instant at which the clock then stands, and runs
/// when time is next moved.
/// Lifetime: destroying the queue stops it. Handles may outlive it.
class VirtualMainQueue final : public platform::MainQueue, public platform::WallClock {
public:
    explicit VirtualMainQueue(platform::WallTime start);
    ~VirtualMainQueue() override;
    VirtualMainQueue(const VirtualMainQueue&) = delete;
    VirtualMainQueue& operator=(const VirtualMainQueue&) = delete;

    void advanceTo(platform::WallTime target);

    /// Likewise, without running the ticks that do nothing. `ticksAreIdle` is asked when a tick is due and a
    /// repeating timer is the only job that waits. True promises that the tick changes nothing, nor do those
    /// that follow it, as long as no other job runs. All of them up to the target are then passed over in one
    /// step; the next one keeps its place on the grid and in the order. `ticksAreIdle` must not move time.
    void advanceTo(platform::WallTime target, const std::function<bool()>& ticksAreIdle);

    void advanceBy(std::chrono::nanoseconds span);

    /// Runs what is due now, and what these jobs schedule for now.
    void runDue();

    /// Destroys what has not run, and from now on what is submitted; waiting calls of `sync` answer false. A
    /// job that is running ends as usual. The clock goes on.
    void stop();

    [[nodiscard]] platform::WallTime now() const override;

    [[nodiscard]] bool isMainThread() const override;
    void async(platform::Task task) override;
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> after(std::chrono::nanoseconds delay,
                                                                 platform::Task task) override;
    /// An interval of zero or less is a programming error.
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> every(std::chrono::nanoseconds interval,
                                                                 platform::Task task) override;
    [[nodiscard]] bool sync(platform::Task task) override;

private:
    void beginMoving();

    const std::unique_ptr<class VirtualJobs> jobs_;
    bool isRunningJobs_ = false;
};

}  // namespace oska::virtual_world

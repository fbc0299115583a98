#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "oska/platform/clock.h"
#include "oska/platform/main_queue.h"

namespace oska::virtual_world {

/// Main queue and clock in one. Its time moves only when the program moves it, and then as fast as the jobs
/// allow.
///
/// Time: `advanceTo` and `advanceBy` run every job that is due up to and including the target, in the order
/// of the deadlines; jobs of one deadline run in the order of scheduling. Each job finds the clock at its own
/// deadline. The clock never goes back: an earlier target means now. A timer is never late here, so no ticks
/// are merged: a jump over months runs every tick on the way, unless the caller of `advanceTo` knows that
/// they do nothing. Every 64-bit millisecond is a valid instant; a job that would be due after the last one
/// never runs.
/// Threads: the thread that constructs the queue is its main thread. Only this thread may move time, and not
/// from inside a job; anything else is a programming error. `stop`, `now` and the operations of `MainQueue`
/// may be called on any thread. A job from another thread is due at the instant that the clock then shows,
/// and runs when time is next moved.
/// Lifetime: destroying the queue stops it. Handles may outlive it.
class VirtualMainQueue final : public platform::MainQueue, public platform::WallClock {
public:
    /// `start`: what the clock shows until time is moved.
    explicit VirtualMainQueue(platform::WallTime start);
    ~VirtualMainQueue() override;
    VirtualMainQueue(const VirtualMainQueue&) = delete;
    VirtualMainQueue& operator=(const VirtualMainQueue&) = delete;

    /// Runs what is due by `target` and leaves the clock there.
    void advanceTo(platform::WallTime target);

    /// The same, without the ticks that do nothing. `ticksAreIdle` is called when a tick is due and a
    /// repeating timer is the only job that waits. If it returns true, this tick and those after it must
    /// change nothing as long as no other job runs. All ticks up to the target are then skipped in one step;
    /// the next one keeps its place on the grid and in the order. `ticksAreIdle` must not move time.
    void advanceTo(platform::WallTime target, const std::function<bool()>& ticksAreIdle);

    /// Like `advanceTo`, `span` from now; less than zero means now.
    void advanceBy(std::chrono::nanoseconds span);

    /// Runs what is due now, and what these jobs schedule for now. The clock stays.
    void runDue();

    /// Destroys the jobs that have not run, and from now on each new job; waiting calls of `sync` return
    /// false. A job that is running ends as usual. Time can still be moved.
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

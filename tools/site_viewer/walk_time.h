#pragma once

#include <memory>

#include "adapters/virtual/virtual_main_queue.h"
#include "oska/platform/clock.h"
#include "oska/platform/main_queue.h"

namespace viewer {

/// The kit's main queue and clock while a recorded walk is played. Jobs run at once, from the application's
/// loop; delayed and repeated jobs use the time of the walk. So a pause of the walk stops the services'
/// timers, a faster pace shortens them, and a seek runs all of them in order.
///
/// Threads: created on the main thread. Only the main thread advances the time, and never inside a job; the
/// queue's operations are for any thread.
class WalkTime final : public oska::platform::MainQueue, public oska::platform::WallClock {
public:
    /// `loop` runs on the calling thread.
    WalkTime(std::shared_ptr<oska::platform::MainQueue> loop, oska::platform::WallTime start);
    ~WalkTime() override;

    /// Sets the time to `target` and runs the jobs that become due, in order; an earlier `target` does
    /// nothing.
    void advanceTo(oska::platform::WallTime target) { time_->advanceTo(target); }
    /// Runs the jobs that are due now.
    void runDue() { time_->runDue(); }

    [[nodiscard]] oska::platform::WallTime now() const override { return time_->now(); }

    [[nodiscard]] bool isMainThread() const override { return loop_->isMainThread(); }
    void async(oska::platform::Task task) override;
    [[nodiscard]] std::unique_ptr<oska::platform::ScheduledWork> after(std::chrono::nanoseconds delay,
                                                                       oska::platform::Task task) override;
    [[nodiscard]] std::unique_ptr<oska::platform::ScheduledWork> every(std::chrono::nanoseconds interval,
                                                                       oska::platform::Task task) override;
    [[nodiscard]] bool sync(oska::platform::Task task) override;

private:
    void wake();

    const std::shared_ptr<oska::platform::MainQueue> loop_;
    const std::shared_ptr<oska::virtual_world::VirtualMainQueue> time_;  // jobs in `loop_` hold it weakly
};

}  // namespace viewer

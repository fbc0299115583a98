#pragma once

#include <memory>

#include "adapters/virtual/virtual_main_queue.h"
#include "oska/platform/clock.h"
#include "oska/platform/main_queue.h"

namespace viewer {

/// The kit's main queue and clock while a recorded walk is played: jobs run from the application's loop as
/// they come, but what is delayed or repeats goes by the time of the walk. So a pause stops the services'
/// holds and timers as well, a faster pace shortens them, and a seek runs through all of them in order.
///
/// Threads: made on the main thread, which alone moves the time, never from inside a job.
class WalkTime final : public oska::platform::MainQueue, public oska::platform::WallClock {
public:
    /// `loop` runs on the thread that makes this.
    WalkTime(std::shared_ptr<oska::platform::MainQueue> loop, oska::platform::WallTime start);
    ~WalkTime() override;

    /// Runs what comes due on the way; never goes back.
    void advanceTo(oska::platform::WallTime target) { time_->advanceTo(target); }
    /// Runs what is due already.
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
    const std::shared_ptr<oska::virtual_world::VirtualMainQueue> time_;  // jobs of the loop hold it weakly
};

}  // namespace viewer

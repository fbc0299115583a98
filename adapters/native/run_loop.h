#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "oska/platform/main_queue.h"

namespace oska::native {

/// The main queue on the standard library alone, for hosts with or without a loop of their own.
///
/// A host with a loop calls `pump` when the wake hook was called and when the deadline that the last pump
/// answered has come. A host without one calls `run` or `runUntil`. Both may be mixed.
/// Time: the steady clock; jobs run late rather than early.
/// Threads: the thread that constructs the loop is its main thread; it alone pumps and runs. Everything else
/// may be called on any thread.
/// Lifetime: destroying the loop stops it. Handles of its jobs may outlive it.
class RunLoop final : public platform::MainQueue {
public:
    using Clock = std::chrono::steady_clock;

    /// `wake` is called, on whatever thread schedules and without a lock held, when the next deadline has
    /// moved forward; not for what jobs schedule while they are pumped. It must not throw, and should only
    /// tell the host's loop to pump soon.
    explicit RunLoop(std::function<void()> wake = {});
    ~RunLoop() override;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Runs each job that is due and was scheduled before this call, then answers when the next one is due:
    /// a past instant means at once, none that nothing waits. Inside a job it runs nothing: jobs run one at
    /// a time.
    std::optional<Clock::time_point> pump();

    /// Pumps until `stop`.
    void run();

    /// Pumps until `isDone`, asked before the first job and after each batch. False when the loop stopped.
    [[nodiscard]] bool runUntil(const std::function<bool()>& isDone);

    /// Ends the loop for good: what has not run is destroyed, here, and so is what is submitted later;
    /// waiting calls of `sync` answer false. A job that is running ends as usual.
    void stop();

    [[nodiscard]] bool isMainThread() const override;
    void async(platform::Task task) override;
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> after(std::chrono::nanoseconds delay,
                                                                 platform::Task task) override;
    /// An interval of zero or less is a programming error.
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> every(std::chrono::nanoseconds interval,
                                                                 platform::Task task) override;
    [[nodiscard]] bool sync(platform::Task task) override;

private:
    void wakeUnlessPumping();
    void waitUntilDue();

    const std::function<void()> wake_;
    const std::unique_ptr<class WakePipe> wakePipe_;
    const std::unique_ptr<class RunLoopJobs> jobs_;
    bool isPumping_ = false;  // main thread only
};

}  // namespace oska::native

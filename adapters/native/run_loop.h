#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "oska/platform/main_queue.h"

namespace oska::native {

/// The main queue on the standard library alone, for hosts with or without a loop of their own.
///
/// A host with a loop calls `pump` when the wake hook was called, and when the deadline that the last pump
/// returned has come. A host without a loop calls `run` or `runUntil`. A host may do both in turns.
/// Time: the steady clock. Jobs run late rather than early; `run` and `runUntil` wake up to 1 ms late.
/// Threads: the thread that constructs the loop is its main thread. Only this thread may call `pump`, `run`
/// and `runUntil`; everything else may be called on any thread.
/// Lifetime: destroying the loop stops it. Handles of its jobs may outlive it.
/// Errors: constructing a loop when no file descriptor is left is a programming error.
class RunLoop final : public platform::MainQueue {
public:
    /// The clock of the deadlines.
    using Clock = std::chrono::steady_clock;

    /// `wake` may be empty. It is called when a new job is due before all others, on the thread that
    /// schedules the job and without a lock held. It is not called for what a job schedules on the main
    /// thread while it is pumped. It must not throw, and should only make the host's loop pump soon.
    explicit RunLoop(std::function<void()> wake = {});
    ~RunLoop() override;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Runs each job that is due and was scheduled before this call. Returns when the next job is due: a
    /// past instant means now, nullopt that no job waits. Called inside a job it runs nothing and returns
    /// nullopt, because jobs run one at a time. On another thread it is a programming error.
    std::optional<Clock::time_point> pump();

    /// Pumps, and sleeps between the jobs, until `stop` is called. Inside a job it is a programming error.
    void run();

    /// Like `run`, but also returns when `isDone` returns true. It is called before the first job and after
    /// each batch of jobs. False when the loop has stopped.
    [[nodiscard]] bool runUntil(const std::function<bool()>& isDone);

    /// Stops the loop for good. Jobs that have not run are destroyed inside this call, and later ones when
    /// they are submitted; waiting calls of `sync` return false. A job that is running ends as usual.
    void stop();

    /// Whether the caller is on the thread that constructed the loop.
    [[nodiscard]] bool isMainThread() const override;
    void async(platform::Task task) override;
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> after(std::chrono::nanoseconds delay,
                                                                 platform::Task task) override;
    /// An interval of zero or less is a programming error.
    [[nodiscard]] std::unique_ptr<platform::ScheduledWork> every(std::chrono::nanoseconds interval,
                                                                 platform::Task task) override;
    /// On the main thread it is a programming error: it would wait for itself.
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

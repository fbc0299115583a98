#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace oska::platform {

using Task = std::function<void()>;

/// A delayed job or a repeating timer that is still wanted. Destroying the handle ends it: destroyed on the
/// main thread, the job does not run afterwards, even when it was due already; destroyed on another thread,
/// it does not start afterwards, but may be running at that moment. A job may destroy its own handle.
class ScheduledWork {
public:
    virtual ~ScheduledWork() = default;
};

/// The main thread's serial queue: everything that the kit tells a host, it tells from here.
///
/// Order: jobs run one at a time; jobs due at one instant run in the order in which they were scheduled. A
/// repeating timer's next tick counts as scheduled when the previous one ran, before its handler's own work.
/// Threads: every operation may be called on any thread, from inside a job, too; jobs run on the main thread
/// only. Lifetime: a job is destroyed after it ran, on the main thread; one that never runs (ended, or the
/// queue stopped) is destroyed without running. No job is called or destroyed while the queue holds a lock.
/// Errors: jobs do not throw.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    [[nodiscard]] virtual bool isMainThread() const = 0;

    /// Runs `task` later, never inside this call. After the queue has stopped, the task is destroyed without
    /// running.
    virtual void async(Task task) = 0;

    /// Runs `task` once, `delay` from now and never earlier; a delay of zero or less means as soon as
    /// possible, but never inside this call.
    [[nodiscard]] virtual std::unique_ptr<ScheduledWork> after(std::chrono::nanoseconds delay, Task task) = 0;

    /// Runs `task` now (as `async` does) and then every `interval`, which is above zero. Ticks stay on the
    /// grid of the first one; ticks that were missed are merged into one.
    [[nodiscard]] virtual std::unique_ptr<ScheduledWork> every(std::chrono::nanoseconds interval,
                                                               Task task) = 0;

    /// Runs `task` on the main thread and waits for it. False, and the task did not run, when the queue has
    /// stopped or stops while waiting. Requires: not called on the main thread; that is a programming error
    /// and stops the process with a line.
    [[nodiscard]] virtual bool sync(Task task) = 0;
};

}  // namespace oska::platform

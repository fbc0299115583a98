#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace oska::platform {

/// A job of the main queue. It must not throw.
using Task = std::function<void()>;

/// The handle of a delayed job or a repeating timer. Destroying it cancels the job: on the main thread, the
/// job does not run afterwards, even when it was due already; on another thread, it does not start
/// afterwards, but may be running at that moment. A job may destroy its own handle.
class ScheduledWork {
public:
    virtual ~ScheduledWork() = default;
};

/// The main thread's serial queue. Nearly all callbacks of the kit to a host run here.
///
/// Order: jobs run one at a time; jobs due at one instant run in the order in which they were scheduled. A
/// repeating timer's next tick counts as scheduled when the previous one ran, before its handler's own work.
/// Threads: every operation may be called on any thread, from inside a job, too; jobs run on the main thread
/// only. Lifetime: a job is destroyed after it ran, on the main thread; one that never runs (cancelled, or
/// the queue has stopped) is destroyed without running. No job is called or destroyed while the queue holds a
/// lock. Errors: jobs do not throw.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Whether the caller runs on the main thread.
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

    /// Runs `task` on the main thread and waits for it. Returns false, without running it, when the queue has
    /// stopped or stops while waiting. Must not be called on the main thread: that is a programming error and
    /// stops the process with one line.
    [[nodiscard]] virtual bool sync(Task task) = 0;
};

}  // namespace oska::platform

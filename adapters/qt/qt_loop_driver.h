#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "adapters/native/run_loop.h"

namespace oska::qt {

/// Makes Qt's event loop run the jobs of a run loop. One timer is set to the next deadline. Only this timer
/// pumps, so that jobs which schedule themselves again take turns with Qt's events.
///
/// Threads: constructed, used and destroyed on the run loop's main thread, which must have a Qt event loop.
/// Hooks may be called on any thread; after the driver was destroyed they do nothing.
class QtLoopDriver {
public:
    QtLoopDriver();
    ~QtLoopDriver();
    QtLoopDriver(const QtLoopDriver&) = delete;
    QtLoopDriver& operator=(const QtLoopDriver&) = delete;

    /// The wake hook for the run loop to be driven.
    [[nodiscard]] std::function<void()> wakeHook() const;
    /// Must be called once, right after the run loop was constructed with the hook.
    void drive(std::shared_ptr<native::RunLoop> loop);
    /// Removes everything from Qt's event loop. May be called inside a job, and more than once.
    void stop();

private:
    class Pump;
    const std::shared_ptr<Pump> pump_;  // shared with the hooks
};

/// The interval of a QTimer, in milliseconds, for a deadline that is `remaining` from now. Rounded up, so
/// that no job is early; zero for a deadline that has passed, and at most what a QTimer can hold.
[[nodiscard]] int timerInterval(std::chrono::nanoseconds remaining);

}  // namespace oska::qt
